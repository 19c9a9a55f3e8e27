// What a disabled trace line costs the caller, against a relaxed atomic load (the least a
// check can cost), and with another category enabled at the same level (the locked lookup).
#include <atomic>

#include <benchmark/benchmark.h>

#include <kelcore/debug/Trace.h>

namespace {

void BM_Baseline_AtomicLoad(benchmark::State& state) {
    std::atomic<int> level{0};
    for (auto _ : state) {
        benchmark::DoNotOptimize(level.load(std::memory_order_relaxed) >= 5);
    }
}
BENCHMARK(BM_Baseline_AtomicLoad);

void BM_Trace_NothingEnabled(benchmark::State& state) {
    kelcore::debug::ResetTraceSettings();
    for (auto _ : state) {
        kelcore::debug::Trace("VantroNative", 5, "Vantro token refresh failed\n");
    }
}
BENCHMARK(BM_Trace_NothingEnabled);

void BM_Trace_OtherCategoryEnabled(benchmark::State& state) {
    kelcore::debug::ResetTraceSettings();
    kelcore::debug::SetTraceLevel("Other", 5);
    for (auto _ : state) {
        kelcore::debug::Trace("VantroNative", 5, "Vantro token refresh failed\n");
    }
    kelcore::debug::ResetTraceSettings();
}
BENCHMARK(BM_Trace_OtherCategoryEnabled);

}  // namespace
