// Delivery of closures to the main thread: posts through AsyncCallFromMainThread into the
// installed MainThreadQueue, then one pump, against a plain mutex-guarded deque doing the same
// work. Each of our runs also times the baseline for as many batches and reports
// "ratio" = our time / baseline time.
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include <benchmark/benchmark.h>

#include <kelcore/threads/MainThread.h>
#include <kelcore/threads/MainThreadQueue.h>

namespace {

class PlainQueue {
public:
    void Post(std::function<void()> task) {
        std::lock_guard lock(mutex);
        tasks.push_back(std::move(task));
    }
    void RunUntilEmpty() {
        for (;;) {
            std::function<void()> task;
            {
                std::lock_guard lock(mutex);
                if (tasks.empty()) {
                    return;
                }
                task = std::move(tasks.front());
                tasks.pop_front();
            }
            task();
        }
    }

private:
    std::mutex mutex;
    std::deque<std::function<void()>> tasks;
};

void PlainBatch(PlainQueue& queue, std::int64_t batch, std::int64_t& sum) {
    for (std::int64_t i = 0; i < batch; ++i) {
        queue.Post([&sum, i] { sum += i; });
    }
    queue.RunUntilEmpty();
}

void OurBatch(kelcore::threads::MainThreadQueue& queue, std::int64_t batch, std::int64_t& sum) {
    for (std::int64_t i = 0; i < batch; ++i) {
        kelcore::threads::AsyncCallFromMainThread([&sum, i] { sum += i; }, 0);
    }
    queue.RunUntilEmpty();
}

void BM_AsyncCallFromMainThread(benchmark::State& state) {
    const auto batch = state.range(0);
    auto queue = std::make_shared<kelcore::threads::MainThreadQueue>();
    kelcore::threads::SetMainThread();
    kelcore::threads::SetMainThreadDispatcher(queue);
    std::int64_t sum = 0;
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state) {
        OurBatch(*queue, batch, sum);
    }
    const std::chrono::duration<double> ours = std::chrono::steady_clock::now() - start;
    benchmark::DoNotOptimize(sum);

    PlainQueue baselineQueue;
    const auto baselineStart = std::chrono::steady_clock::now();
    for (benchmark::IterationCount i = 0; i < state.iterations(); ++i) {
        PlainBatch(baselineQueue, batch, sum);
    }
    const std::chrono::duration<double> baseline = std::chrono::steady_clock::now() - baselineStart;
    benchmark::DoNotOptimize(sum);

    kelcore::threads::SetMainThreadDispatcher(nullptr);
    state.SetItemsProcessed(state.iterations() * batch);
    state.counters["ratio"] = ours.count() / baseline.count();
}

void BM_PlainDequeBaseline(benchmark::State& state) {
    const auto batch = state.range(0);
    PlainQueue queue;
    std::int64_t sum = 0;
    for (auto _ : state) {
        PlainBatch(queue, batch, sum);
    }
    benchmark::DoNotOptimize(sum);
    state.SetItemsProcessed(state.iterations() * batch);
}

BENCHMARK(BM_AsyncCallFromMainThread)->Arg(1)->Arg(64)->Arg(1024);
BENCHMARK(BM_PlainDequeBaseline)->Arg(1)->Arg(64)->Arg(1024);

}  // namespace
