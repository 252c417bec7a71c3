// The block behind a text: its layout, the shared empty record, reserving, releasing and locking.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <functional>
#include <string>
#include <type_traits>

#include "CString.h"
#include "text_of.h"

namespace {

using Data = CString::CStringData;

TEST(CStringBlock, ObjectIsOnePointerWide) {
    EXPECT_EQ(sizeof(CString), sizeof(char*));
    const CString s("abc");
    const char* stored;
    memcpy(&stored, &s, sizeof stored);
    EXPECT_EQ(stored, static_cast<const char*>(s));
}

TEST(CStringBlock, HeaderStandsDirectlyBeforeTheCharacters) {
    EXPECT_EQ(sizeof(Data), 16U);
    EXPECT_EQ(offsetof(Data, refCount), 0U);
    EXPECT_EQ(offsetof(Data, dataLength), 8U);
    EXPECT_EQ(offsetof(Data, allocLength), 12U);
    EXPECT_EQ(sizeof(Data::refCount), 8U);
    EXPECT_TRUE(std::is_signed_v<decltype(Data::refCount)>);
    EXPECT_EQ(sizeof(Data::dataLength), 4U);
    EXPECT_EQ(sizeof(Data::allocLength), 4U);

    const CString s("abc");
    const char* const characters = s;
    EXPECT_EQ(reinterpret_cast<const char*>(s.GetData()) + sizeof(Data), characters);
    EXPECT_EQ(s.GetData()->data(), characters);
}

TEST(CStringBlock, NewTextFillsItsBlockExactly) {
    const CString s("abc");
    EXPECT_EQ(s.GetData()->refCount, 1);
    EXPECT_EQ(s.GetData()->dataLength, 3);
    EXPECT_EQ(s.GetData()->allocLength, 3);
    EXPECT_EQ(static_cast<const char*>(s)[3], '\0');
}

TEST(CStringEmptyRecord, HoldsALockedCountNoLengthsAndOneNul) {
    EXPECT_EQ(rgInitData.header.refCount, -1);
    EXPECT_EQ(rgInitData.header.dataLength, 0);
    EXPECT_EQ(rgInitData.header.allocLength, 0);
    EXPECT_EQ(rgInitData.text, '\0');
    EXPECT_EQ(afxDataNil, &rgInitData.header);
    EXPECT_EQ(afxPchNil, &rgInitData.text);
    EXPECT_EQ(afxChNil, '\0');
}

TEST(CStringEmptyRecord, AfxGetEmptyStringRefersToThePointer) {
    EXPECT_EQ(&AfxGetEmptyString(), &afxPchNil);
    const CString s = AfxGetEmptyString();
    EXPECT_EQ(s.GetData(), afxDataNil);
}

// The record is constant: a write through it ends the program here.
TEST(CStringEmptyRecord, NoOperationOnAnEmptyTextWritesIt) {
    CString s;
    s.MakeUpper();
    s.MakeLower();
    s.MakeReverse();
    s.TrimLeft();
    s.TrimRight();
    s.Replace('a', 'b');
    s.Replace("a", "b");
    s.Empty();
    s.FreeExtra();
    s.Format("%.0s", "x");
    s.GetBuffer(0);
    s.ReleaseBuffer();
    s.ReleaseBuffer(0);
    s.ReleaseBuffer(5);
    s.GetBufferSetLength(0);
    s.LockBuffer();
    s.UnlockBuffer();
    s = "";
    s = CString();
    s += "";
    EXPECT_EQ(s.GetData(), afxDataNil);
    EXPECT_EQ(rgInitData.header.refCount, -1);
}

TEST(CStringGetBuffer, GivesTheBlockAsItIsWhenThatSuffices) {
    CString s("abcdef");
    const char* const block = s;
    EXPECT_EQ(s.GetBuffer(6), block);
    EXPECT_EQ(s.GetBuffer(0), block);
    EXPECT_EQ(s.GetBuffer(-1), block);
}

TEST(CStringGetBuffer, MovesTheTextIntoExactlyTheRoomAskedFor) {
    CString s("abc");
    char* const buffer = s.GetBuffer(100);
    EXPECT_EQ(s.GetAllocLength(), 100);
    EXPECT_EQ(textOf(s), "abc");
    EXPECT_STREQ(buffer, "abc");
    EXPECT_EQ(s.GetData()->refCount, 1);
}

TEST(CStringGetBuffer, OfASharedTextNeverTakesLessThanTheText) {
    CString s("abcdef");
    const CString other(s);
    s.GetBuffer(2);
    EXPECT_EQ(s.GetAllocLength(), 6);
    EXPECT_EQ(textOf(s), "abcdef");
    EXPECT_EQ(other.GetData()->refCount, 1);
    EXPECT_NE(s.GetData(), other.GetData());
}

TEST(CStringGetBuffer, RetainsEmbeddedNuls) {
    CString s("a\0b", 3);
    s.GetBuffer(10);
    EXPECT_EQ(textOf(s), std::string("a\0b", 3));
}

TEST(CStringReleaseBuffer, TakesTheLengthUpToTheNul) {
    CString s;
    strcpy(s.GetBuffer(10), "hello");
    s.ReleaseBuffer();
    EXPECT_EQ(textOf(s), "hello");
    EXPECT_EQ(s.GetAllocLength(), 10);
}

TEST(CStringReleaseBuffer, TakesTheLengthGiven) {
    CString s("abcdef");
    s.GetBuffer(6);
    s.ReleaseBuffer(4);
    EXPECT_EQ(textOf(s), "abcd");
    EXPECT_EQ(s[4], '\0');
}

TEST(CStringReleaseBuffer, LengthBeyondTheRoomCountsAsTheRoom) {
    CString s("abcdef");
    s.ReleaseBuffer(4);
    s.ReleaseBuffer(1000);
    EXPECT_EQ(s.GetLength(), 6);
}

TEST(CStringReleaseBuffer, UnterminatedTextEndsWithTheRoom) {
    CString s;
    memset(s.GetBuffer(4), 'x', 5);
    s.ReleaseBuffer();
    EXPECT_EQ(textOf(s), "xxxx");
}

TEST(CStringReleaseBuffer, UnsharesFirst) {
    CString s("abcdef");
    const CString other(s);
    s.ReleaseBuffer(2);
    EXPECT_EQ(textOf(s), "ab");
    EXPECT_EQ(textOf(other), "abcdef");
}

TEST(CStringGetBufferSetLength, SetsLengthAndTerminator) {
    CString s("abc");
    char* const buffer = s.GetBufferSetLength(8);
    EXPECT_EQ(s.GetLength(), 8);
    EXPECT_EQ(s.GetAllocLength(), 8);
    EXPECT_EQ(buffer[8], '\0');
    EXPECT_EQ(textOf(s).substr(0, 3), "abc");
    s.GetBufferSetLength(2);
    EXPECT_EQ(textOf(s), "ab");
    s.GetBufferSetLength(-1);
    EXPECT_EQ(textOf(s), "");
}

TEST(CStringFreeExtra, LeavesABlockOfExactlyTheText) {
    CString s("abc");
    s.GetBuffer(50);
    s.FreeExtra();
    EXPECT_EQ(s.GetAllocLength(), 3);
    EXPECT_EQ(textOf(s), "abc");
}

TEST(CStringFreeExtra, LeavesAFittingBlockAloneAndGivesAnEmptyOneUp) {
    CString s("abc");
    const char* const block = s;
    s.FreeExtra();
    EXPECT_EQ(static_cast<const char*>(s), block);
    s = "";
    s.FreeExtra();
    EXPECT_EQ(s.GetData(), afxDataNil);
}

TEST(CStringFreeExtra, OnASharedBlockMovesOnlyThisText) {
    CString s("abc");
    s.GetBuffer(50);
    const CString other(s);
    s.FreeExtra();
    EXPECT_EQ(s.GetAllocLength(), 3);
    EXPECT_EQ(other.GetAllocLength(), 50);
    EXPECT_EQ(other.GetData()->refCount, 1);
}

TEST(CStringLock, MarksTheBlockAndUnlockCountsOneOwner) {
    CString s("abc");
    EXPECT_EQ(s.LockBuffer(), static_cast<const char*>(s));
    EXPECT_EQ(s.GetData()->refCount, -1);
    s.UnlockBuffer();
    EXPECT_EQ(s.GetData()->refCount, 1);
}

TEST(CStringLock, OfASharedTextTakesAPrivateCopyFirst) {
    CString s("abc");
    const CString other(s);
    s.LockBuffer();
    EXPECT_NE(s.GetData(), other.GetData());
    EXPECT_EQ(other.GetData()->refCount, 1);
}

TEST(CStringLock, UnlockOfASharedTextForgetsNoSharer) {
    CString s("abc");
    const CString other(s);
    const CString third(s);
    s.UnlockBuffer();
    EXPECT_EQ(s.GetData()->refCount, 1);
    EXPECT_EQ(other.GetData()->refCount, 2);
    EXPECT_EQ(textOf(s), "abc");

    CString empty("abc");
    empty.ReleaseBuffer(0);
    const CString emptyToo(empty);
    empty.UnlockBuffer();
    EXPECT_EQ(empty.GetData(), afxDataNil);
    EXPECT_EQ(emptyToo.GetData()->refCount, 1);
}

TEST(CStringLock, WritesInPlaceWhileTheTextFits) {
    CString s("abc");
    const char* const block = s.LockBuffer();
    s.SetAt(0, 'X');
    s.MakeUpper();
    s = "yz";
    EXPECT_EQ(static_cast<const char*>(s), block);
    EXPECT_EQ(textOf(s), "yz");
    EXPECT_EQ(s.GetData()->refCount, -1);
}

TEST(CStringLock, EndsWithTheBlockWhenTheTextMovesToAnother) {
    const std::function<void(CString&)> moves[] = {
        [](CString& s) { s = "longer than before"; },
        [](CString& s) { s = CString("longer than before"); },
        [](CString& s) { s += "d"; },
        [](CString& s) { s.Replace("b", "BB"); },
        [](CString& s) { s.Format("%d", 5); },
        [](CString& s) { s.GetBuffer(10); },
        [](CString& s) { s.GetBufferSetLength(10); },
        [](CString& s) { s.ReleaseBuffer(1), s.FreeExtra(); },
    };
    for (const auto& move : moves) {
        CString s("abc");
        const char* const block = s.LockBuffer();
        move(s);
        EXPECT_NE(static_cast<const char*>(s), block);
        EXPECT_EQ(s.GetData()->refCount, 1);
    }
}

TEST(CStringLock, EmptyRetainsTheBlock) {
    CString s("abc");
    const char* const block = s.LockBuffer();
    s.Empty();
    EXPECT_EQ(static_cast<const char*>(s), block);
    EXPECT_EQ(s.GetLength(), 0);
    EXPECT_EQ(s.GetAllocLength(), 3);
    EXPECT_EQ(s.GetData()->refCount, -1);
}

TEST(CStringEmpty, GivesTheBlockUp) {
    CString s("abc");
    const CString other(s);
    s.Empty();
    EXPECT_EQ(s.GetData(), afxDataNil);
    EXPECT_EQ(other.GetData()->refCount, 1);
}

TEST(CStringEmpty, OfLengthZeroChangesNothing) {
    CString s("abc");
    s = "";
    s.Empty();
    EXPECT_EQ(s.GetAllocLength(), 3);
}

}  // namespace
