#include <atomic>
#include <chrono>
#include <condition_variable>
#include <future>
#include <memory>
#include <mutex>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/async/Future.h>
#include <kelcore/async/Promise.h>
#include <kelcore/config/kel_exception.h>
#include <kelcore/threads/ManualClock.h>
#include <kelcore/threads/ManualExecutor.h>
#include <kelcore/threads/ThreadPoolExecutor.h>

namespace {

using kelcore::async::Future;
using kelcore::async::MakeFailedFuture;
using kelcore::async::MakeReadyFuture;
using kelcore::async::Promise;
using kelcore::config::ExtractResultFromException;
using kelcore::config::kel_exception;
using kelcore::config::MakeResultCode;
using kelcore::config::ResultCode;
using kelcore::threads::ManualClock;
using kelcore::threads::ManualExecutor;

std::shared_ptr<ManualExecutor> MakeManualExecutor() {
    return std::make_shared<ManualExecutor>(std::make_shared<ManualClock>());
}

// Counts down from another thread and lets the test wait for zero without sleeping.
class CountDown {
public:
    explicit CountDown(int count) : remaining(count) {}
    void Done() {
        std::lock_guard lock(mutex);
        if (--remaining == 0) {
            zero.notify_all();
        }
    }
    bool WaitForZero(std::chrono::seconds timeout = std::chrono::seconds(30)) {
        std::unique_lock lock(mutex);
        return zero.wait_for(lock, timeout, [this] { return remaining == 0; });
    }

private:
    std::mutex mutex;
    std::condition_variable zero;
    int remaining;
};

std::string TextOf(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& e) {
        return e.what();
    }
}

template <class T>
std::exception_ptr ErrorOfGet(const Future<T>& future) {
    try {
        future.Get();
    } catch (...) {
        return std::current_exception();
    }
    return nullptr;
}

TEST(Future, GetGivesTheValueSetByThePromise) {
    Promise<std::string> promise;
    auto future = promise.GetFuture();
    EXPECT_FALSE(future.IsReady());
    promise.SetValue("token");
    EXPECT_TRUE(future.IsReady());
    EXPECT_EQ(future.Get(), "token");
    EXPECT_EQ(ExtractResultFromException(future), 0);
}

TEST(Future, GetWhenNotReadyThrowsNotReadyWithItsCode) {
    Promise<int> promise;
    auto future = promise.GetFuture();
    const auto error = ErrorOfGet(future);
    ASSERT_TRUE(error);
    EXPECT_EQ(TextOf(error), "Future: Not Ready");
    EXPECT_EQ(ExtractResultFromException(error), MakeResultCode(0xF3610002));
    EXPECT_EQ(ExtractResultFromException(future), MakeResultCode(0xF3610002));
}

TEST(Future, CancelledFutureThrowsCancelledWithItsCode) {
    Promise<int> promise;
    auto future = promise.GetFuture();
    future.Cancel();
    promise.SetValue(1);  // too late: dropped
    const auto error = ErrorOfGet(future);
    ASSERT_TRUE(error);
    EXPECT_EQ(TextOf(error), "Future Is Cancelled");
    EXPECT_EQ(ExtractResultFromException(error), MakeResultCode(0xF3610004));
    EXPECT_EQ(ExtractResultFromException(future), MakeResultCode(0xF3610004));
}

TEST(Future, PromiseDestroyedWithoutAResultCancelsItsFuture) {
    Future<int> future;
    bool continuationRan = false;
    ResultCode seen = 0;
    {
        Promise<int> promise;
        future = promise.GetFuture();
        future.Then([&](const Future<int>& f) {
            continuationRan = true;
            seen = ExtractResultFromException(f);
        });
    }
    EXPECT_TRUE(future.IsReady());
    EXPECT_TRUE(continuationRan);
    EXPECT_EQ(seen, kelcore::config::kResultFutureCancelled);
    EXPECT_EQ(ExtractResultFromException(future), kelcore::config::kResultFutureCancelled);
}

TEST(Future, MoveAssigningOverAPendingPromiseCancelsItsFuture) {
    Promise<int> first;
    auto firstFuture = first.GetFuture();
    Promise<int> second;
    first = std::move(second);
    EXPECT_EQ(ExtractResultFromException(firstFuture), kelcore::config::kResultFutureCancelled);
}

TEST(Future, EmptyFutureReadsAsCancelledAndNeverCallsItsContinuation) {
    Future<int> empty;
    bool called = false;
    auto next = empty.Then([&](const Future<int>&) { called = true; });
    EXPECT_FALSE(empty.IsValid());
    EXPECT_FALSE(called);
    EXPECT_EQ(TextOf(ErrorOfGet(empty)), "Future Is Cancelled");
    EXPECT_EQ(ExtractResultFromException(next), kelcore::config::kResultFutureCancelled);
}

