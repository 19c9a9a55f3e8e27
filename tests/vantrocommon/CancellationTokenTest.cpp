#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include <vantrocommon/http/CancellationToken.h>

namespace {

using vantrocommon::http::CancellationToken;

TEST(CancellationToken, CopiesShareOneFlagAndCallEachCallbackOnce) {
    CancellationToken token;
    const CancellationToken copy = token;
    int calls = 0;
    copy.OnCancel([&] { ++calls; });
    EXPECT_FALSE(token.IsCancelled());
    token.Cancel();
    token.Cancel();
    copy.Cancel();
    EXPECT_TRUE(copy.IsCancelled());
    EXPECT_EQ(calls, 1);
}

TEST(CancellationToken, ACallbackAddedAfterCancellationRunsAtOnce) {
    CancellationToken token;
    token.Cancel();
    bool called = false;
    token.OnCancel([&] { called = true; });
    EXPECT_TRUE(called);
}

TEST(CancellationToken, ARemovedCallbackIsNotCalled) {
    CancellationToken token;
    bool removedCalled = false;
    bool keptCalled = false;
    const auto removed = token.OnCancel([&] { removedCalled = true; });
    const auto kept = token.OnCancel([&] { keptCalled = true; });
    EXPECT_NE(removed, kept);
    token.RemoveOnCancel(removed);
    token.Cancel();
    EXPECT_FALSE(removedCalled);
    EXPECT_TRUE(keptCalled);
}

TEST(CancellationToken, ACallbackMayTouchTheTokenItself) {
    CancellationToken token;
    bool sawCancelled = false;
    token.OnCancel([&] {
        sawCancelled = token.IsCancelled();
        token.OnCancel([] {});  // no lock is held while callbacks run
    });
    token.Cancel();
    EXPECT_TRUE(sawCancelled);
}

TEST(CancellationToken, RacingCancelsAndRegistrationsCallEveryCallbackOnce) {
    CancellationToken token;
    std::atomic<int> calls{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 100; ++i) {
                token.OnCancel([&] { ++calls; });
            }
            token.Cancel();
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(calls.load(), 400);
}

}  // namespace
