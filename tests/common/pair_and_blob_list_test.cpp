#include <gtest/gtest.h>

#include <chrono>
#include <climits>
#include <future>
#include <string>

#include "UBlobList.h"
#include "UStringList.h"
#include "failing_memory.h"
#include "list_records.h"
#include "record_log.h"

namespace {

// An operation that another thread has begun, and that must not end yet.
template <class Operation>
std::future<int> startedAndWaiting(Operation operation) {
    std::promise<void> begun;
    auto result = std::async(std::launch::async, [&begun, operation] {
        begun.set_value();
        return operation();
    });
    begun.get_future().wait();
    // Nothing tells that a thread waits for a lock: one that does not would be done by then.
    EXPECT_EQ(result.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    return result;
}

void fill(UStringList& list) {
    list.addItem("alpha", "one");
    list.addItem("beta", "two");
    list.addItem("alphabet", "one and two");
}

TEST(StringList, KeepsNamesAndValuesInOrder) {
    UStringList list;
    EXPECT_EQ(list.addItem("name", "value"), 0);
    EXPECT_EQ(list.addItem("name", ""), 0);
    EXPECT_EQ(list.addItem(nullptr, nullptr), 0);
    EXPECT_STREQ(list.getItem(0, 0), "name");
    EXPECT_STREQ(list.getItem(0, 1), "value");
    EXPECT_STREQ(list.getItem(1, 0), "name");
    EXPECT_STREQ(list.getItem(2, 0), "");
    EXPECT_STREQ(list.getItem(2, 1), "");
}

TEST(StringList, GivesTheValueForAnyFieldButZero) {
    UStringList list;
    list.addItem("name", "value");
    for (const int which : {1, 2, -1, INT_MAX, INT_MIN}) {
        EXPECT_STREQ(list.getItem(0, which), "value") << which;
    }
}

TEST(StringList, HasNoItemOutsideItsCount) {
    UStringList list;
    list.addItem("name", "value");
    EXPECT_EQ(list.getItem(-1, 0), nullptr);
    EXPECT_EQ(list.getItem(1, 1), nullptr);
}

TEST(StringList, RemovesItems) {
    UStringList list;
    fill(list);
    EXPECT_EQ(list.removeItem(0), 2);
    EXPECT_STREQ(list.getItem(0, 0), "beta");
    EXPECT_EQ(list.removeItem(5), 0);
    EXPECT_EQ(list.removeItem(-1), 0);
    EXPECT_STREQ(list.getItem(1, 0), "alphabet");
}

TEST(StringList, FindsTheFirstThatContainsATextAnywhere) {
    UStringList list;
    fill(list);
    EXPECT_EQ(list.findItem("alpha", 0), 0);
    EXPECT_EQ(list.findItem("bet", 0), 1);
    EXPECT_EQ(list.findItem("habe", 0), 2);
    EXPECT_EQ(list.findItem("two", 1), 1);
    EXPECT_EQ(list.findItem("and", 1), 2);
    EXPECT_EQ(list.findItem("one", 0), -1);
    EXPECT_EQ(list.findItem("Alpha", 0), -1);
    EXPECT_EQ(list.findItem("", 0), 0);
    EXPECT_EQ(UStringList().findItem("", 0), -1);
}

TEST(StringList, LooksAtNamesForFieldsBelowOneAndAtValuesOtherwise) {
    UStringList list;
    fill(list);
    for (const int which : {0, -1, INT_MIN}) EXPECT_EQ(list.findItem("beta", which), 1);
    for (const int which : {1, 2, INT_MAX}) EXPECT_EQ(list.findItem("two", which), 1);
}

TEST(StringList, FindingWaitsForACallersLock) {
    UStringList list;
    fill(list);
    list.lock();
    auto finding = startedAndWaiting([&] { return list.findItem("beta", 0); });
    list.removeItem(0);
    list.unlock();
    EXPECT_EQ(finding.get(), 0);
}

TEST(StringList, WithoutMemoryAnItemIsNotAddedAndThatIsLogged) {
    UStringList list;
    for (int n = 1; n <= 4; ++n) {  // the item, name, value, the list's place
        const RecordLog log;
        const FailingAllocation failing(n);
        EXPECT_EQ(list.addItem("name", "value"), -1) << n;
        EXPECT_TRUE(failing.happened()) << n;
        EXPECT_EQ(recordsOf(log), n < 4 ? recordsWithout("UStringList::addItem - EXCEPTION")
                                        : recordsWithoutPlace(1));
    }
    EXPECT_EQ(list.getItem(0, 0), nullptr);
}

std::string blobOf(const UBlobList& list, int index) {
    unsigned int size = 99;
    const unsigned char* const data = list.getItem(index, &size);
    return {reinterpret_cast<const char*>(data), size};
}

TEST(BlobList, CopiesBytes) {
    UBlobList list;
    char bytes[] = {'a', '\0', 'b'};
    EXPECT_TRUE(list.addItem("name", bytes, sizeof bytes));
    bytes[0] = 'x';
    EXPECT_EQ(blobOf(list, 0), std::string("a\0b", 3));
}

TEST(BlobList, CopiesAnArraysBytes) {
    CArray<unsigned char, unsigned char> array;
    array.Add('a');
    array.Add('b');
    UBlobList list;
    EXPECT_TRUE(list.addItem("name", &array));
    array.SetAtGrow(0, 'x');
    EXPECT_EQ(blobOf(list, 0), "ab");
}

TEST(BlobList, EmptyBlobsHaveNoData) {
    UBlobList list;
    CArray<unsigned char, unsigned char> array;
    EXPECT_TRUE(list.addItem("a", "x", 0));
    EXPECT_TRUE(list.addItem("b", nullptr, 5));
    EXPECT_TRUE(list.addItem("c", &array));
    EXPECT_TRUE(list.addItem("d", static_cast<CArray<unsigned char, unsigned char>*>(nullptr)));
    for (int i = 0; i < 4; ++i) {
        unsigned int size = 99;
        EXPECT_EQ(list.getItem(i, &size), nullptr);
        EXPECT_EQ(size, 0u);
    }
}

void fill(UBlobList& list) {
    list.addItem("alpha", "1", 1);
    list.addItem("beta", "22", 2);
    list.addItem("beta", "333", 3);
    list.addItem(nullptr, "", 0);
}

TEST(BlobList, FindsTheFirstOfExactlyTheName) {
    UBlobList list;
    fill(list);
    EXPECT_EQ(list.findItem("alpha"), 0);
    EXPECT_EQ(list.findItem("beta"), 1);
    EXPECT_EQ(list.findItem("Beta"), -1);
    EXPECT_EQ(list.findItem("bet"), -1);
    EXPECT_EQ(list.findItem(""), 3);
    EXPECT_EQ(list.findItem(nullptr), 3);
}

TEST(BlobList, GivesDataAndSizeByIndexAndName) {
    UBlobList list;
    fill(list);
    unsigned int size = 99;
    EXPECT_EQ(list.getItem("beta", &size), list.getItem(1, nullptr));
    EXPECT_EQ(size, 2u);
    EXPECT_EQ(blobOf(list, 2), "333");
}

TEST(BlobList, TakesZeroForAnIndex) {
    UBlobList list;
    fill(list);
    unsigned int size = 99;
    EXPECT_NE(list.getItem(0, &size), nullptr);
    EXPECT_EQ(size, 1u);
    EXPECT_EQ(list.removeItem(0), 3);
}

TEST(BlobList, GivesNullAndNoSizeForWhatIsNotThere) {
    UBlobList list;
    fill(list);
    unsigned int size = 99;
    EXPECT_EQ(list.getItem(-1, &size), nullptr);
    EXPECT_EQ(list.getItem(4, &size), nullptr);
    EXPECT_EQ(list.getItem("gamma", &size), nullptr);
    EXPECT_EQ(size, 99u);
}

TEST(BlobList, RemovesByIndexAndName) {
    UBlobList list;
    fill(list);
    EXPECT_EQ(list.removeItem("beta"), 3);
    EXPECT_EQ(blobOf(list, 1), "333");
    EXPECT_EQ(list.removeItem(0), 2);
    EXPECT_EQ(list.removeItem("gamma"), 0);
    EXPECT_EQ(list.removeItem(7), 0);
    EXPECT_EQ(blobOf(list, 0), "333");
}

TEST(BlobList, FindingAndRemovingByNameWaitForACallersLock) {
    UBlobList list;
    fill(list);
    list.lock();
    auto finding = startedAndWaiting([&] { return list.findItem("beta"); });
    list.removeItem(0);
    list.unlock();
    EXPECT_EQ(finding.get(), 0);
    list.lock();
    auto removing = startedAndWaiting([&] { return list.removeItem("beta"); });
    list.removeItem(0);
    list.unlock();
    EXPECT_EQ(removing.get(), 1);
    EXPECT_EQ(list.findItem(""), 0);
}

TEST(BlobList, RefusesMoreBytesThanAnArrayHolds) {
    UBlobList list;
    const RecordLog log;
    EXPECT_FALSE(list.addItem("name", "x", 2147483648u));
    EXPECT_EQ(list.findItem("name"), -1);
    EXPECT_EQ(recordsOf(log),
              (std::vector<std::string>{
                  "1, , 0, , blob is longer than 2 GiB\n",
                  "1, /UClasses, LINE, , EXCEPTION caught: UBlobList::addItem - EXCEPTION\n"}));
}

TEST(BlobList, WithoutMemoryAnItemIsNotAddedAndThatIsLogged) {
    UBlobList list;
    for (int n = 1; n <= 4; ++n) {  // the item, name, data, the list's place
        const RecordLog log;
        const FailingAllocation failing(n);
        EXPECT_FALSE(list.addItem("name", "value", 5)) << n;
        EXPECT_TRUE(failing.happened()) << n;
        EXPECT_EQ(recordsOf(log), n < 4 ? recordsWithout("UBlobList::addItem - EXCEPTION")
                                        : recordsWithoutPlace(1));
    }
    EXPECT_EQ(list.findItem("name"), -1);
}

}  // namespace
