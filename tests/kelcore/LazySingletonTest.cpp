#include <atomic>
#include <latch>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/appstatemanager/AppStateManager.h>
#include <kelcore/config/kel_exception.h>
#include <kelcore/utility/LazySingleton.h>

namespace {

using kelcore::appstatemanager::ResetForTesting;
using kelcore::appstatemanager::SetAppState;
using kelcore::utility::detail::CreateLazySingleton;

std::atomic<int> sConstructions{0};
std::atomic<int> sDestructions{0};

struct Manager {
    Manager() { ++sConstructions; }
    ~Manager() { ++sDestructions; }
    int value = 5;
};

class LazySingleton : public ::testing::Test {
protected:
    void SetUp() override {
        ResetForTesting();
        sConstructions = 0;
        sDestructions = 0;
    }
    void TearDown() override { ResetForTesting(); }
};

void ExpectRefusal(const kelcore::utility::detail::LazySingleton<Manager>& manager) {
    try {
        manager.Get();
        ADD_FAILURE() << "the fetch did not throw";
    } catch (const kelcore::config::kel_exception& e) {
        EXPECT_EQ(e.GetCode(), kelcore::config::kResultNullPointer);
        EXPECT_NE(e.GetText().find(typeid(Manager).name()), std::string::npos) << e.GetText();
    }
}

TEST_F(LazySingleton, IsNotMadeUntilFirstFetchedAndThenOnlyOnce) {
    static auto sManager = CreateLazySingleton<Manager>(9);
    EXPECT_EQ(sConstructions, 0);

    Manager& first = sManager.Get();
    Manager& second = sManager.Get();

    EXPECT_EQ(&first, &second);
    EXPECT_EQ(sManager->value, 5);
    EXPECT_EQ(sConstructions, 1);
}

TEST_F(LazySingleton, IsConstructedOnceUnderEightRacingThreads) {
    auto manager = CreateLazySingleton<Manager>(9);
    constexpr int kThreads = 8;
    std::latch start(kThreads);
    std::vector<Manager*> seen(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            start.arrive_and_wait();
            seen[t] = &manager.Get();
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }

    EXPECT_EQ(sConstructions, 1);
    for (Manager* instance : seen) {
        EXPECT_EQ(instance, seen.front());
    }
}

TEST_F(LazySingleton, IsDestroyedWhenItsStateIsReached) {
    auto manager = CreateLazySingleton<Manager>(9);
    manager.Get();

    SetAppState(9);

    EXPECT_EQ(sDestructions, 1);
}

TEST_F(LazySingleton, EarlierStatesDoNotDestroyIt) {
    auto manager = CreateLazySingleton<Manager>(9);
    Manager& before = manager.Get();

    SetAppState(8);

    EXPECT_EQ(sDestructions, 0);
    EXPECT_EQ(&manager.Get(), &before);
    EXPECT_EQ(sConstructions, 1);
}

TEST_F(LazySingleton, RefusesToFetchAfterItsState) {
    auto manager = CreateLazySingleton<Manager>(9);
    manager.Get();
    SetAppState(9);

    ExpectRefusal(manager);

    EXPECT_EQ(sConstructions, 1);
}

TEST_F(LazySingleton, IsNeverConstructedInAProcessAlreadyPastItsState) {
    SetAppState(10);
    auto manager = CreateLazySingleton<Manager>(9);

    ExpectRefusal(manager);

    EXPECT_EQ(sConstructions, 0);
}

TEST_F(LazySingleton, CopiesOfTheFetcherShareOneInstance) {
    auto manager = CreateLazySingleton<Manager>(9);
    auto copy = manager;

    EXPECT_EQ(&copy.Get(), &manager.Get());
    EXPECT_EQ(sConstructions, 1);
}

TEST_F(LazySingleton, ConstructsAgainAfterResetForTesting) {
    auto manager = CreateLazySingleton<Manager>(9);
    manager.Get();
    SetAppState(9);

    ResetForTesting();
    manager.Get();

    EXPECT_EQ(sConstructions, 2);
    EXPECT_EQ(sDestructions, 1);
}

TEST_F(LazySingleton, ResetForTestingDestroysALiveInstance) {
    auto manager = CreateLazySingleton<Manager>(9);
    manager.Get();

    ResetForTesting();

    EXPECT_EQ(sDestructions, 1);
    manager.Get();
    EXPECT_EQ(sConstructions, 2);
}

}  // namespace
