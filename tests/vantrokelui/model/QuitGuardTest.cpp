// The quit guard: registered by the process's first share, it asks the user whether to quit
// while share jobs exist, and "Close later" stops the quit. The registration is process-wide and
// never undone; every test here runs in a process of its own, so each starts unregistered.
#include <vantrokelui/model/ShareManager.h>

#include <future>
#include <thread>

#include <gtest/gtest.h>

#include <kelcore/appstatemanager/AppStateManager.h>
#include <kelcore/appstatemanager/PrepareToQuitService.h>
#include <kelui/ui/MainTopLevelWindow.h>
#include <kelworkspace/workspace/TopLevelWindow.h>
#include <kelworkspace/workspace/Workspace.h>

#include "ShareTestFixture.h"
#include "vantrokelui/support/ScriptedMessageboxPresenter.h"

namespace vantrokelui::model {
namespace {

using kelui::dialogs::messagebox::UI_MessageBox;
using testing::ShareTestFixture;
using vantrokelui::testing::ScriptedMessageboxPresenter;

class QuitWorkspace final : public kelworkspace::workspace::Workspace {
public:
    std::shared_ptr<limner::DrawingSupplier> GetDrawingSupplier() const override {
        return supplier;
    }

private:
    class Supplier final : public limner::DrawingSupplier {};
    std::shared_ptr<limner::DrawingSupplier> supplier = std::make_shared<Supplier>();
};

class QuitWindow final : public kelworkspace::workspace::TopLevelWindow {
public:
    explicit QuitWindow(std::shared_ptr<QuitWorkspace> workspace)
        : workspace(std::move(workspace)) {}
    kelcore::string::string GetTitle() const override { return u"Main window"; }
    std::shared_ptr<kelworkspace::workspace::Workspace> GetWorkspace() const override {
        return workspace;
    }

private:
    std::shared_ptr<QuitWorkspace> workspace;
};

class QuitGuardTest : public ShareTestFixture {
protected:
    void SetUp() override {
        ShareTestFixture::SetUp();
        InjectInto(ShareManager::GetInstance());
        kelui::ui::SetMainTopLevelWindow(window);
    }
    void TearDown() override {
        kelui::ui::SetMainTopLevelWindow({});
        ShareTestFixture::TearDown();
        kelcore::appstatemanager::ResetForTesting();
    }

    // A share of `guids` as far as the encoder's queue, on the process's manager.
    void Share(const ProcessingGuids& guids = kSequenceA) {
        ShareManager::GetInstance().ProcessAssetForReview_Internal(
            guids, ReviewAttributes{kFolder, true, {}, Guid(0x11, 1), u"http://r/1"},
            EncoderPresetAttributes{u"H.264", u"/presets/h264.epr", u"mp4"});
    }