TEST(Future, FailedFuturesGiveNegativeCodes) {
    const auto kelFailure = MakeFailedFuture<int>(std::make_exception_ptr(
        kel_exception("expired folder pointer", MakeResultCode(0xA00F000D))));
    const auto stdFailure =
        MakeFailedFuture<int>(std::make_exception_ptr(std::runtime_error("boom")));
    const auto allocFailure = MakeFailedFuture<void>(std::make_exception_ptr(std::bad_alloc()));
    const auto oddFailure = MakeFailedFuture<int>(std::make_exception_ptr(42));

    EXPECT_EQ(ExtractResultFromException(kelFailure), MakeResultCode(0xA00F000D));
    EXPECT_LT(ExtractResultFromException(kelFailure), 0);
    EXPECT_EQ(ExtractResultFromException(stdFailure), kelcore::config::kResultStandardException);
    EXPECT_LT(ExtractResultFromException(stdFailure), 0);
    EXPECT_EQ(ExtractResultFromException(allocFailure), kelcore::config::kResultOutOfMemory);
    EXPECT_LT(ExtractResultFromException(allocFailure), 0);
    EXPECT_LT(ExtractResultFromException(oddFailure), 0);
}

TEST(Future, GetRethrowsTheStoredException) {
    const auto future = MakeFailedFuture<int>(std::make_exception_ptr(
        kel_exception("expired folder pointer", MakeResultCode(0xA00F000D))));
    try {
        future.Get();
        FAIL() << "Get did not throw";
    } catch (const kel_exception& e) {
        EXPECT_EQ(e.GetText(), "expired folder pointer");
        EXPECT_EQ(e.GetCode(), MakeResultCode(0xA00F000D));
    }
}

TEST(Future, ContinuationWithAnExecutorIsNeverInlineEvenWhenReady) {
    auto executor = MakeManualExecutor();
    bool ran = false;
    auto next = MakeReadyFuture(7).Then(executor, [&](const Future<int>& f) {
        ran = true;
        return f.Get() * 2;
    });
    EXPECT_FALSE(ran);
    EXPECT_FALSE(next.IsReady());
    EXPECT_EQ(executor->PendingCount(), 1u);

    EXPECT_EQ(executor->RunUntilIdle(), 1u);
    EXPECT_TRUE(ran);
    EXPECT_EQ(next.Get(), 14);
}

TEST(Future, ContinuationWithAnExecutorIsPostedWhenThePromiseCompletes) {
    auto executor = MakeManualExecutor();
    Promise<int> promise;
    bool ran = false;
    auto next = promise.GetFuture().Then(executor, [&](const Future<int>&) { ran = true; });
    promise.SetValue(1);
    EXPECT_FALSE(ran);
    executor->RunUntilIdle();
    EXPECT_TRUE(ran);
    EXPECT_TRUE(next.IsReady());
}

TEST(Future, ResultOfThenCarriesTheExecutorUsed) {
    auto executor = MakeManualExecutor();
    Promise<int> promise(executor);
    auto future = promise.GetFuture();
    EXPECT_EQ(future.GetExecutor(), executor);
    EXPECT_EQ(future.Then(executor, [](const Future<int>&) {}).GetExecutor(), executor);
    EXPECT_EQ(future.Then([](const Future<int>&) {}).GetExecutor(), nullptr);
    EXPECT_EQ(MakeReadyFuture(1).GetExecutor(), nullptr);
}

TEST(Future, FutureObservesItsExecutorWithoutKeepingItAlive) {
    auto executor = MakeManualExecutor();
    Promise<int> promise(executor);
    auto future = promise.GetFuture();
    std::weak_ptr<ManualExecutor> watch = executor;
    executor.reset();
    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(future.GetExecutor(), nullptr);
}

TEST(Future, ContinuationWithoutAnExecutorRunsInlineWhenReady) {
    const auto attacher = std::this_thread::get_id();
    std::thread::id ranOn;
    auto next = MakeReadyFuture(std::string("a")).Then([&](const Future<std::string>& f) {
        ranOn = std::this_thread::get_id();
        return f.Get() + "b";
    });
    EXPECT_EQ(ranOn, attacher);
    ASSERT_TRUE(next.IsReady());
    EXPECT_EQ(next.Get(), "ab");
}

TEST(Future, ContinuationWithoutAnExecutorRunsOnTheCompletingThread) {
    Promise<int> promise;
    std::thread::id ranOn;
    auto next =
        promise.GetFuture().Then([&](const Future<int>&) { ranOn = std::this_thread::get_id(); });
    EXPECT_FALSE(next.IsReady());
    std::thread::id completer;
    std::thread([&] {
        completer = std::this_thread::get_id();
        promise.SetValue(3);
    }).join();
    EXPECT_EQ(ranOn, completer);
    EXPECT_TRUE(next.IsReady());
}

