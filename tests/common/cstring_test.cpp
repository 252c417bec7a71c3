// Construction, assignment, access and concatenation.

#include "CString.h"

#include <gtest/gtest.h>

#include <climits>
#include <stdexcept>
#include <string>
#include <utility>

#include "text_of.h"

namespace {

const char* const kNull = nullptr;

bool isEmptyRecord(const CString& s) { return static_cast<const char*>(s) == afxPchNil; }

bool share(const CString& a, const CString& b) { return a.GetData() == b.GetData(); }

TEST(CStringConstruction, DefaultNullAndEmptyTextAllPointAtTheSharedEmptyRecord) {
    EXPECT_TRUE(isEmptyRecord(CString()));
    EXPECT_TRUE(isEmptyRecord(CString(kNull)));
    EXPECT_TRUE(isEmptyRecord(CString("")));
    EXPECT_EQ(CString().GetLength(), 0);
    EXPECT_TRUE(CString().IsEmpty());
}

TEST(CStringConstruction, CopyOfATextSharesItsBlockAndCounts) {
    const CString a("abc");
    EXPECT_EQ(a.GetData()->refCount, 1);
    {
        const CString b(a);
        EXPECT_TRUE(share(a, b));
        EXPECT_EQ(a.GetData()->refCount, 2);
    }
    EXPECT_EQ(a.GetData()->refCount, 1);
}

TEST(CStringConstruction, CopyOfALockedTextIsPrivate) {
    CString a("abc");
    a.LockBuffer();
    const CString b(a);
    EXPECT_FALSE(share(a, b));
    EXPECT_EQ(textOf(b), "abc");
    EXPECT_EQ(b.GetData()->refCount, 1);
    EXPECT_EQ(a.GetData()->refCount, -1);
}

TEST(CStringConstruction, CopyOfALockedTextWithRoomTakesABlockOfExactlyTheText) {
    CString a("abcdef");
    a.LockBuffer();
    a = "abc";
    ASSERT_EQ(a.GetAllocLength(), 6);
    EXPECT_EQ(CString(a).GetAllocLength(), 3);
}

TEST(CStringConstruction, CopyOfAnEmptyTextPointsAtTheEmptyRecord) {
    const CString a;
    const CString b(a);
    EXPECT_TRUE(isEmptyRecord(b));
}

TEST(CStringConstruction, MovedTextChangesHandsAndLeavesEmpty) {
    CString a("abc");
    const CString b(std::move(a));
    EXPECT_EQ(textOf(b), "abc");
    EXPECT_EQ(b.GetData()->refCount, 1);
    EXPECT_TRUE(isEmptyRecord(a));  // NOLINT(bugprone-use-after-move)
}

TEST(CStringConstruction, MovedTextTakesItsLockAlong) {
    CString a("abc");
    const char* const block = a.LockBuffer();
    const CString b(std::move(a));
    EXPECT_EQ(static_cast<const char*>(b), block);
    EXPECT_EQ(b.GetData()->refCount, -1);
    EXPECT_TRUE(isEmptyRecord(a));  // NOLINT(bugprone-use-after-move)
}

TEST(CStringConstruction, FromTextCopiesUpToTheNul) {
    char text[] = "abc\0def";
    const CString s(text);
    text[0] = 'X';
    EXPECT_EQ(textOf(s), "abc");
}

TEST(CStringConstruction, FromTextAndLengthCopiesEveryByte) {
    EXPECT_EQ(textOf(CString("ab\0cd", 5)), std::string("ab\0cd", 5));
    EXPECT_TRUE(isEmptyRecord(CString("abc", 0)));
    EXPECT_TRUE(isEmptyRecord(CString("abc", -1)));
    EXPECT_TRUE(isEmptyRecord(CString(kNull, 3)));
}

TEST(CStringConstruction, FromCharacterAndCountRepeats) {
    EXPECT_EQ(textOf(CString('x', 4)), "xxxx");
    EXPECT_TRUE(isEmptyRecord(CString('x', 0)));
    EXPECT_TRUE(isEmptyRecord(CString('x', -3)));
}

TEST(CStringAssignment, OfATextShares) {
    const CString a("abc");
    CString b("something else");
    b = a;
    EXPECT_TRUE(share(a, b));
    EXPECT_EQ(a.GetData()->refCount, 2);
}

TEST(CStringAssignment, OfItselfOrASharerChangesNothing) {
    CString a("abc");
    const CString b(a);
    a = b;
    EXPECT_EQ(a.GetData()->refCount, 2);
    const CString& self = a;
    a = self;
    EXPECT_EQ(a.GetData()->refCount, 2);
}

TEST(CStringAssignment, ToALockedTextCopiesIntoItsBlock) {
    CString a("abcdef");
    const char* const block = a.LockBuffer();
    const CString b("xyz");
    a = b;
    EXPECT_EQ(static_cast<const char*>(a), block);
    EXPECT_EQ(textOf(a), "xyz");
    EXPECT_EQ(a.GetData()->refCount, -1);
    EXPECT_EQ(b.GetData()->refCount, 1);
}

TEST(CStringAssignment, OfALockedTextCopies) {
    CString a("abc");
    a.LockBuffer();
    CString b;
    b = a;
    EXPECT_FALSE(share(a, b));
    EXPECT_EQ(textOf(b), "abc");
}

TEST(CStringAssignment, OfTheEmptyTextRetainsAnUnsharedBlock) {
    CString a("abc");
    const char* const block = a;
    a = CString();
    EXPECT_EQ(static_cast<const char*>(a), block);
    EXPECT_EQ(textOf(a), "");
    EXPECT_EQ(a.GetAllocLength(), 3);
}

TEST(CStringAssignment, OfTheEmptyTextLeavesASharedBlock) {
    CString a("abc");
    const CString b(a);
    a = "";
    EXPECT_TRUE(isEmptyRecord(a));
    EXPECT_EQ(b.GetData()->refCount, 1);
    EXPECT_EQ(textOf(b), "abc");
}

TEST(CStringAssignment, OfATemporaryTakesItsBlock) {
    CString a("abc");
    CString b("xyz");
    const char* const block = b;
    a = std::move(b);
    EXPECT_EQ(static_cast<const char*>(a), block);
    EXPECT_EQ(a.GetData()->refCount, 1);
    EXPECT_TRUE(isEmptyRecord(b));  // NOLINT(bugprone-use-after-move)
}

TEST(CStringAssignment, OfATemporaryToALockedTextCopiesIntoItsBlock) {
    CString a("abcdef");
    const char* const block = a.LockBuffer();
    a = CString("x") + "y";
    EXPECT_EQ(static_cast<const char*>(a), block);
    EXPECT_EQ(textOf(a), "xy");
}

TEST(CStringAssignment, OfALockedTextThatIsGivenAwayCopies) {
    CString a("abc");
    const char* const block = a.LockBuffer();
    CString b("xyz");
    b = std::move(a);
    EXPECT_NE(static_cast<const char*>(b), block);
    EXPECT_EQ(textOf(b), "abc");
    EXPECT_EQ(b.GetData()->refCount, 1);
    EXPECT_EQ(textOf(a), "abc");  // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(a.GetData()->refCount, -1);
}

TEST(CStringAssignment, OfOwnPointerChangesNothing) {
    CString a("abc\0def", 7);
    a = static_cast<const char*>(a);
    EXPECT_EQ(a.GetLength(), 7);
}

TEST(CStringAssignment, OfAPointerIntoTheOwnTextKeepsThatPart) {
    CString alone("abcdef");
    alone = static_cast<const char*>(alone) + 2;
    EXPECT_EQ(textOf(alone), "cdef");

    CString shared("abcdef");
    const CString other(shared);
    shared = static_cast<const char*>(shared) + 2;
    EXPECT_EQ(textOf(shared), "cdef");
    EXPECT_EQ(textOf(other), "abcdef");
}

TEST(CStringAssignment, OfAShorterTextStaysInTheBlockAndOfALongerOneMoves) {
    CString a("abcdef");
    const char* const block = a;
    a = "xy";
    EXPECT_EQ(static_cast<const char*>(a), block);
    EXPECT_EQ(a.GetAllocLength(), 6);
    a = "longer than before";
    EXPECT_EQ(a.GetAllocLength(), 18);
    EXPECT_EQ(textOf(a), "longer than before");
}

TEST(CStringAssignment, OfNullEmpties) {
    CString a("abc");
    a = kNull;
    EXPECT_EQ(textOf(a), "");
}

TEST(CStringAssignment, OfACharacterStoresIt) {
    CString a;
    a = 'q';
    EXPECT_EQ(textOf(a), "q");
}

TEST(CStringAssignment, OfTheNulCharacterStoresATextOfLengthOne) {
    CString a("abc");
    a = '\0';
    EXPECT_EQ(textOf(a), std::string(1, '\0'));
}

TEST(CStringAccess, IndexAndGetAtReadSignedBytes) {
    const CString a("a\xFF");
    EXPECT_EQ(a.GetAt(0), 'a');
    EXPECT_EQ(a[1], static_cast<char>(-1));
    EXPECT_EQ(a[2], '\0');
}

TEST(CStringAccess, SetAtWritesOnlyThisCopy) {
    CString a("abc");
    const CString b(a);
    a.SetAt(1, 'X');
    EXPECT_EQ(textOf(a), "aXc");
    EXPECT_EQ(textOf(b), "abc");
}

TEST(CStringAccess, ComparesAsTextNotAsPointer) {
    const CString a("abc");
    EXPECT_TRUE(a == CString("abc"));
    EXPECT_TRUE(a == "abc");
    EXPECT_TRUE("abd" != a);
    EXPECT_TRUE(a < CString("abd"));
    EXPECT_TRUE(a > "abb");
    EXPECT_TRUE(CString() == kNull);
}

TEST(CStringConcatenation, AppendsTextStringAndCharacter) {
    CString a("ab");
    a += "cd";
    a += CString("ef");
    a += 'g';
    EXPECT_EQ(textOf(a), "abcdefg");
}

TEST(CStringConcatenation, NulCharacterAndNullTextAppendNothing) {
    CString a("ab");
    a += '\0';
    a += kNull;
    a += CString();
    EXPECT_EQ(textOf(a), "ab");
}

TEST(CStringConcatenation, OfNothingLeavesTheTextShared) {
    CString a("ab");
    const CString b(a);
    a += '\0';
    a += "";
    a += CString();
    EXPECT_TRUE(share(a, b));
}

TEST(CStringConcatenation, AppendsEmbeddedNulsOfAString) {
    CString a("ab");
    a += CString("c\0d", 3);
    EXPECT_EQ(textOf(a), std::string("abc\0d", 5));
}

TEST(CStringConcatenation, WithinCapacityStaysInPlace) {
    CString a("ab");
    const char* const block = a.GetBuffer(10);
    a += "cdef";
    EXPECT_EQ(static_cast<const char*>(a), block);
    EXPECT_EQ(textOf(a), "abcdef");
    EXPECT_EQ(a.GetAllocLength(), 10);
}

TEST(CStringConcatenation, BeyondCapacityTakesABlockOfExactlyTheSum) {
    CString a("ab");
    a += "cde";
    EXPECT_EQ(a.GetAllocLength(), 5);
}

TEST(CStringConcatenation, OfItselfIsSafeInPlaceAndMoved) {
    CString moved("abc");
    moved += moved;
    EXPECT_EQ(textOf(moved), "abcabc");

    CString inPlace("abc");
    inPlace.GetBuffer(20);
    inPlace += inPlace;
    inPlace += static_cast<const char*>(inPlace) + 4;
    EXPECT_EQ(textOf(inPlace), "abcabcbc");
}

TEST(CStringConcatenation, OfWhatStandsInTheOwnRoomBehindTheTextIsSafe) {
    CString s("abcdefgh");
    const char* const own = s;
    s = "x";
    s += own + 2;
    EXPECT_EQ(textOf(s), "xcdefgh");
}

TEST(CStringConcatenation, OnASharedTextLeavesTheOtherAlone) {
    CString a("abc");
    a.GetBuffer(10);
    const CString b(a);
    a += "d";
    EXPECT_EQ(textOf(a), "abcd");
    EXPECT_EQ(textOf(b), "abc");
    EXPECT_EQ(a.GetAllocLength(), 4);
}

TEST(CStringConcatenation, OperatorsGiveABlockOfExactlyTheSum) {
    const CString a("ab");
    const CString b("cd");
    const std::pair<CString, std::string> rows[] = {
        {a + b, "abcd"},       {a + "xyz", "abxyz"},    {"xyz" + a, "xyzab"}, {a + 'z', "abz"},
        {'z' + a, "zab"},      {a + kNull, "ab"},       {kNull + a, "ab"},    {a + CString(), "ab"},
        {CString() + b, "cd"}, {a + '\0', {"ab\0", 3}},
    };
    for (const auto& [sum, expected] : rows) {
        EXPECT_EQ(textOf(sum), expected);
        EXPECT_EQ(sum.GetAllocLength(), static_cast<int>(expected.size()));
    }
}

TEST(CStringConcatenation, OfNothingStaysTheEmptyRecord) {
    EXPECT_TRUE(isEmptyRecord(CString() + CString()));
    EXPECT_TRUE(isEmptyRecord(CString() + kNull));
}

TEST(CStringConcatenation, OfOneTextAndNothingIsAFreshCopy) {
    const CString a("ab");
    EXPECT_FALSE(share(a, a + ""));
}

TEST(CStringLength, BeyondTwoGibibytesRaisesAndChangesNothing) {
    CString a("abc");
    a.GetBufferSetLength(INT_MAX);
    const char* const block = a;
    EXPECT_THROW(a += "x", std::length_error);
    EXPECT_THROW(a + "x", std::length_error);
    EXPECT_EQ(static_cast<const char*>(a), block);
    EXPECT_EQ(a.GetLength(), INT_MAX);
}

}  // namespace