    ScriptedMessageboxPresenter boxes{UI_MessageBox::Button1};
    std::shared_ptr<QuitWorkspace> workspace = std::make_shared<QuitWorkspace>();
    std::shared_ptr<QuitWindow> window = std::make_shared<QuitWindow>(workspace);
};

TEST_F(QuitGuardTest, AQuitInARunWithoutAnyShareAsksNothing) {
    // Jobs exist, but nothing was ever submitted, so nothing was registered.
    ShareManager::GetInstance().AddJobToMap(
        u"job-a", kSequenceA, EncodingAttributes{EncodingStatus::Queued, 0.0}, {}, u"/tmp/x.mp4");
    boxes.SetAnswer(UI_MessageBox::Button2);

    EXPECT_TRUE(kelcore::appstatemanager::RunPrepareToQuit());

    EXPECT_TRUE(boxes.Requests().empty());
}

TEST_F(QuitGuardTest, AQuitWhileASharesRunsAsksAndCloseNowLetsItGoOn) {
    Share();

    EXPECT_TRUE(kelcore::appstatemanager::RunPrepareToQuit());

    const auto requests = boxes.Requests();
    ASSERT_EQ(requests.size(), 1u);
    const auto& box = requests[0];
    EXPECT_EQ(box.title, "Still rendering and uploading");
    EXPECT_EQ(box.message,
              "Your sequence is still rendering and uploading to Vantro. Closing Corvane now will "
              "cancel this process and newly created links will be empty.");
    EXPECT_EQ(box.buttons, (std::array<std::string, 5>{"Close now", "Close later", "", "", ""}));
    EXPECT_EQ(box.defaultButton, UI_MessageBox::Button2);
    EXPECT_EQ(box.icon, UI_MessageBox::Icon::Warning);
    EXPECT_FALSE(box.checkBox);
    EXPECT_EQ(box.parent, window);
    EXPECT_EQ(box.drawingSupplier, workspace->GetDrawingSupplier());
    // The user's choice never touches the jobs.
    EXPECT_TRUE(ShareManager::GetInstance().HasActiveShareJobs());
}

TEST_F(QuitGuardTest, CloseLaterStopsTheQuitAndTheNextQuitAsksAgain) {
    Share();
    boxes.SetAnswer(UI_MessageBox::Button2);

    EXPECT_FALSE(kelcore::appstatemanager::RunPrepareToQuit());
    EXPECT_FALSE(kelcore::appstatemanager::RunPrepareToQuit());

    EXPECT_EQ(boxes.Requests().size(), 2u);
    EXPECT_TRUE(ShareManager::GetInstance().HasActiveShareJobs());
    EXPECT_EQ(encoder->Renders().size(), 1u);
}

TEST_F(QuitGuardTest, ABoxClosedWithoutAButtonLetsTheQuitGoOn) {
    Share();
    boxes.SetAnswer(UI_MessageBox::NoButton);

    EXPECT_TRUE(kelcore::appstatemanager::RunPrepareToQuit());

    EXPECT_EQ(boxes.Requests().size(), 1u);
}

TEST_F(QuitGuardTest, AQuitWithAnEmptyJobMapAsksNothing) {
    Share();
    const string jobID = encoder->Renders().at(0).jobID;
    ShareManager::GetInstance().CleanupCanceledJobInSarvex(jobID,
                                                           encoder->Renders()[0].outputFilePath);
    ASSERT_FALSE(ShareManager::GetInstance().HasActiveShareJobs());
    boxes.SetAnswer(UI_MessageBox::Button2);

    EXPECT_TRUE(kelcore::appstatemanager::RunPrepareToQuit());

    EXPECT_TRUE(boxes.Requests().empty());
}

TEST_F(QuitGuardTest, AJobWaitingAsCancelRequestedCountsAsActive) {
    Share();
    ShareManager::GetInstance().CancelActiveProcessingJob();
    ASSERT_EQ(ShareManager::GetInstance().GetShareJobEncodingStatus(),
              EncodingStatus::CancelRequested);
    boxes.SetAnswer(UI_MessageBox::Button2);

    EXPECT_FALSE(kelcore::appstatemanager::RunPrepareToQuit());

    EXPECT_EQ(boxes.Requests().size(), 1u);
}

TEST_F(QuitGuardTest, WithoutAMainWindowTheQuitGoesOnUnasked) {
    Share();
    kelui::ui::SetMainTopLevelWindow({});
    boxes.SetAnswer(UI_MessageBox::Button2);

    EXPECT_TRUE(kelcore::appstatemanager::RunPrepareToQuit());

    EXPECT_TRUE(boxes.Requests().empty());
}

TEST_F(QuitGuardTest, AMainWindowWithoutAWorkspaceLetsTheQuitGoOnUnasked) {
    Share();
    const auto bare = std::make_shared<QuitWindow>(nullptr);
    kelui::ui::SetMainTopLevelWindow(bare);
    boxes.SetAnswer(UI_MessageBox::Button2);

    EXPECT_TRUE(kelcore::appstatemanager::RunPrepareToQuit());

    EXPECT_TRUE(boxes.Requests().empty());
}

TEST_F(QuitGuardTest, OffTheMainThreadTheQuitGoesOnUnasked) {
    Share();
    boxes.SetAnswer(UI_MessageBox::Button2);

    auto quit =
        std::async(std::launch::async, [] { return kelcore::appstatemanager::RunPrepareToQuit(); });

    EXPECT_TRUE(quit.get());
    EXPECT_TRUE(boxes.Requests().empty());
}

TEST_F(QuitGuardTest, TheGuardIsRegisteredOnceWhateverTheNumberOfShares) {
    Share(kSequenceA);
    Share(kSequenceB);
    Share(kSequenceA);
    ASSERT_EQ(encoder->Renders().size(), 3u);

    EXPECT_TRUE(kelcore::appstatemanager::RunPrepareToQuit());

    EXPECT_EQ(boxes.Requests().size(), 1u);
}

}  // namespace
}  // namespace vantrokelui::model