TEST(Future, ExceptionInAContinuationPropagatesDownTheChain) {
    Promise<int> promise;
    int laterCalls = 0;
    auto end = promise.GetFuture()
                   .Then([](const Future<int>&) -> int {
                       throw kel_exception("bad header", MakeResultCode(0xB0000001));
                   })
                   .Then([&](const Future<int>& f) {
                       ++laterCalls;
                       return f.Get() + 1;  // rethrows
                   })
                   .Then([&](const Future<int>& f) {
                       ++laterCalls;
                       EXPECT_EQ(ExtractResultFromException(f), MakeResultCode(0xB0000001));
                       f.Get();
                   });
    promise.SetValue(1);
    EXPECT_EQ(laterCalls, 2);
    EXPECT_EQ(ExtractResultFromException(end), MakeResultCode(0xB0000001));
}

TEST(Future, VoidFuturesCompleteAndChain) {
    Promise<void> promise;
    auto future = promise.GetFuture();
    int steps = 0;
    auto end = future
                   .Then([&](const Future<void>& f) {
                       f.Get();
                       ++steps;
                   })
                   .Then([&](const Future<void>&) { return ++steps; });
    EXPECT_EQ(ExtractResultFromException(future), kelcore::config::kResultFutureNotReady);
    promise.SetValue();
    EXPECT_EQ(ExtractResultFromException(future), 0);
    EXPECT_NO_THROW(future.Get());
    EXPECT_EQ(end.Get(), 2);
    EXPECT_NO_THROW(MakeReadyFuture().Get());
}

TEST(Future, KeepAliveRunsAChainWhoseHandlesAreAllDroppedAndThenFreesIt) {
    auto executor = MakeManualExecutor();
    auto sentinel = std::make_shared<int>(0);
    std::weak_ptr<int> watch = sentinel;
    int ran = 0;
    {
        Promise<int> promise;
        auto future = promise.GetFuture();
        future.KeepAlive();
        future.Then(executor, [&ran, sentinel](const Future<int>&) { ++ran; })
            .Then([&ran](const Future<void>&) { ++ran; });
        sentinel.reset();
        executor->Post([promise = std::make_shared<Promise<int>>(std::move(promise))] {
            promise->SetValue(5);
        });
    }
    // Only the executor's task refers to the chain now.
    executor->RunUntilIdle();
    EXPECT_EQ(ran, 2);
    EXPECT_TRUE(watch.expired()) << "the completed chain was not released";
}

TEST(Future, CancelRunsWaitingContinuationsOnceAndLaterValuesAreDropped) {
    Promise<int> promise;
    auto future = promise.GetFuture();
    int calls = 0;
    future.Then([&](const Future<int>& f) {
        ++calls;
        EXPECT_EQ(ExtractResultFromException(f), kelcore::config::kResultFutureCancelled);
    });
    future.Cancel();
    future.Cancel();
    promise.SetValue(1);
    promise.SetException(std::make_exception_ptr(std::runtime_error("late")));
    EXPECT_EQ(calls, 1);
}

