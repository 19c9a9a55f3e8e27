// Cancel on the progress screen closes the panel while the cancelled transfer reports its end on
// the cloud library's thread, which asks for the share screen at about the same moment. A closed
// panel must stay closed whatever the order: the late request is dropped, never shown. The real
// panel (popup and screen manager) over the real view model, with the two writes raced from two
// threads, many times, since the order they meet in is the threads' own.
#include <atomic>
#include <memory>
#include <thread>

#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>
#include <QWidget>

#include <gtest/gtest.h>

#include <kelui/ui/UI_HostWidgetNode.h>
#include <vantrokelui/sharedui/CreatePopupWorkflow.h>
#include <vantrokelui/sharedui/PopupManager.h>
#include <vantrokelui/view/ShareForReviewScreenManager.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

#include "support/qt/QtMainThreadFixture.h"

namespace vantrokelui::view::testing {
namespace {

using ViewID = ShareForReviewViewID;

class PanelCloseRaceTest : public testsupport::QtMainThreadFixture {
protected:
    void SetUp() override {
        QtMainThreadFixture::SetUp();
        window.setGeometry(100, 80, 900, 560);
        auto* layout = new QVBoxLayout(&window);
        auto* shareButton = new QPushButton(QStringLiteral("Share"), &window);
        layout->addWidget(shareButton, 0, Qt::AlignRight | Qt::AlignTop);
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
        viewModel = viewmodel::ShareForReviewViewModel::Create();
        anchor.reset(new kelui::ui::UI_HostWidgetNode(shareButton));
        workflow = CreatePopupWorkflow();
        workflow->SetAnchorNode(anchor);
        screens = CreateShareForReviewScreenManager(viewModel, workflow);
        Pump();
    }
    void TearDown() override {
        screens.reset();
        workflow.reset();
        anchor.reset();
        viewModel.reset();
        QtMainThreadFixture::TearDown();
    }

    bool PopupShown() const {
        const auto& container =
            dynamic_cast<sharedui::PopupManager&>(*workflow).GetPopupContainer();
        return container && container->IsPopupShown();
    }

    QWidget window;
    boost::intrusive_ptr<kelui::ui::UI_HostWidgetNode> anchor;
    std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel;
    std::shared_ptr<sharedui::WorkflowBase> workflow;
    std::shared_ptr<ShareForReviewScreenManager> screens;
};

TEST_F(PanelCloseRaceTest, ATransfersLateShareScreenNeverReopensAPanelThatCancelClosed) {
    // The cloud library's thread keeps asking for the share screen, as a transfer's end does
    // after a cancel (the upload ended without success), so that some request is always under
    // way when the panel closes.
    std::atomic<bool> running{true};
    std::atomic<long> requests{0};
    std::thread transferEnds([&] {
        while (running.load()) {
            viewModel->SetCurrentViewID(ViewID::ReviewInVantro);
            requests.fetch_add(1);
        }
    });
    struct Stop {
        std::atomic<bool>& running;
        std::thread& thread;
        ~Stop() {
            running.store(false);
            thread.join();
        }
    } stop{running, transferEnds};

    constexpr int kRounds = 500;
    for (int round = 0; round < kRounds; ++round) {
        // The panel opens again, and at once a request shows the share screen in it.
        viewModel->EnableCurrentViewIDMessages(true);
        const long openedAt = requests.load();
        while (requests.load() < openedAt + 2) {
        }
        // What the Cancel button does once the job is cancelled.
        viewModel->SetCurrentViewID(ViewID::None);
        // Every request that was under way at the close has ended once two more have.
        const long closedAt = requests.load();
        while (requests.load() < closedAt + 2) {
        }
        Pump();

        ASSERT_EQ(viewModel->GetCurrentViewID(), ViewID::None)
            << "round " << round << ": a late request for the share screen got through the "
            << "closing panel's gate (checked before the close, stored after it), and the "
            << "closed panel now claims view " << static_cast<int>(viewModel->GetCurrentViewID());
        ASSERT_FALSE(PopupShown()) << "round " << round << ": the popup came back after Cancel";
    }
}

}  // namespace
}  // namespace vantrokelui::view::testing
