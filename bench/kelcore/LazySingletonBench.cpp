// What fetching an existing lazy singleton costs, against a function-local static (the
// compiler's own init-once guard), single-threaded and with every thread fetching.
#include <benchmark/benchmark.h>

#include <kelcore/utility/LazySingleton.h>

namespace {

struct Manager {
    int value = 1;
};

Manager& LocalStatic() {
    static Manager sManager;
    return sManager;
}

void BM_Baseline_FunctionLocalStatic(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(&LocalStatic());
    }
}
BENCHMARK(BM_Baseline_FunctionLocalStatic)->ThreadRange(1, 2);

void BM_LazySingleton_Get(benchmark::State& state) {
    static auto sManager = kelcore::utility::detail::CreateLazySingleton<Manager>(9);
    for (auto _ : state) {
        benchmark::DoNotOptimize(&sManager.Get());
    }
}
BENCHMARK(BM_LazySingleton_Get)->ThreadRange(1, 2);

}  // namespace
