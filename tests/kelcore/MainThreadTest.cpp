#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/MainThreadFixture.h"

namespace {

using kelcore::threads::AsyncCallFromMainThread;
using kelcore::threads::CallFromMainThread;
using kelcore::threads::CurrentThreadIsMainThread;

class MainThread : public testsupport::MainThreadFixture {};

TEST_F(MainThread, AsyncCallNeverRunsInlineEvenOnTheMainThread) {
    bool ran = false;
    AsyncCallFromMainThread([&] { ran = true; }, 0);
    EXPECT_FALSE(ran);
    EXPECT_EQ(Pump(), 1u);
    EXPECT_TRUE(ran);
}

TEST_F(MainThread, RunsClosuresInPostOrder) {
    std::vector<int> order;
    for (int i = 0; i < 100; ++i) {
        AsyncCallFromMainThread([&order, i] { order.push_back(i); }, 0);
    }
    Pump();
    ASSERT_EQ(order.size(), 100u);
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(order[i], i);
    }
}

TEST_F(MainThread, KeepsEachPostingThreadsOrderAcrossThreads) {
    constexpr int kThreads = 8;
    constexpr int kPerThread = 2000;
    std::vector<std::vector<int>> seen(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&seen, t] {
            for (int i = 0; i < kPerThread; ++i) {
                AsyncCallFromMainThread(
                    [&seen, t, i] {
                        EXPECT_TRUE(CurrentThreadIsMainThread());
                        seen[t].push_back(i);
                    },
                    0);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    Pump();
    for (int t = 0; t < kThreads; ++t) {
        ASSERT_EQ(seen[t].size(), static_cast<size_t>(kPerThread));
        for (int i = 0; i < kPerThread; ++i) {
            ASSERT_EQ(seen[t][i], i) << "thread " << t;
        }
    }
}

TEST_F(MainThread, SynchronousCallRunsInlineOnTheMainThread) {
    bool ran = false;
    CallFromMainThread([&] { ran = true; }, 0, true);
    EXPECT_TRUE(ran);
    EXPECT_EQ(queue->Size(), 0u);
}

TEST_F(MainThread, SynchronousCallFromAnotherThreadIsQueued) {
    std::atomic<bool> ranInline{false};
    bool ranOnMain = false;
    std::thread([&] {
        CallFromMainThread([&] { ranOnMain = CurrentThreadIsMainThread(); }, 0, true);
        ranInline = ranOnMain;
    }).join();
    EXPECT_FALSE(ranInline);
    Pump();
    EXPECT_TRUE(ranOnMain);
}

TEST_F(MainThread, AsynchronousCallIsQueuedOnTheMainThreadToo) {
    bool ran = false;
    CallFromMainThread([&] { ran = true; }, 0, false);
    EXPECT_FALSE(ran);
    Pump();
    EXPECT_TRUE(ran);
}

TEST_F(MainThread, OnlyTheMarkedThreadIsMain) {
    EXPECT_TRUE(CurrentThreadIsMainThread());
    bool otherIsMain = true;
    std::thread([&] { otherIsMain = CurrentThreadIsMainThread(); }).join();
    EXPECT_FALSE(otherIsMain);
}

TEST_F(MainThread, PumpUntilWaitsForAPostFromAnotherThread) {
    std::atomic<bool> delivered{false};
    std::thread poster([&] { AsyncCallFromMainThread([&] { delivered = true; }, 0); });
    PumpUntil([&] { return delivered.load(); });
    poster.join();
    EXPECT_TRUE(delivered);
}

TEST_F(MainThread, PumpUntilGivesUpAtTheTimeout) {
    EXPECT_FALSE(queue->PumpUntil([] { return false; }, std::chrono::milliseconds(20)));
}

}  // namespace
