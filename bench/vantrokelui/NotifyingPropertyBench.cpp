// One set of a double property and its delivery (one pump of the main-thread queue) to 1, 10
// and 100 observers, against the least a queued notification can cost: a double pushed under a
// mutex, popped, and handed to each std::function<void(double)>. Each run of ours times the
// baseline for as many iterations and reports "ratio" = our time / baseline time.
// Heap allocations per set are counted with a replaced global operator new (this thread only):
// "allocs_per_set" for a set that changes the value, "allocs_per_unchanged_set" for one that
// does not, and "allocs_per_set_and_pump" for a changing set with its delivery.
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <new>
#include <vector>

#include <benchmark/benchmark.h>

#include <kelcore/threads/MainThread.h>
#include <kelcore/threads/MainThreadQueue.h>
#include <vantrokelui/utility/DataBinding.h>
#include <vantrokelui/utility/NotifyingProperty.h>

#include "vantrokelui/ScopedMainThreadQueue.h"

namespace {
thread_local std::size_t sAllocationsOnThisThread = 0;
}  // namespace

// The other forms of operator new and delete in libstdc++ forward to these.
// Kept out of line: inlined, GCC would pair malloc and free with the callers' new and delete
// and warn of a mismatch.
[[gnu::noinline]] void* operator new(std::size_t size) {
    ++sAllocationsOnThisThread;
    if (void* block = std::malloc(size == 0 ? 1 : size)) {
        return block;
    }
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* block) noexcept {
    std::free(block);
}
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

namespace {

using DoubleProperty = vantrokelui::utility::NotifyingProperty<double>;
using Clock = std::chrono::steady_clock;

// The baseline: values queued under a mutex, then each popped value handed to every function.
class BaselineQueue {
public:
    explicit BaselineQueue(std::vector<std::function<void(double)>> functions)
        : functions(std::move(functions)) {}

    void Push(double value) {
        std::lock_guard lock(mutex);
        values.push_back(value);
    }
    void Drain() {
        for (;;) {
            double value = 0.0;
            {
                std::lock_guard lock(mutex);
                if (values.empty()) {
                    return;
                }
                value = values.front();
                values.pop_front();
            }
            for (const auto& function : functions) {
                function(value);
            }
        }
    }

private:
    std::mutex mutex;
    std::deque<double> values;
    std::vector<std::function<void(double)>> functions;
};

using vantrokeluibench::ScopedMainThreadQueue;

std::vector<std::shared_ptr<vantrokelui::utility::DataBinding>> Observe(DoubleProperty& property,
                                                                        std::int64_t observers,
                                                                        double& sum) {
    std::vector<std::shared_ptr<vantrokelui::utility::DataBinding>> bindings;
    for (std::int64_t i = 0; i < observers; ++i) {
        bindings.push_back(property.AddBinding([&sum](double value) { sum += value; }));
    }
    return bindings;
}

void BM_SetAndDeliver(benchmark::State& state) {
    const std::int64_t observers = state.range(0);
    ScopedMainThreadQueue queue;
    auto property = std::make_shared<DoubleProperty>();
    double sum = 0.0;
    const auto bindings = Observe(*property, observers, sum);
    queue.Pump();

    double next = 1.0;
    const std::size_t allocationsBefore = sAllocationsOnThisThread;
    const auto start = Clock::now();
    for (auto _ : state) {
        property->SetValue(next);
        next += 1.0;
        queue.Pump();
    }
    const std::chrono::duration<double> ours = Clock::now() - start;
    const std::size_t allocations = sAllocationsOnThisThread - allocationsBefore;
    benchmark::DoNotOptimize(sum);

    std::vector<std::function<void(double)>> functions;
    for (std::int64_t i = 0; i < observers; ++i) {
        functions.emplace_back([&sum](double value) { sum += value; });
    }
    BaselineQueue baseline(std::move(functions));
    const auto baselineStart = Clock::now();
    for (benchmark::IterationCount i = 0; i < state.iterations(); ++i) {
        baseline.Push(next);
        next += 1.0;
        baseline.Drain();
    }
    const std::chrono::duration<double> baselineTime = Clock::now() - baselineStart;
    benchmark::DoNotOptimize(sum);

    state.SetItemsProcessed(state.iterations());
    state.counters["ratio"] = ours.count() / baselineTime.count();
    state.counters["allocs_per_set_and_pump"] =
        static_cast<double>(allocations) / static_cast<double>(state.iterations());
}

void BM_MutexQueueBaseline(benchmark::State& state) {
    const std::int64_t observers = state.range(0);
    double sum = 0.0;
    std::vector<std::function<void(double)>> functions;
    for (std::int64_t i = 0; i < observers; ++i) {
        functions.emplace_back([&sum](double value) { sum += value; });
    }
    BaselineQueue baseline(std::move(functions));
    double next = 1.0;
    for (auto _ : state) {
        baseline.Push(next);
        next += 1.0;
        baseline.Drain();
    }
    benchmark::DoNotOptimize(sum);
    state.SetItemsProcessed(state.iterations());
}

// Sets alone, the deliveries pumped outside the timing; counts what each kind of set allocates.
void BM_SetAllocations(benchmark::State& state) {
    const std::int64_t observers = state.range(0);
    ScopedMainThreadQueue queue;
    auto property = std::make_shared<DoubleProperty>();
    double sum = 0.0;
    const auto bindings = Observe(*property, observers, sum);
    queue.Pump();

    std::size_t changed = 0;
    std::size_t unchanged = 0;
    double next = 1.0;
    for (auto _ : state) {
        std::size_t before = sAllocationsOnThisThread;
        property->SetValue(next);
        changed += sAllocationsOnThisThread - before;
        before = sAllocationsOnThisThread;
        property->SetValue(next);
        unchanged += sAllocationsOnThisThread - before;
        next += 1.0;
        state.PauseTiming();
        queue.Pump();
        state.ResumeTiming();
    }
    benchmark::DoNotOptimize(sum);
    const auto iterations = static_cast<double>(state.iterations());
    state.counters["allocs_per_set"] = static_cast<double>(changed) / iterations;
    state.counters["allocs_per_unchanged_set"] = static_cast<double>(unchanged) / iterations;
}

void BM_UnchangedSet(benchmark::State& state) {
    ScopedMainThreadQueue queue;
    auto property = std::make_shared<DoubleProperty>(0.5);
    double sum = 0.0;
    const auto bindings = Observe(*property, state.range(0), sum);
    queue.Pump();
    for (auto _ : state) {
        property->SetValue(0.5);
    }
    benchmark::DoNotOptimize(sum);
}

BENCHMARK(BM_SetAndDeliver)->Arg(1)->Arg(10)->Arg(100);
BENCHMARK(BM_MutexQueueBaseline)->Arg(1)->Arg(10)->Arg(100);
BENCHMARK(BM_SetAllocations)->Arg(1)->Arg(10)->Arg(100);
BENCHMARK(BM_UnchangedSet)->Arg(10);

}  // namespace
