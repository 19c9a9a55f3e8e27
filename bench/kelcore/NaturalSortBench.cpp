// Sorting 100,000 node names in natural, case-insensitive order, against the baseline of the
// same sort with a plain ASCII case-insensitive lexicographic compare of the same names. The
// natural sort also times the baseline for as many sorts and reports "ratio" = ours / baseline.
#include <algorithm>
#include <chrono>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <kelcore/string/CaseInsensitive.h>

namespace {

using kelcore::string::string_view;

std::vector<std::u16string> MakeNames() {
    const std::u16string words[] = {u"Clip",  u"clip",   u"Sequence", u"Take",  u"take",
                                    u"Ärger", u"Review", u"B-Roll",   u"Final", u"αλφα"};
    std::mt19937 random(42);
    std::uniform_int_distribution<std::size_t> word(0, std::size(words) - 1);
    std::uniform_int_distribution<int> number(0, 100000);
    std::uniform_int_distribution<int> shape(0, 3);
    std::vector<std::u16string> names;
    names.reserve(100000);
    for (int i = 0; i < 100000; ++i) {
        std::u16string name = words[word(random)] + u" ";
        const std::string digits =
            (shape(random) == 0 ? "00" : "") + std::to_string(number(random));
        name.append(digits.begin(), digits.end());
        if (shape(random) == 1) {
            name += u" v" + std::u16string(1, static_cast<char16_t>(u'0' + shape(random)));
        }
        name += u".mov";
        names.push_back(std::move(name));
    }
    return names;
}

const std::vector<std::u16string>& Names() {
    static const auto names = MakeNames();
    return names;
}

char16_t AsciiLower(char16_t c) {
    return c >= u'A' && c <= u'Z' ? c + (u'a' - u'A') : c;
}

bool AsciiCaseInsensitiveLess(string_view a, string_view b) {
    return std::lexicographical_compare(
        a.begin(), a.end(), b.begin(), b.end(),
        [](char16_t x, char16_t y) { return AsciiLower(x) < AsciiLower(y); });
}

using Clock = std::chrono::steady_clock;

// Sorts a fresh copy of the names; answers the time of the sort alone.
template <bool (*Less)(string_view, string_view)>
Clock::duration SortOnce() {
    auto names = Names();
    const auto start = Clock::now();
    std::sort(names.begin(), names.end(), [](const auto& a, const auto& b) { return Less(a, b); });
    const auto elapsed = Clock::now() - start;
    benchmark::DoNotOptimize(names.data());
    benchmark::ClobberMemory();
    return elapsed;
}

template <bool (*Less)(string_view, string_view)>
Clock::duration SortNames(benchmark::State& state) {
    Clock::duration total{};
    for (auto _ : state) {
        const auto elapsed = SortOnce<Less>();
        state.SetIterationTime(std::chrono::duration<double>(elapsed).count());
        total += elapsed;
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(Names().size()));
    return total;
}

void BM_Baseline_AsciiCaseInsensitiveSort(benchmark::State& state) {
    SortNames<AsciiCaseInsensitiveLess>(state);
}

void BM_NaturalStringLessThanSort(benchmark::State& state) {
    const auto ours = SortNames<kelcore::string::CaseInsensitive::NaturalStringLessThan>(state);
    Clock::duration baseline{};
    for (benchmark::IterationCount i = 0; i < state.iterations(); ++i) {
        baseline += SortOnce<AsciiCaseInsensitiveLess>();
    }
    state.counters["ratio"] = std::chrono::duration<double>(ours).count() /
                              std::chrono::duration<double>(baseline).count();
}

BENCHMARK(BM_Baseline_AsciiCaseInsensitiveSort)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_NaturalStringLessThanSort)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
