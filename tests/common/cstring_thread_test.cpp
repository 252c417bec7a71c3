// Reference counts from several threads: meant for the thread sanitizer, and checked by the counts
// and texts that are left.

#include <gtest/gtest.h>

#include <array>
#include <barrier>
#include <thread>

#include "CString.h"
#include "on_threads.h"
#include "text_of.h"

namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 20000;

TEST(CStringThreads, CopyAssignAndDestroyOneBlock) {
    const CString shared("a text that all of them share");
    onThreads(kThreads, [&shared](int) {
        CString kept;
        for (int i = 0; i < kRounds; ++i) {
            const CString copy(shared);
            CString other("own");
            other = copy;
            kept = other;
            if (i % 7 == 0) kept = "something else";
        }
        EXPECT_TRUE(kept == shared || kept == "something else");
    });
    EXPECT_EQ(shared.GetData()->refCount, 1);
}

// Few rounds: each starts a thread.
TEST(CStringThreads, LastOwnersGoOnDifferentThreads) {
    for (int i = 0; i < 2000; ++i) {
        CString a("abc");
        CString b(a);
        std::thread other([mine = std::move(a)]() mutable { mine.Empty(); });
        b.Empty();
        other.join();
    }
}

TEST(CStringThreads, SharersModifyAtOnce) {
    std::array<CString, 2> sharers;
    const auto share = [&sharers] {
        sharers[0] = CString("text");
        sharers[1] = sharers[0];
    };
    share();
    std::barrier bothModified(2, [&]() noexcept {
        EXPECT_EQ(textOf(sharers[0]), "Aext-one");
        EXPECT_EQ(textOf(sharers[1]), "Bext-two");
        share();
    });
    onThreads(2, [&](int at) {
        for (int i = 0; i < 50000; ++i) {
            CString& mine = sharers[static_cast<std::size_t>(at)];
            mine.SetAt(0, at == 0 ? 'A' : 'B');
            mine += at == 0 ? "-one" : "-two";
            bothModified.arrive_and_wait();
        }
    });
}

TEST(CStringThreads, AllUseTheEmptyText) {
    const CString empty;
    onThreads(kThreads, [&empty](int) {
        for (int i = 0; i < kRounds; ++i) {
            CString mine(empty);
            mine.MakeUpper();
            mine.TrimRight();
            mine.LockBuffer();
            mine.UnlockBuffer();
            mine.ReleaseBuffer();
            mine = empty;
            mine += "x";
            mine.Empty();
        }
    });
    EXPECT_EQ(rgInitData.header.refCount, -1);
}

TEST(CStringThreads, AllCopyALockedText) {
    CString locked("locked");
    locked.LockBuffer();
    onThreads(kThreads, [&locked](int) {
        for (int i = 0; i < kRounds; ++i) {
            const CString copy(locked);
            EXPECT_EQ(copy.GetData()->refCount, 1);
        }
    });
    EXPECT_EQ(locked.GetData()->refCount, -1);
}

}  // namespace
