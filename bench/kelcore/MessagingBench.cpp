// What sending a message to a station costs against calling the same listeners directly
// through a vector of pointers (the least a delivery can cost), and what a station-sized map
// lookup costs with ImmutableString keys (hash kept) against std::string keys (hash computed).
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

constexpr const char* kStationNames[] = {"kelnet.ConnectionMonitor.NetworkState",
                                         "vantro.Datastore.AccountsAndTeams",
                                         "vantro.Datastore.ProjectsAndAssets"};

void BM_Baseline_StdStringKeyLookup(benchmark::State& state) {
    std::unordered_map<std::string, int> map;
    for (const char* name : kStationNames) {
        map.emplace(name, 1);
    }
    const std::string key = kStationNames[2];
    for (auto _ : state) {
        benchmark::DoNotOptimize(map.find(key));
    }
}
BENCHMARK(BM_Baseline_StdStringKeyLookup);

void BM_ImmutableStringKeyLookup(benchmark::State& state) {
    std::unordered_map<ImmutableString, int> map;
    for (const char* name : kStationNames) {
        map.emplace(ImmutableString::Intern(name), 1);
    }
    const ImmutableString key = ImmutableString::Intern(kStationNames[2]);
    for (auto _ : state) {
        benchmark::DoNotOptimize(map.find(key));
    }
}
BENCHMARK(BM_ImmutableStringKeyLookup);

}  // namespace
