// Writing a folder's list of 10,000 and 100,000 child folders through VantroFolder::SetFolders
// (copy, natural case-insensitive sort by name, compare with the stored list, store, queue the
// delivery), against two baselines that sort the same shuffled nodes with std::sort and a plain
// ASCII case-insensitive lexicographic compare of their names:
//  - "ReadingNames": the comparison reads both names through the nodes' Name property, as a
//    straightforward comparator would;
//  - "NamesReadOnce": each name is read once before sorting, as the setter does, so only the
//    comparison and the setter's store and delivery differ.
// Each setter run also times both baselines for as many iterations, in the same run, and
// reports "ratio_reading" and "ratio_once" = setter time / baseline time.
//
// Names look like those of a real project: "Clip 17", "scene_004 take 2", "B-Roll 12 v3.mov",
// in mixed case. Every iteration sorts a freshly shuffled order into a new folder, so each set
// stores and dispatches; making the folder and releasing it afterwards are not timed.
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include <kelcore/string/String.h>
#include <kelcore/threads/MainThread.h>
#include <kelcore/threads/MainThreadQueue.h>
#include <kelcore/utility/Guid.h>
#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrokelui/nodes/VantroNode.h>
#include <vantrokelui/utility/NotifyingProperty.h>

#include "vantrokelui/ScopedMainThreadQueue.h"

namespace {

using vantrokelui::VantroFolder;
using vantrokelui::VantroNode;
using Folders = vantrokelui::utility::SharedPtrVector<VantroFolder>;
using Clock = std::chrono::steady_clock;
using kelcore::string::string;
using kelcore::string::string_view;

using vantrokeluibench::ScopedMainThreadQueue;

string Utf16(const std::string& ascii) {
    return string(ascii.begin(), ascii.end());
}

// A name of the kind people give to clips and folders, in one of several shapes.
string MakeName(std::mt19937& random) {
    static const char* const kWords[] = {"Clip",  "clip",  "CLIP",   "scene",  "Scene",
                                         "take",  "Take",  "B-Roll", "b-roll", "Interview",
                                         "FINAL", "final", "Mix",    "Grade",  "Selects"};
    std::uniform_int_distribution<std::size_t> word(0, std::size(kWords) - 1);
    std::uniform_int_distribution<int> number(1, 999);
    std::uniform_int_distribution<int> shape(0, 4);
    const std::string first = kWords[word(random)];
    switch (shape(random)) {
        case 0:
            return Utf16(first + " " + std::to_string(number(random)));
        case 1: {
            std::string padded = std::to_string(number(random));
            padded.insert(0, 3 - std::min<std::size_t>(3, padded.size()), '0');
            return Utf16(first + "_" + padded + " take " + std::to_string(number(random) % 9 + 1));
        }
        case 2:
            return Utf16(first + " " + std::to_string(number(random)) + " v" +
                         std::to_string(number(random) % 12 + 1) + ".mov");
        case 3:
            return Utf16(first + " " + kWords[word(random)] + " " + std::to_string(number(random)));
        default:
            return Utf16(first + "-" + std::to_string(number(random) * 37) + "_" +
                         std::to_string(number(random)));
    }
}

// The child folders of one size, made once and shared by all benchmarks of that size.
struct Children {
    std::shared_ptr<VantroFolder> parent;
    Folders nodes;
};

const Children& ChildrenOfSize(std::size_t count) {
    static std::map<std::size_t, Children> sChildren;
    Children& children = sChildren[count];
    if (children.nodes.empty()) {
        std::mt19937 random(static_cast<unsigned>(count));
        children.parent = std::make_shared<VantroFolder>(std::weak_ptr<VantroNode>());
        children.nodes.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            auto node = std::make_shared<VantroFolder>(children.parent);
            node->SetID(kelcore::utility::Guid::CreateUnique());
            node->SetName(MakeName(random));
            children.nodes.push_back(std::move(node));
        }
    }
    return children;
}

// A fresh random order of the children.
Folders Shuffled(const Children& children, std::mt19937& random) {
    Folders order = children.nodes;
    std::shuffle(order.begin(), order.end(), random);
    return order;
}

char16_t AsciiLower(char16_t c) {
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + (u'a' - u'A')) : c;
}

