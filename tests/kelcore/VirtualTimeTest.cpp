#include <chrono>
#include <functional>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/async/Executors.h>
#include <kelcore/async/Future.h>
#include <kelcore/threads/Clock.h>
#include <kelcore/threads/Executors.h>
#include <kelcore/threads/VirtualTime.h>

namespace {

using namespace std::chrono_literals;
using kelcore::threads::GetDefaultExecutor;
using kelcore::threads::GetIOBoundExecutor;
using kelcore::threads::VirtualTime;

TEST(VirtualTime, InstallsOneManualExecutorForBothPoolsAndRestoresThem) {
    const auto realDefault = GetDefaultExecutor();
    const auto realIOBound = GetIOBoundExecutor();
    {
        VirtualTime time;
        EXPECT_EQ(GetDefaultExecutor(), time.GetExecutor());
        EXPECT_EQ(GetIOBoundExecutor(), time.GetExecutor());
        EXPECT_EQ(kelcore::async::GetDefaultExecutor(), time.GetExecutor());
        EXPECT_EQ(kelcore::threads::GetClock(), time.GetClock());
    }
    EXPECT_EQ(GetDefaultExecutor(), realDefault);
    EXPECT_EQ(GetIOBoundExecutor(), realIOBound);
    EXPECT_NE(kelcore::threads::GetClock(), nullptr);
}

TEST(VirtualTime, NestedVirtualTimesRestoreTheOuterOne) {
    VirtualTime outer;
    {
        VirtualTime inner;
        EXPECT_EQ(GetIOBoundExecutor(), inner.GetExecutor());
    }
    EXPECT_EQ(GetIOBoundExecutor(), outer.GetExecutor());
    EXPECT_EQ(kelcore::threads::GetClock(), outer.GetClock());
}

TEST(VirtualTime, NowFollowsTheVirtualClockOnly) {
    VirtualTime time;
    const auto start = kelcore::threads::Now();
    EXPECT_EQ(start, time.Now());
    time.AdvanceBy(90s);
    EXPECT_EQ(kelcore::threads::Now() - start, 90s);
}

TEST(VirtualTime, PostNeverRunsInlineAndRunUntilIdleRunsIt) {
    VirtualTime time;
    bool ran = false;
    GetIOBoundExecutor()->Post([&] { ran = true; });
    EXPECT_FALSE(ran);
    EXPECT_EQ(time.RunUntilIdle(), 1u);
    EXPECT_TRUE(ran);
}

TEST(VirtualTime, DelayedPostsFireInTimeOrderAndNotBeforeTheirTime) {
    VirtualTime time;
    const auto start = time.Now();
    std::vector<std::pair<int, std::chrono::steady_clock::duration>> fired;
    auto record = [&](int id) { return [&, id] { fired.emplace_back(id, time.Now() - start); }; };
    auto executor = GetIOBoundExecutor();
    executor->PostAfterDelay(record(3), 3000);
    executor->PostAfterDelay(record(1), 1000);
    executor->PostAfterDelay(record(2), 2000);

    EXPECT_EQ(time.RunUntilIdle(), 0u);
    time.AdvanceBy(999ms);
    EXPECT_TRUE(fired.empty());
    time.AdvanceBy(1ms);
    ASSERT_EQ(fired.size(), 1u);
    time.AdvanceBy(5s);

    using Fired = std::vector<std::pair<int, std::chrono::steady_clock::duration>>;
    EXPECT_EQ(fired, (Fired{{1, 1s}, {2, 2s}, {3, 3s}}));
    EXPECT_EQ(time.Now() - start, 6s);
}

TEST(VirtualTime, EqualDueTimesRunInPostOrder) {
    VirtualTime time;
    std::vector<int> order;
    for (int i = 0; i < 10; ++i) {
        GetDefaultExecutor()->PostAfterDelay([&order, i] { order.push_back(i); }, 500);
    }
    time.AdvanceBy(500ms);
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
}

TEST(VirtualTime, TasksPostedWhileAdvancingRunIfTheyFallDueInsideTheWindow) {
    VirtualTime time;
    const auto start = time.Now();
    std::vector<std::chrono::steady_clock::duration> ticks;
    // A five-second tick that re-posts itself, as a fetch queue's pump does.
    std::function<void()> tick = [&] {
        ticks.push_back(time.Now() - start);
        GetIOBoundExecutor()->PostAfterDelay(tick, 5000);
    };
    GetIOBoundExecutor()->Post(tick);

    time.AdvanceBy(12s);
    EXPECT_EQ(ticks, (std::vector<std::chrono::steady_clock::duration>{0s, 5s, 10s}));
    EXPECT_EQ(time.PendingCount(), 1u);  // the one due at 15 s waits
    EXPECT_EQ(time.GetExecutor()->TimeToNextTask(), 3s);
}

TEST(VirtualTime, AdvancingSixtySecondsIsInstant) {
    VirtualTime time;
    int runs = 0;
    std::function<void()> tick = [&] {
        ++runs;
        GetIOBoundExecutor()->PostAfterDelay(tick, 5000);
    };
    GetIOBoundExecutor()->PostAfterDelay(tick, 5000);
    const auto realStart = std::chrono::steady_clock::now();

    time.AdvanceBy(60s);

    EXPECT_EQ(runs, 12);
    EXPECT_LT(std::chrono::steady_clock::now() - realStart, 2s);
}

TEST(VirtualTime, AContinuationPostedByADelayedTaskRunsInTheSameAdvance) {
    VirtualTime time;
    kelcore::async::Promise<int> promise;
    int seen = 0;
    promise.GetFuture().Then(GetDefaultExecutor(),
                             [&](const kelcore::async::Future<int>& f) { seen = f.Get(); });
    GetIOBoundExecutor()->PostAfterDelay([promise = std::make_shared<kelcore::async::Promise<int>>(
                                              std::move(promise))] { promise->SetValue(60); },
                                         60000);
    time.AdvanceBy(59s);
    EXPECT_EQ(seen, 0);
    time.AdvanceBy(1s);
    EXPECT_EQ(seen, 60);
}

TEST(VirtualTime, EndingDropsWaitingTasksAndCancelsTheirFutures) {
    kelcore::async::Future<int> future;
    {
        VirtualTime time;
        auto promise = std::make_shared<kelcore::async::Promise<int>>(GetIOBoundExecutor());
        future = promise->GetFuture();
        GetIOBoundExecutor()->PostAfterDelay([promise] { promise->SetValue(1); }, 10'000);
    }
    EXPECT_EQ(kelcore::config::ExtractResultFromException(future),
              kelcore::config::kResultFutureCancelled);
}

}  // namespace
