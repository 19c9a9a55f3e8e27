// Connectivity: the monitor's installation and its reports.

#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <vantrokelui/model/SequenceSettings.h>

#include "ViewModelFixture.h"

namespace vantrokelui::viewmodel::testing {
namespace {

class ViewModelNetworkTest : public ViewModelFixture {};

TEST_F(ViewModelNetworkTest, InstallingAMonitorSubscribesAndTakesItsStateNow) {
    auto offline = std::make_shared<FakeNetworkMonitor>(false);
    viewModel->SetNetworkConnectionMonitor([offline] { return offline; });
    EXPECT_TRUE(offline->HasCallback());
    EXPECT_EQ(offline->isConnectedCalls.load(), 1);
    EXPECT_FALSE(viewModel->GetIsNetworkConnected());
    offline->Report(true);
    EXPECT_TRUE(viewModel->GetIsNetworkConnected());
}

TEST_F(ViewModelNetworkTest, InstallingReleasesTheEarlierMonitor) {
    const std::weak_ptr<FakeNetworkMonitor> first = monitor;
    monitor.reset();
    auto second = std::make_shared<FakeNetworkMonitor>(true);
    viewModel->SetNetworkConnectionMonitor([second] { return second; });
    EXPECT_TRUE(first.expired());
}

TEST_F(ViewModelNetworkTest, AReportWhileClosedChangesOnlyTheProperty) {
    monitor->Report(false);
    ASSERT_EQ(View(), ViewID::None);
    monitor->Report(true);
    Pump();
    EXPECT_TRUE(viewModel->GetIsNetworkConnected());
    EXPECT_EQ(View(), ViewID::None);
    EXPECT_TRUE(delivered.empty());
}

TEST_F(ViewModelNetworkTest, AReportOfTrueOnTheShareScreenWithoutALinkShowsOffline) {
    viewModel->SetIsLoggedIn(true);
    Open();
    ASSERT_EQ(View(), ViewID::ReviewInVantro);
    monitor->Report(true);  // no change of value, and still the offline decision
    Pump();
    EXPECT_EQ(View(), ViewID::Offline);
}

TEST_F(ViewModelNetworkTest, AReportWithALinkAndSignedInShowsTheLink) {
    Store(model::kReviewLinkURLKey, u"https://review.example/l/1");
    viewModel->SetIsLoggedIn(true);
    Open();
    viewModel->SetCurrentViewID(ViewID::ReviewInVantro);
    monitor->Report(false);
    EXPECT_EQ(View(), ViewID::CopyLinkSection);
}

TEST_F(ViewModelNetworkTest, GoingOfflineDuringAShareShowsOffline) {
    viewModel->SetIsLoggedIn(true);
    AddJob(EncodingStatus::Encoding);
    Open();
    ASSERT_EQ(View(), ViewID::EncodingProgress);
    monitor->Report(false);
    EXPECT_EQ(View(), ViewID::Offline);
    EXPECT_FALSE(viewModel->GetIsNetworkConnected());
    // Coming back does not leave the offline screen; only a new open does.
    monitor->Report(true);
    EXPECT_EQ(View(), ViewID::Offline);
    viewModel->SetCurrentViewID(ViewID::None);
    Open();
    EXPECT_EQ(View(), ViewID::EncodingProgress);
}

TEST_F(ViewModelNetworkTest, ANullMonitorLeavesTheStateAndTheOpenShowsOffline) {
    auto offline = std::make_shared<FakeNetworkMonitor>(false);
    viewModel->SetNetworkConnectionMonitor([offline] { return offline; });
    viewModel->SetNetworkConnectionMonitor([] { return nullptr; });
    EXPECT_FALSE(viewModel->GetIsNetworkConnected());
    Open();
    EXPECT_EQ(View(), ViewID::Offline);
}

TEST_F(ViewModelNetworkTest, ANullMonitorKeepsAnEarlierTrue) {
    viewModel->SetNetworkConnectionMonitor([] { return nullptr; });
    EXPECT_TRUE(viewModel->GetIsNetworkConnected());
}

TEST_F(ViewModelNetworkTest, AViewModelWhoseOnlyMonitorIsNullIsOffline) {
    // The bare default: a view model whose monitor never answered.
    struct Bare : ShareForReviewViewModel {
        Bare() = default;
    };
    auto bare = std::make_shared<Bare>();
    bare->SetAssetDataMethods(host->GetActiveSequenceFn(), host->GetSequenceValueFn(),
                              host->SetSequenceValueFn(), host->ClearSequenceValueFn());
    bare->SetAssetProcessorInstalledMethod([] { return true; });
    bare->SetActiveAssetName(u"Cut 1");
    bare->SetNetworkConnectionMonitor([] { return nullptr; });
    EXPECT_FALSE(bare->GetIsNetworkConnected());
    bare->StartShareForReviewPopup();
    EXPECT_EQ(bare->GetCurrentViewID(), ViewID::Offline);
}

TEST_F(ViewModelNetworkTest, AnEmptyFactoryThrows) {
    EXPECT_THROW(viewModel->SetNetworkConnectionMonitor({}), std::bad_function_call);
}

TEST_F(ViewModelNetworkTest, ReportsFromTheMonitorsThreadAreDeliveredOnTheMainThread) {
    viewModel->SetIsLoggedIn(true);
    Open();
    std::vector<bool> seen;
    std::vector<bool> onMain;
    auto binding = viewModel->AddIsNetworkConnectedBinding([&](bool value) {
        seen.push_back(value);
        onMain.push_back(kelcore::threads::CurrentThreadIsMainThread());
    });
    Pump();
    seen.clear();
    onMain.clear();
    std::thread platform([this] {
        monitor->Report(false);
        monitor->Report(true);
    });
    platform.join();
    Pump();
    EXPECT_EQ(seen, (std::vector<bool>{false, true}));
    EXPECT_EQ(onMain, (std::vector<bool>{true, true}));
    EXPECT_EQ(View(), ViewID::Offline);
}

TEST_F(ViewModelNetworkTest, AReportAfterTheViewModelHasGoneDoesNothing) {
    const std::weak_ptr<ShareForReviewViewModel> weak = viewModel;
    viewBinding.reset();
    viewModel.reset();
    ASSERT_TRUE(weak.expired());
    monitor->Report(false);
    EXPECT_EQ(Pump(), 0u);
}

}  // namespace
}  // namespace vantrokelui::viewmodel::testing
