#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/async/Executors.h>
#include <kelcore/logging/CapturedLogForTesting.h>
#include <kelcore/threads/Executors.h>
#include <kelcore/threads/ManualClock.h>
#include <kelcore/threads/ManualExecutor.h>
#include <kelcore/threads/ThreadPoolExecutor.h>

namespace {

using namespace std::chrono_literals;
using kelcore::threads::AsyncExecutor;
using kelcore::threads::ThreadPoolExecutor;

constexpr auto kPatience = 30s;

// Posts a task that reports the thread it ran on, and waits for the report.
std::thread::id RunOn(AsyncExecutor& executor) {
    std::promise<std::thread::id> ranOn;
    auto report = ranOn.get_future();
    executor.Post([&] { ranOn.set_value(std::this_thread::get_id()); });
    EXPECT_EQ(report.wait_for(kPatience), std::future_status::ready);
    return report.get();
}

TEST(ThreadPoolExecutor, RunsAPostedTaskOnAWorker) {
    ThreadPoolExecutor pool(2);
    bool onWorker = false;
    std::promise<void> done;
    pool.Post([&] {
        onWorker = pool.RunsTasksOnCurrentThread();
        done.set_value();
    });
    ASSERT_EQ(done.get_future().wait_for(kPatience), std::future_status::ready);
    EXPECT_TRUE(onWorker);
    EXPECT_FALSE(pool.RunsTasksOnCurrentThread());
    EXPECT_EQ(pool.ThreadCount(), 2u);
}

TEST(ThreadPoolExecutor, RunsEveryPostedTask) {
    ThreadPoolExecutor pool(3);
    constexpr int kTasks = 2000;
    std::atomic<int> ran{0};
    std::promise<void> allDone;
    for (int i = 0; i < kTasks; ++i) {
        pool.Post([&] {
            if (++ran == kTasks) {
                allDone.set_value();
            }
        });
    }
    ASSERT_EQ(allDone.get_future().wait_for(kPatience), std::future_status::ready);
    EXPECT_EQ(ran.load(), kTasks);
}

TEST(ThreadPoolExecutor, DelayedTaskRunsNoEarlierThanItsDelay) {
    ThreadPoolExecutor pool(1);
    const auto posted = std::chrono::steady_clock::now();
    std::promise<std::chrono::steady_clock::time_point> ranAt;
    pool.PostAfterDelay([&] { ranAt.set_value(std::chrono::steady_clock::now()); }, 50);
    auto report = ranAt.get_future();
    ASSERT_EQ(report.wait_for(kPatience), std::future_status::ready);
    EXPECT_GE(report.get() - posted, 50ms);
}

TEST(ThreadPoolExecutor, DelayedTasksFireInDelayOrder) {
    ThreadPoolExecutor pool(1);
    std::mutex mutex;
    std::vector<int> order;
    std::promise<void> last;
    pool.PostAfterDelay(
        [&] {
            std::lock_guard lock(mutex);
            order.push_back(2);
            last.set_value();
        },
        80);
    pool.PostAfterDelay(
        [&] {
            std::lock_guard lock(mutex);
            order.push_back(1);
        },
        10);
    ASSERT_EQ(last.get_future().wait_for(kPatience), std::future_status::ready);
    std::lock_guard lock(mutex);
    EXPECT_EQ(order, (std::vector<int>{1, 2}));
}

TEST(ThreadPoolExecutor, ATaskThatThrowsIsLoggedAndDoesNotStopThePool) {
    kelcore::logging::CapturedLogForTesting log;
    ThreadPoolExecutor pool(1);
    pool.Post([] { throw std::runtime_error("task failure"); });
    // One worker: the task behind the throwing one runs only after it has been logged.
    EXPECT_NE(RunOn(pool), std::this_thread::get_id());
    const auto entries = log.Entries();
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].severity, kelcore::logging::Severity::Error);
    EXPECT_NE(entries[0].text.find("task failure"), std::string::npos) << entries[0].text;
}

TEST(ThreadPoolExecutor, PostsAfterShutdownAreDropped) {
    auto pool = std::make_shared<ThreadPoolExecutor>(1);
    pool->Shutdown();
    auto token = std::make_shared<int>(0);
    std::weak_ptr<int> watch = token;
    pool->Post([token] { ++*token; });
    pool->PostAfterDelay([token] { ++*token; }, 0);
    token.reset();
    EXPECT_TRUE(watch.expired()) << "a dropped task was kept";
    pool->Shutdown();  // a second time does nothing
}

TEST(ThreadPoolExecutor, ShutdownDropsPendingDelayedTasksAndWaitsForTheRunningOne) {
    auto pool = std::make_shared<ThreadPoolExecutor>(1);
    std::promise<void> started;
    std::promise<void> release;
    auto releaseSignal = release.get_future().share();
    std::atomic<bool> finished{false};
    std::atomic<bool> delayedRan{false};
    pool->Post([&] {
        started.set_value();
        releaseSignal.wait();
        finished = true;
    });
    pool->PostAfterDelay([&] { delayedRan = true; }, 3'600'000);
    ASSERT_EQ(started.get_future().wait_for(kPatience), std::future_status::ready);
    std::thread releaser([&] { release.set_value(); });
    pool->Shutdown();
    releaser.join();
    EXPECT_TRUE(finished);
    EXPECT_FALSE(delayedRan);
}

