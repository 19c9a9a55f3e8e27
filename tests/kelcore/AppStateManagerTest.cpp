#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/appstatemanager/AppStateManager.h>
#include <kelcore/logging/CapturedLogForTesting.h>
#include <kelcore/utility/LazySingleton.h>

namespace {

using namespace kelcore::appstatemanager;
using kelcore::utility::detail::DestroyOnAppState;

class AppStateManager : public ::testing::Test {
protected:
    void SetUp() override { ResetForTesting(); }
    void TearDown() override { ResetForTesting(); }
};

TEST_F(AppStateManager, StartsAtZeroAndOnlyGrows) {
    EXPECT_EQ(GetAppState(), 0);

    SetAppState(5);
    SetAppState(3);

    EXPECT_EQ(GetAppState(), 5);
    EXPECT_TRUE(HasReachedAppStateAlready(5));
    EXPECT_TRUE(HasReachedAppStateAlready(4));
    EXPECT_FALSE(HasReachedAppStateAlready(6));
}

TEST_F(AppStateManager, MovingToAStateRunsItsRegistrationsAndEarlierOnesNewestFirst) {
    std::vector<int> ran;
    ASSERT_TRUE(DestroyOnAppState(3, [&] { ran.push_back(1); }));
    ASSERT_TRUE(DestroyOnAppState(5, [&] { ran.push_back(2); }));
    ASSERT_TRUE(DestroyOnAppState(9, [&] { ran.push_back(3); }));
    ASSERT_TRUE(DestroyOnAppState(4, [&] { ran.push_back(4); }));

    SetAppState(5);

    EXPECT_EQ(ran, (std::vector<int>{4, 2, 1}));
    SetAppState(9);
    EXPECT_EQ(ran, (std::vector<int>{4, 2, 1, 3}));
}

TEST_F(AppStateManager, EachRegistrationRunsOnlyOnce) {
    int runs = 0;
    ASSERT_TRUE(DestroyOnAppState(2, [&] { ++runs; }));

    SetAppState(2);
    SetAppState(7);
    ResetForTesting();

    EXPECT_EQ(runs, 1);
}

TEST_F(AppStateManager, RefusesARegistrationForAStateAlreadyReached) {
    SetAppState(4);
    int runs = 0;

    EXPECT_FALSE(DestroyOnAppState(4, [&] { ++runs; }));
    EXPECT_FALSE(DestroyOnAppState(2, [&] { ++runs; }));
    EXPECT_TRUE(DestroyOnAppState(5, [&] { ++runs; }));
    SetAppState(5);

    EXPECT_EQ(runs, 1);
}

TEST_F(AppStateManager, ARegistrationThatThrowsIsLoggedAndTheOthersStillRun) {
    kelcore::logging::CapturedLogForTesting log;
    std::vector<int> ran;
    ASSERT_TRUE(DestroyOnAppState(1, [&] { ran.push_back(1); }));
    ASSERT_TRUE(DestroyOnAppState(1, [] { throw std::runtime_error("broken teardown"); }));
    ASSERT_TRUE(DestroyOnAppState(1, [&] { ran.push_back(3); }));

    SetAppState(1);

    EXPECT_EQ(ran, (std::vector<int>{3, 1}));
    const auto entries = log.Entries();
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_NE(entries[0].text.find("broken teardown"), std::string::npos);
}

TEST_F(AppStateManager, ResetRunsPendingRegistrationsAndReturnsToZero) {
    SetAppState(3);
    int runs = 0;
    ASSERT_TRUE(DestroyOnAppState(8, [&] { ++runs; }));

    ResetForTesting();

    EXPECT_EQ(runs, 1);
    EXPECT_EQ(GetAppState(), 0);
    EXPECT_TRUE(DestroyOnAppState(3, [] {}));
}

}  // namespace