bool AsciiCaseInsensitiveLess(string_view a, string_view b) {
    return std::lexicographical_compare(
        a.begin(), a.end(), b.begin(), b.end(),
        [](char16_t x, char16_t y) { return AsciiLower(x) < AsciiLower(y); });
}

// One set through the node's setter into a new folder; answers the time of the set alone.
Clock::duration SetterOnce(const Children& children, std::mt19937& random,
                           ScopedMainThreadQueue& queue) {
    const Folders order = Shuffled(children, random);
    auto folder = std::make_shared<VantroFolder>(std::weak_ptr<VantroNode>());
    const auto start = Clock::now();
    folder->SetFolders(order);
    const auto elapsed = Clock::now() - start;
    benchmark::DoNotOptimize(folder.get());
    queue.Pump();  // the queued delivery holds a copy of the list
    return elapsed;
}

// std::sort of the same nodes, reading both names through the property at each comparison.
Clock::duration ReadingNamesOnce(const Children& children, std::mt19937& random) {
    Folders order = Shuffled(children, random);
    const auto start = Clock::now();
    std::sort(order.begin(), order.end(), [](const auto& a, const auto& b) {
        return AsciiCaseInsensitiveLess(a->GetName(), b->GetName());
    });
    const auto elapsed = Clock::now() - start;
    benchmark::DoNotOptimize(order.data());
    benchmark::ClobberMemory();
    return elapsed;
}

// std::sort of the same nodes by their names read once beforehand, then the sorted list built.
Clock::duration NamesReadOnceOnce(const Children& children, std::mt19937& random) {
    const Folders order = Shuffled(children, random);
    const auto start = Clock::now();
    std::vector<std::pair<string, std::size_t>> entries;
    entries.reserve(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        entries.emplace_back(order[i]->GetName(), i);
    }
    std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) {
        return AsciiCaseInsensitiveLess(a.first, b.first);
    });
    Folders sorted;
    sorted.reserve(order.size());
    for (const auto& entry : entries) {
        sorted.push_back(order[entry.second]);
    }
    const auto elapsed = Clock::now() - start;
    benchmark::DoNotOptimize(sorted.data());
    benchmark::ClobberMemory();
    return elapsed;
}

double Seconds(Clock::duration duration) {
    return std::chrono::duration<double>(duration).count();
}

void BM_Baseline_ReadingNames(benchmark::State& state) {
    ScopedMainThreadQueue queue;
    const Children& children = ChildrenOfSize(static_cast<std::size_t>(state.range(0)));
    queue.Pump();  // making the nodes queued deliveries of their ids and names
    std::mt19937 random(1);
    for (auto _ : state) {
        state.SetIterationTime(Seconds(ReadingNamesOnce(children, random)));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_Baseline_NamesReadOnce(benchmark::State& state) {
    ScopedMainThreadQueue queue;
    const Children& children = ChildrenOfSize(static_cast<std::size_t>(state.range(0)));
    queue.Pump();  // making the nodes queued deliveries of their ids and names
    std::mt19937 random(1);
    for (auto _ : state) {
        state.SetIterationTime(Seconds(NamesReadOnceOnce(children, random)));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_SetFolders(benchmark::State& state) {
    ScopedMainThreadQueue queue;
    const Children& children = ChildrenOfSize(static_cast<std::size_t>(state.range(0)));
    queue.Pump();
    std::mt19937 random(1);
    Clock::duration ours{};
    for (auto _ : state) {
        const auto elapsed = SetterOnce(children, random, queue);
        state.SetIterationTime(Seconds(elapsed));
        ours += elapsed;
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));

    // The baselines over the same number of sorts, in this run, on the same nodes.
    Clock::duration reading{};
    Clock::duration once{};
    std::mt19937 baselineRandom(1);
    for (benchmark::IterationCount i = 0; i < state.iterations(); ++i) {
        reading += ReadingNamesOnce(children, baselineRandom);
        once += NamesReadOnceOnce(children, baselineRandom);
    }
    state.counters["ratio_reading"] = Seconds(ours) / Seconds(reading);
    state.counters["ratio_once"] = Seconds(ours) / Seconds(once);
}

BENCHMARK(BM_Baseline_ReadingNames)
    ->Arg(10'000)
    ->Arg(100'000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Baseline_NamesReadOnce)
    ->Arg(10'000)
    ->Arg(100'000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SetFolders)->Arg(10'000)->Arg(100'000)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