TEST(ThreadPoolExecutor, DroppingTheLastReferenceFromItsOwnTaskDoesNotDeadlock) {
    auto pool = std::make_shared<ThreadPoolExecutor>(1);
    auto holder = std::make_shared<std::shared_ptr<ThreadPoolExecutor>>(pool);
    std::promise<void> othersDropped;
    std::promise<void> dropped;
    pool->Post([holder, gate = othersDropped.get_future().share(), &dropped] {
        gate.wait();
        holder->reset();  // the last reference: the pool is freed on its own worker
        dropped.set_value();
    });
    pool.reset();
    holder.reset();
    othersDropped.set_value();
    EXPECT_EQ(dropped.get_future().wait_for(kPatience), std::future_status::ready);
}

TEST(ThreadPoolExecutor, DroppingTheLastReferenceWithAFinishedTasksClosureIsSafe) {
    // The closure outlives the task body: the worker's run loop destroys it afterwards.
    struct LastHolder {
        std::shared_ptr<ThreadPoolExecutor> pool;
        std::promise<void>* released;
        ~LastHolder() {
            pool.reset();
            released->set_value();
        }
    };
    std::promise<void> released;
    std::promise<void> othersDropped;
    auto pool = std::make_shared<ThreadPoolExecutor>(2);
    pool->Post([holder = std::make_shared<LastHolder>(pool, &released),
                gate = othersDropped.get_future().share()] { gate.wait(); });
    pool.reset();
    othersDropped.set_value();
    EXPECT_EQ(released.get_future().wait_for(kPatience), std::future_status::ready);
}

TEST(Executors, ProcessPoolsRunPostedAndDelayedTasks) {
    auto io = kelcore::threads::GetIOBoundExecutor();
    auto cpu = kelcore::threads::GetDefaultExecutor();
    std::promise<void> posted;
    std::promise<void> delayed;
    io->Post([&] { posted.set_value(); });
    cpu->PostAfterDelay([&] { delayed.set_value(); }, 20);
    EXPECT_EQ(posted.get_future().wait_for(kPatience), std::future_status::ready);
    EXPECT_EQ(delayed.get_future().wait_for(kPatience), std::future_status::ready);
}

TEST(Executors, ProcessPoolsAreCreatedOnceAndAreDistinct) {
    auto io = kelcore::threads::GetIOBoundExecutor();
    auto cpu = kelcore::threads::GetDefaultExecutor();
    EXPECT_EQ(io, kelcore::threads::GetIOBoundExecutor());
    EXPECT_EQ(cpu, kelcore::threads::GetDefaultExecutor());
    EXPECT_EQ(cpu, kelcore::async::GetDefaultExecutor());
    EXPECT_NE(io, cpu);
    auto ioPool = std::dynamic_pointer_cast<ThreadPoolExecutor>(io);
    auto cpuPool = std::dynamic_pointer_cast<ThreadPoolExecutor>(cpu);
    ASSERT_TRUE(ioPool && cpuPool);
    EXPECT_GE(cpuPool->ThreadCount(), 2u);
    EXPECT_GT(ioPool->ThreadCount(), cpuPool->ThreadCount());
}

TEST(Executors, AnInstalledExecutorReplacesThePoolUntilReset) {
    auto pool = kelcore::threads::GetDefaultExecutor();
    auto manual = std::make_shared<kelcore::threads::ManualExecutor>(
        std::make_shared<kelcore::threads::ManualClock>());
    EXPECT_EQ(kelcore::threads::SetDefaultExecutor(manual), nullptr);
    EXPECT_EQ(kelcore::threads::GetDefaultExecutor(), manual);
    EXPECT_EQ(kelcore::async::GetDefaultExecutor(), manual);
    EXPECT_NE(kelcore::threads::GetIOBoundExecutor(), manual);
    EXPECT_EQ(kelcore::threads::SetDefaultExecutor(nullptr), manual);
    EXPECT_EQ(kelcore::threads::GetDefaultExecutor(), pool);
}

TEST(Executors, TasksStillQueuedAtExitDoNotCrashTheProcess) {
    // Leaves a long delayed task and a busy queue behind; exit must shut the pools down cleanly
    // (under the sanitizers: without reports).
    auto io = kelcore::threads::GetIOBoundExecutor();
    io->PostAfterDelay([] {}, 3'600'000);
    for (int i = 0; i < 100; ++i) {
        io->Post([] {});
    }
    EXPECT_NE(RunOn(*io), std::this_thread::get_id());
}

}  // namespace
