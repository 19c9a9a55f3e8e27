// Many writers, one main thread: every change reaches every observer exactly once, each writer's
// changes in the order it made them, while the main thread pumps, reads and (un)subscribes.
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <latch>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <support/MainThreadFixture.h>
#include <vantrokelui/utility/DataBinding.h>
#include <vantrokelui/utility/NotifyingProperty.h>

namespace vantrokelui::utility {
namespace {

constexpr int kWriters = 8;
constexpr int kSetsPerWriter = 2000;
constexpr int kObservers = 3;
constexpr double kWriterStride = 1e6;

// Writer t sets t * stride + k for k = 1..kSetsPerWriter: every value is distinct and exact.
double ValueOf(int writer, int k) {
    return writer * kWriterStride + k;
}

class NotifyingPropertyConcurrencyTest : public testsupport::MainThreadFixture {};

TEST_F(NotifyingPropertyConcurrencyTest, EveryChangeReachesEveryObserverOnceInEachWritersOrder) {
    auto property = std::make_shared<NotifyingProperty<double>>();
    std::array<std::vector<double>, kObservers> seen;
    std::vector<std::shared_ptr<DataBinding>> bindings;
    for (std::size_t i = 0; i < seen.size(); ++i) {
        bindings.push_back(property->AddBinding([&seen, i](double v) { seen[i].push_back(v); }));
    }
    Pump();
    for (auto& values : seen) {
        ASSERT_EQ(values, std::vector<double>{0.0});
        values.clear();
    }

    std::latch start(kWriters + 2);
    std::atomic<int> finished{0};
    std::vector<std::thread> threads;
    for (int writer = 1; writer <= kWriters; ++writer) {
        threads.emplace_back([&, writer] {
            start.arrive_and_wait();
            for (int k = 1; k <= kSetsPerWriter; ++k) {
                property->SetValue(ValueOf(writer, k));
            }
            finished.fetch_add(1);
        });
    }
    // A reader on another thread, as the model reads values its own callbacks wrote.
    threads.emplace_back([&] {
        start.arrive_and_wait();
        double last = 0.0;
        while (finished.load() < kWriters) {
            last = property->GetValue();
        }
        EXPECT_TRUE(last == 0.0 || last >= kWriterStride);
    });
    start.arrive_and_wait();

    // While pumping, the main thread also subscribes and unsubscribes, as views come and go.
    constexpr std::size_t kTotal = std::size_t{kWriters} * kSetsPerWriter;
    int churn = 0;
    PumpUntil(
        [&] {
            if (churn < 1000) {
                ++churn;
                auto transient = property->AddBinding([](double) {});
            }
            return finished.load() == kWriters && seen.back().size() >= kTotal;
        },
        std::chrono::seconds(120));
    for (std::thread& thread : threads) {
        thread.join();
    }
    Pump();

    for (std::size_t i = 0; i < seen.size(); ++i) {
        ASSERT_EQ(seen[i].size(), kTotal) << "observer " << i;
        std::array<int, kWriters + 1> nextK{};
        nextK.fill(1);
        for (const double value : seen[i]) {
            const int writer = static_cast<int>(value / kWriterStride);
            const int k = static_cast<int>(value - writer * kWriterStride);
            ASSERT_GE(writer, 1);
            ASSERT_LE(writer, kWriters);
            ASSERT_EQ(value, ValueOf(writer, k)) << "not a value any writer set";
            ASSERT_EQ(k, nextK[static_cast<std::size_t>(writer)])
                << "observer " << i << ", writer " << writer << ": missing, repeated or reordered";
            ++nextK[static_cast<std::size_t>(writer)];
        }
        for (int writer = 1; writer <= kWriters; ++writer) {
            EXPECT_EQ(nextK[static_cast<std::size_t>(writer)], kSetsPerWriter + 1);
        }
    }
    for (std::size_t i = 1; i < seen.size(); ++i) {
        EXPECT_EQ(seen[i], seen[0]) << "observers disagree on the order of changes";
    }
    EXPECT_EQ(seen[0].back(), property->GetValue()) << "the last delivery is the stored value";
}

TEST_F(NotifyingPropertyConcurrencyTest, ThePropertyMayDieOnAWriterThreadWithDeliveriesQueued) {
    auto property = std::make_shared<NotifyingProperty<double>>();
    std::vector<double> seen;
    auto binding = property->AddBinding([&](double v) { seen.push_back(v); });
    std::thread writer([owned = std::move(property)]() mutable {
        for (int k = 1; k <= 100; ++k) {
            owned->SetValue(k);
        }
        owned.reset();
    });
    writer.join();
    Pump();
    ASSERT_EQ(seen.size(), 101u);
    for (int k = 0; k <= 100; ++k) {
        EXPECT_EQ(seen[static_cast<std::size_t>(k)], k);
    }
    binding.reset();
}

}  // namespace
}  // namespace vantrokelui::utility
