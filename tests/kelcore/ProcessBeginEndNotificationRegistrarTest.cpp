#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/config/ProcessBeginEndNotificationRegistrar.h>
#include <kelcore/logging/CapturedLogForTesting.h>

#include "support/ScopedEnvironmentVariable.h"
#include "support/TemporaryDirectory.h"

namespace {

using namespace kelcore::config;

class ProcessNotifications : public ::testing::Test {
protected:
    void SetUp() override { ResetProcessNotificationsForTesting(); }
    void TearDown() override { ResetProcessNotificationsForTesting(); }
};

TEST_F(ProcessNotifications, BeginFunctionsRunInRegistrationOrderWithTheParameters) {
    std::vector<std::string> calls;
    ProcessBeginEndNotificationRegistrar first(
        [&](const ProcessParameters& p) { calls.push_back("first " + p[0].name); });
    ProcessBeginEndNotificationRegistrar second(
        [&](const ProcessParameters& p) { calls.push_back("second " + *p[1].Text()); });

    NotifyProcessBegin(MakeProcessParameters({{"a", std::int64_t{1}}, {"b", std::string("x")}}));

    EXPECT_EQ(calls, (std::vector<std::string>{"first a", "second x"}));
}

TEST_F(ProcessNotifications, ARegistrarMadeAfterBeginIsCalledAtOnceWithTheSameParameters) {
    NotifyProcessBegin(
        MakeProcessParameters({{"vantrokelui.kVantroClientName", std::string("Editor")}}));
    std::string clientName;

    ProcessBeginEndNotificationRegistrar late([&](const ProcessParameters& parameters) {
        for (const auto& parameter : parameters) {
            if (parameter.name == "vantrokelui.kVantroClientName" && parameter.HoldsText()) {
                clientName = *parameter.Text();
                break;
            }
        }
    });

    EXPECT_EQ(clientName, "Editor");
}

TEST_F(ProcessNotifications, ASecondBeginDoesNothing) {
    int calls = 0;
    ProcessBeginEndNotificationRegistrar registrar([&](const ProcessParameters&) { ++calls; });
    NotifyProcessBegin({});
    NotifyProcessBegin({});
    EXPECT_EQ(calls, 1);
}

TEST_F(ProcessNotifications, EndFunctionsRunOnceAndOnlyAfterBegin) {
    std::vector<int> ends;
    ProcessBeginEndNotificationRegistrar first([](const ProcessParameters&) {},
                                               [&] { ends.push_back(1); });
    ProcessBeginEndNotificationRegistrar second([](const ProcessParameters&) {},
                                                [&] { ends.push_back(2); });
    NotifyProcessEnd();
    EXPECT_TRUE(ends.empty());

    NotifyProcessBegin({});
    NotifyProcessEnd();
    NotifyProcessEnd();

    EXPECT_EQ(ends, (std::vector<int>{1, 2}));
}

TEST_F(ProcessNotifications, ARegistrarMadeAfterEndIsNotCalled) {
    NotifyProcessBegin({});
    NotifyProcessEnd();
    bool called = false;
    ProcessBeginEndNotificationRegistrar late([&](const ProcessParameters&) { called = true; },
                                              [&] { called = true; });
    EXPECT_FALSE(called);
}

TEST_F(ProcessNotifications, ADestroyedRegistrarIsNotCalled) {
    bool called = false;
    {
        ProcessBeginEndNotificationRegistrar gone([&](const ProcessParameters&) { called = true; });
    }
    NotifyProcessBegin({});
    EXPECT_FALSE(called);
}

TEST_F(ProcessNotifications, AThrowingBeginFunctionIsLoggedOnceAndTheOthersStillRun) {
    testsupport::TemporaryDirectory stateHome;
    testsupport::ScopedEnvironmentVariable xdg("XDG_STATE_HOME", stateHome.Path().string());
    kelcore::logging::CapturedLogForTesting log;
    bool laterCalled = false;
    ProcessBeginEndNotificationRegistrar throwing(
        [](const ProcessParameters&) { throw std::runtime_error("no client name"); });
    ProcessBeginEndNotificationRegistrar later(
        [&](const ProcessParameters&) { laterCalled = true; });

    NotifyProcessBegin({});

    EXPECT_TRUE(laterCalled);
    const auto entries = log.Entries();
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].severity, kelcore::logging::Severity::Error);
    EXPECT_NE(entries[0].text.find("no client name"), std::string::npos) << entries[0].text;
}

TEST_F(ProcessNotifications, EachRegistrarIsCalledExactlyOnceWhenMadeDuringBegin) {
    constexpr int kThreads = 4;
    constexpr int kPerThread = 50;
    std::atomic<int> calls{0};
    std::vector<std::thread> threads;
    std::atomic<bool> go{false};
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&] {
            while (!go.load()) {
                std::this_thread::yield();
            }
            std::vector<std::unique_ptr<ProcessBeginEndNotificationRegistrar>> registrars;
            for (int i = 0; i < kPerThread; ++i) {
                registrars.push_back(std::make_unique<ProcessBeginEndNotificationRegistrar>(
                    [&](const ProcessParameters&) { calls.fetch_add(1); }));
            }
            // Kept alive until every thread has finished registering (joined below).
            while (calls.load() < kThreads * kPerThread) {
                std::this_thread::yield();
            }
        });
    }
    go.store(true);
    NotifyProcessBegin({});
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(calls.load(), kThreads * kPerThread);
}

TEST(MakeProcessParameters, FillsSlotsInOrderAndLeavesTheRestEmpty) {
    const auto parameters = MakeProcessParameters({{"flag", true}, {"none", std::monostate{}}});
    EXPECT_EQ(parameters[0].name, "flag");
    EXPECT_EQ(std::get<bool>(parameters[0].value), true);
    EXPECT_EQ(parameters[1].name, "none");
    EXPECT_FALSE(parameters[1].HoldsText());
    EXPECT_EQ(parameters[1].Text(), nullptr);
    EXPECT_TRUE(parameters[17].name.empty());
    EXPECT_TRUE(std::holds_alternative<std::monostate>(parameters[17].value));
}

TEST(MakeProcessParameters, MoreThanEighteenPairsThrow) {
    EXPECT_THROW(MakeProcessParameters({{"1", true},
                                        {"2", true},
                                        {"3", true},
                                        {"4", true},
                                        {"5", true},
                                        {"6", true},
                                        {"7", true},
                                        {"8", true},
                                        {"9", true},
                                        {"10", true},
                                        {"11", true},
                                        {"12", true},
                                        {"13", true},
                                        {"14", true},
                                        {"15", true},
                                        {"16", true},
                                        {"17", true},
                                        {"18", true},
                                        {"19", true}}),
                 std::length_error);
}

}  // namespace
