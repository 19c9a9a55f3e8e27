// What sending a message to a station costs against calling the same listeners directly
// through a vector of pointers (the least a delivery can cost), and what a station-sized map
// lookup costs with ImmutableString keys (hash kept) against std::string keys (hash computed).
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include <benchmark/benchmark.h>

#include <kelcore/messaging/Messaging.h>
#include <kelcore/utility/ImmutableString.h>

namespace {

using kelcore::messaging::Listener;
using kelcore::messaging::RawMessage;
using kelcore::utility::ImmutableString;

struct Ping {
    int value = 0;
};

class Counter : public Listener {
public:
    void ReceiveRawMessage(const RawMessage& message) override {
        if (const Ping* ping = message.As<Ping>()) {
            total += ping->value;
        }
    }
    long total = 0;
};

void BM_Baseline_DirectVirtualCalls(benchmark::State& state) {
    std::vector<Counter> counters(static_cast<std::size_t>(state.range(0)));
    std::vector<Listener*> listeners;
    for (auto& counter : counters) {
        listeners.push_back(&counter);
    }
    const Ping ping{1};
    for (auto _ : state) {
        const RawMessage message(ping);
        for (Listener* listener : listeners) {
            listener->ReceiveRawMessage(message);
        }
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_Baseline_DirectVirtualCalls)->Arg(1)->Arg(8);

void BM_SendMessage(benchmark::State& state) {
    const ImmutableString station = ImmutableString::Intern("bench.station");
    std::vector<Counter> counters(static_cast<std::size_t>(state.range(0)));
    for (auto& counter : counters) {
        kelcore::messaging::AddRawListener(station, &counter);
    }
    for (auto _ : state) {
        kelcore::messaging::SendMessage(station, Ping{1});
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_SendMessage)->Arg(1)->Arg(8);

// Station-like names; with few keys libstdc++ scans std::string keys without hashing, so both
// sizes are measured. The key looked up is a separate copy, not the stored one.
std::vector<std::string> StationNames(std::int64_t count) {
    std::vector<std::string> names;
    for (std::int64_t i = 0; i < count; ++i) {
        names.push_back("vantro.Datastore.Station." + std::to_string(i));
    }
    return names;
}

void BM_Baseline_StdStringKeyLookup(benchmark::State& state) {
    std::unordered_map<std::string, int> map;
    for (const auto& name : StationNames(state.range(0))) {
        map.emplace(name, 1);
    }
    const std::string key = StationNames(state.range(0)).back();
    for (auto _ : state) {
        benchmark::DoNotOptimize(map.find(key));
    }
}
BENCHMARK(BM_Baseline_StdStringKeyLookup)->Arg(3)->Arg(64);

void BM_ImmutableStringKeyLookup(benchmark::State& state) {
    std::unordered_map<ImmutableString, int> map;
    for (const auto& name : StationNames(state.range(0))) {
        map.emplace(ImmutableString(name), 1);
    }
    const ImmutableString key(StationNames(state.range(0)).back());
    for (auto _ : state) {
        benchmark::DoNotOptimize(map.find(key));
    }
}
BENCHMARK(BM_ImmutableStringKeyLookup)->Arg(3)->Arg(64);

}  // namespace
