// Lists used from several threads; run under the thread sanitizer, too.

#include <gtest/gtest.h>

#include <string>

#include "UBlobList.h"
#include "UList.h"
#include "UStringList.h"
#include "UStrings.h"
#include "on_threads.h"

namespace {

constexpr int kSteps = 25000;
constexpr int kMostItems = 100;  // so that looking through a list stays short

// Few additions: each copies all the pointers that are there.
TEST(ListThreads, EveryAddedObjectIsThere) {
    UList list;
    onThreads(8, [&](int) {
        for (int i = 0; i < 1000; ++i) ASSERT_GT(list.addObject(new UObject), 0);
    });
    EXPECT_EQ(list.getCount(), 8000);
    list.deleteObjects();
}

TEST(ListThreads, AddingAndDeletingAndFindingDoNotDisturbEachOther) {
    UList list;
    onThreads(6, [&](int thread) {
        for (int i = 0; i < kSteps; ++i) {
            switch (thread) {
                case 0:
                case 1:
                    if (list.addObject(new UObject) > kMostItems) list.deleteObject(0);
                    break;
                case 2:
                    list.deleteObject(0);
                    break;
                case 3:
                    if (i % 100 == 0) list.deleteObjects();
                    break;
                default:
                    list.findObject([](const UObject* object) { return object == nullptr; });
            }
        }
    });
    list.deleteObjects();
    EXPECT_EQ(list.getCount(), 0);
}

TEST(ListThreads, PairsAreAddedRemovedAndFound) {
    UStringList list;
    onThreads(4, [&](int thread) {
        const std::string name = "name" + std::to_string(thread);
        for (int i = 0; i < kSteps; ++i) {
            if (thread == 0) {
                list.removeItem(0);
            } else if (thread == 1) {
                list.findItem("name2", 0);
            } else if (i % 2 == 0) {
                ASSERT_EQ(list.addItem(name.c_str(), "value"), 0);
            } else {
                list.removeItem(i % kMostItems);
            }
        }
    });
}

TEST(ListThreads, BlobsAreAddedRemovedAndFound) {
    UBlobList list;
    onThreads(4, [&](int thread) {
        for (int i = 0; i < kSteps; ++i) {
            if (thread == 0) {
                list.removeItem(0);
            } else if (thread == 1) {
                list.findItem("other");
            } else if (i % 2 == 0) {
                ASSERT_TRUE(list.addItem("name", "value", 5));
            } else {
                list.removeItem(i % kMostItems);
            }
        }
    });
}

TEST(ListThreads, EachNameIsRemovedWithItsOwnBlob) {
    UBlobList list;
    onThreads(4, [&](int thread) {
        const std::string name = "name" + std::to_string(thread);
        // Often enough for others to come between finding and removing, were those two steps.
        for (int i = 0; i < 4000; ++i) {
            for (int n = 0; n < 20; ++n) ASSERT_TRUE(list.addItem(name.c_str(), "value", 5));
            for (int n = 0; n < 20; ++n) list.removeItem(name.c_str());
        }
    });
    EXPECT_EQ(list.getItem(0, nullptr), nullptr);
}

TEST(ListThreads, CallersThatAgreeOnTheLockReadSeveralItems) {
    UStrings strings;
    onThreads(4, [&](int thread) {
        for (int i = 0; i < kSteps; ++i) {
            strings.lock();
            if (thread == 0 && strings.getCount() < kMostItems) {
                strings.addItem("text");
            } else if (thread == 1 && strings.getCount() > 10) {
                strings.removeItem(0);
            } else {
                for (int n = 0; n < strings.getCount() && n < 20; ++n) {
                    ASSERT_STREQ(strings.getItem(n), "text");
                }
                strings.find("text");
            }
            strings.unlock();
        }
    });
}

}  // namespace