TEST(Future, ContinuationMayAttachContinuationsToTheSameFuture) {
    Promise<int> promise;
    auto future = promise.GetFuture();
    std::vector<int> order;
    future.Then([&](const Future<int>& f) {
        order.push_back(1);
        f.Then([&](const Future<int>&) { order.push_back(2); });  // ready: inline
        order.push_back(3);
    });
    promise.SetValue(0);
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST(Future, SuccessHandlerGetsTheValueAndTheFailureHandlerNothing) {
    auto executor = MakeManualExecutor();
    int received = 0;
    bool failed = false;
    MakeReadyFuture(42).Then(
        executor, [&](const int& value) { received = value; },
        [&](std::exception_ptr) { failed = true; });
    EXPECT_EQ(received, 0) << "posted, never inline";
    executor->RunUntilIdle();
    EXPECT_EQ(received, 42);
    EXPECT_FALSE(failed);
}

TEST(Future, FailureHandlerGetsTheFailureAndTheSuccessHandlerNothing) {
    auto executor = MakeManualExecutor();
    bool succeeded = false;
    ResultCode code = 0;
    MakeFailedFuture<int>(
        std::make_exception_ptr(kel_exception("refused", MakeResultCode(0xA00F000D))))
        .Then(
            executor, [&](const int&) { succeeded = true; },
            [&](std::exception_ptr failure) { code = ExtractResultFromException(failure); });
    executor->RunUntilIdle();
    EXPECT_FALSE(succeeded);
    EXPECT_EQ(code, MakeResultCode(0xA00F000D));
}

TEST(Future, CancellationReachesTheFailureHandler) {
    auto executor = MakeManualExecutor();
    ResultCode code = 0;
    auto promise = std::make_unique<Promise<void>>();
    promise->GetFuture().Then(
        executor, [] { FAIL() << "a cancelled future has no value"; },
        [&](std::exception_ptr failure) { code = ExtractResultFromException(failure); });
    promise.reset();
    executor->RunUntilIdle();
    EXPECT_EQ(code, kelcore::config::kResultFutureCancelled);
}

TEST(Future, ThrowingSuccessHandlerFailsTheResultWithoutCallingTheFailureHandler) {
    auto executor = MakeManualExecutor();
    bool failureHandlerRan = false;
    auto result = MakeReadyFuture(1).Then(
        executor, [](const int&) { throw std::runtime_error("handler broke"); },
        [&](std::exception_ptr) { failureHandlerRan = true; });
    executor->RunUntilIdle();
    EXPECT_FALSE(failureHandlerRan);
    EXPECT_EQ(ExtractResultFromException(result), kelcore::config::kResultStandardException);
}

TEST(Future, ContinuationDroppedByItsExecutorCancelsItsResult) {
    auto pool = std::make_shared<kelcore::threads::ThreadPoolExecutor>(1);
    pool->Shutdown();
    bool ran = false;
    auto next = MakeReadyFuture(1).Then(pool, [&](const Future<int>&) { ran = true; });
    EXPECT_FALSE(ran);
    EXPECT_EQ(ExtractResultFromException(next), kelcore::config::kResultFutureCancelled);
}

TEST(Future, ContinuationsOnARealPoolRunOffTheAttachingThread) {
    auto pool = std::make_shared<kelcore::threads::ThreadPoolExecutor>(2);
    std::promise<std::thread::id> ranOn;
    MakeReadyFuture(1).Then(
        pool, [&](const Future<int>&) { ranOn.set_value(std::this_thread::get_id()); });
    auto ranOnFuture = ranOn.get_future();
    ASSERT_EQ(ranOnFuture.wait_for(std::chrono::seconds(30)), std::future_status::ready);
    EXPECT_NE(ranOnFuture.get(), std::this_thread::get_id());
}

TEST(Future, EightThreadsCompletingAndAttachingRunEachContinuationExactlyOnce) {
    constexpr int kFutures = 400;
    constexpr int kAttachers = 4;
    constexpr int kCompleters = 4;
    auto pool = std::make_shared<kelcore::threads::ThreadPoolExecutor>(2);
    std::vector<Promise<int>> promises(kFutures);
    std::vector<Future<int>> futures;
    for (auto& promise : promises) {
        futures.push_back(promise.GetFuture());
    }
    // Each attacher adds, per future, one inline continuation, one on the pool, and one that
    // attaches a further continuation from inside itself.
    constexpr int kPerFuture = kAttachers * 4;
    std::vector<std::atomic<int>> runs(kFutures * kPerFuture);
    std::atomic<int> wrongValues{0};
    CountDown allRan(kFutures * kPerFuture);
    auto count = [&](int slot, const Future<int>& f, int expected) {
        if (f.Get() != expected) {
            ++wrongValues;
        }
        ++runs[slot];
        allRan.Done();
    };

    std::vector<std::thread> threads;
    for (int a = 0; a < kAttachers; ++a) {
        threads.emplace_back([&, a] {
            for (int i = 0; i < kFutures; ++i) {
                const int base = (i * kAttachers + a) * 4;
                futures[i].Then([&, base, i](const Future<int>& f) { count(base, f, i); });
                futures[i].Then(pool,
                                [&, base, i](const Future<int>& f) { count(base + 1, f, i); });
                futures[i].Then([&, base, i](const Future<int>& f) {
                    count(base + 2, f, i);
                    f.Then(pool, [&, base, i](const Future<int>& g) { count(base + 3, g, i); });
                });
            }
        });
    }
    for (int c = 0; c < kCompleters; ++c) {
        threads.emplace_back([&, c] {
            for (int i = c; i < kFutures; i += kCompleters) {
                promises[i].SetValue(i);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    const bool allFinished = allRan.WaitForZero();
    pool->Shutdown();  // before any early return: its tasks refer to this frame
    ASSERT_TRUE(allFinished);
    for (std::size_t slot = 0; slot < runs.size(); ++slot) {
        ASSERT_EQ(runs[slot].load(), 1) << "slot " << slot;
    }
    EXPECT_EQ(wrongValues.load(), 0);
}

}  // namespace
