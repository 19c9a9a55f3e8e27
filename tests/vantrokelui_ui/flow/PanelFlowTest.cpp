// The panel end to end against the real vantro-server: a user opens it from the host's header,
// signs in through the browser, chooses the location, shares, follows the share's progress,
// copies the link, edits the sequence and updates the shared content under the same link; a
// cancel on the progress screen, and a full account. Every step is a real click or key on the
// panel's widgets, checked, and rendered to a screenshot.
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <kelui/datatransfer/Clipboard.h>
#include <kelui/datatransfer/ClipboardSendData.h>
#include <vantroauth/BrowserOpener.h>
#include <vantrokelui/model/EncodingStatus.h>
#include <vantrokelui/model/SequenceSettings.h>
#include <vantrokelui/model/ShareManager.h>
#include <vantrokelui/model/ShareModel.h>
#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/view/CopyLinkSectionView.h>
#include <vantrokelui/view/EncodingProgressView.h>
#include <vantrokelui/view/ReviewInVantroView.h>
#include <vantrokelui/view/SigninView.h>
#include <vantrokelui/view/StorageLimitExceededView.h>

#include "PanelFlowFixture.h"
#include "support/TestBrowser.h"

namespace vantrokelui::view::testing {
namespace {

using kelcore::string::string;
using kelcore::string::UTF16toStdString;

class PanelFlowTest : public PanelFlowFixture {
protected:
    /// Waits until the encoder holds `count` jobs and the panel shows the queued screen; the
    /// newest job's id, or empty.
    string AwaitQueuedJob(std::size_t count) {
        if (!PumpPanelUntil([&] {
                return host->Encoder().JobCount() >= count && View() == ViewID::EncodingQueued;
            })) {
            return {};
        }
        SettlePanel();
        return host->Encoder().Jobs().back().jobID;
    }
    /// The status line of the progress screen showing now; empty without one.
    string StatusLine() const {
        const auto progress = Screen<EncodingProgressView>();
        return progress ? progress->GetStatusText()->GetText() : string(u"(no progress screen)");
    }
    /// The popup's size as the main view asks for it.
    kelcore::geom::PointT<float> PanelSize() const {
        return sharedui::GetRecommendedSize(Popup().GetMainView());
    }
    /// `views` with the three stages of a running share (11, 12, 13) as 11, and each run of
    /// equal views as one.
    static std::vector<ViewID> WithProgressStagesAsOne(const std::vector<ViewID>& views) {
        std::vector<ViewID> merged;
        for (ViewID view : views) {
            if (view == ViewID::EncodingProgress || view == ViewID::UploadProgress) {
                view = ViewID::EncodingQueued;
            }
            if (merged.empty() || merged.back() != view) {
                merged.push_back(view);
            }
        }
        return merged;
    }
    /// A stored value of the sequence, in UTF-8; empty when absent.
    std::string StoredText(kelcore::string::string_view key) const {
        return host->Stored(key).value_or(std::string());
    }
};

TEST_F(PanelFlowTest, SignInShareCopyEditAndUpdateKeepTheLinkAndStackVersionTwo) {
    ASSERT_NO_FATAL_FAILURE(StartWorldWithViewModel());
    testsupport::TestBrowser browser({.username = kUser, .password = kPassword});
    vantroauth::SetBrowserOpener(browser.Opener());
    ASSERT_NO_FATAL_FAILURE(MakePanel());
    EXPECT_EQ(PopupWindow(), nullptr) << "the panel showed before the user opened it";

    // Open: nobody is signed in, so the panel asks for the sign-in.
    ASSERT_TRUE(ClickWidget(headerShareButton));
    ASSERT_TRUE(AwaitView(ViewID::SigninPrompt));
    const auto signin = Screen<SigninView>();
    ASSERT_NE(signin, nullptr);
    EXPECT_TRUE(PopupShown());
    EXPECT_EQ(signin->GetWorkflowLabel()->GetNameText()->GetText(), u"Cut 1");
    EXPECT_EQ(signin->GetSigninButton()->GetText(), u"Sign in to Vantro");
    EXPECT_TRUE(browser.Visits().empty()) << "opening the panel must not start a browser sign-in";
    Shoot("01-signin");
    Shoot("01-signin", true);

    // Sign in: the browser signs ann in and the panel moves on to the share screen by itself.
    ASSERT_TRUE(Click(signin->GetSigninButton()));
    ASSERT_TRUE(PumpPanelUntil([&] {
        return View() == ViewID::ReviewInVantro && viewModel->GetUser()->GetID() != Guid();
    })) << "the sign-in did not reach the share screen; the panel shows view "
        << static_cast<int>(View());
    SettlePanel();
    // The browser's visit ends with the listener's answer, which may come after the panel moved.
    ASSERT_TRUE(browser.WaitForVisits(1));
    const auto visits = browser.Visits();
    ASSERT_EQ(visits.size(), 1u);
    EXPECT_EQ(visits[0].callbackStatus, 200) << visits[0].callbackBody << visits[0].failure;
    EXPECT_TRUE(viewModel->GetIsLoggedIn());
    auto share = Screen<ReviewInVantroView>();
    ASSERT_NE(share, nullptr);
    EXPECT_EQ(share->GetLocationButton()->GetText(), u"Select Vantro Location...");
    EXPECT_FALSE(share->GetShareButton()->UI_IsEnabled()) << "Share without a location";
    EXPECT_EQ(share->GetShareButton()->UI_GetToolTip(), u"Select a Vantro location to share");
    Shoot("02-share-without-location");

    // The location.
    ASSERT_NO_FATAL_FAILURE(ChooseReviewsAsLocation());
    share = Screen<ReviewInVantroView>();
    ASSERT_NE(share, nullptr);
    EXPECT_EQ(share->GetLocationButton()->GetText(), u"Studio/Editors/Alpha/Reviews");
    EXPECT_EQ(share->GetLocationButton()->UI_GetToolTip(), u"Studio/Editors/Alpha/Reviews");
    EXPECT_TRUE(share->GetShareButton()->UI_IsEnabled());
    ASSERT_EQ(share->GetPresetPopup()->GetItemCount(), 2);
    EXPECT_EQ(share->GetPresetPopup()->GetValue(), 0);
    EXPECT_EQ(share->GetPresetPopup()->GetItemText(0), u"H.264 Match Source");
    EXPECT_EQ(StoredText(model::kUploadFolderGuidKey), folder);
    Shoot("03-share-ready");
    Shoot("03-share-ready", true);
    Shoot("03-share-ready", false, 2);

    // Share: the link is made and shown at once, and the encoder has the job.
    ASSERT_TRUE(Click(share->GetShareButton()));
    const string firstJob = AwaitQueuedJob(1);
    ASSERT_FALSE(firstJob.empty())
        << "the encoder never got the share; the panel shows view " << static_cast<int>(View());
    const string link = viewModel->GetReviewLinkURL();
    ASSERT_EQ(UTF16toStdString(link).rfind(Url("/r/"), 0), 0u) << UTF16toStdString(link);
    auto progress = Screen<EncodingProgressView>();
    ASSERT_NE(progress, nullptr);
    EXPECT_EQ(progress->GetStatusText()->GetText(), u"Queued in Sarvex");
    EXPECT_EQ(progress->GetCopyLinkSection()->GetLinkText()->GetText(), link);
    EXPECT_TRUE(progress->GetProgressBar()->IsValueUnknown()) << "nothing is known while queued";
    EXPECT_EQ(UTF16toStdString(host->Encoder().Jobs()[0].presetPath),
              "/presets/h264-match-source.epr");
    Shoot("04-queued");

    // Encoding: the open panel's bar follows the encoder.
    host->Encoder().BeginEncoding(firstJob);
    host->Encoder().ReportProgress(firstJob, 0.5);
    ASSERT_TRUE(PumpPanelUntil([&] {
        const auto shown = Screen<EncodingProgressView>();
        return shown && shown->GetProgressBar()->GetValue() == 500;
    })) << "the bar never showed half of the render";
    Shoot("05-encoding-while-open");

    // The encoding stage as the panel shows it when opened on it: closed, then opened again.
    ASSERT_TRUE(CloseWithEsc());
    ASSERT_TRUE(ClickWidget(headerShareButton));
    ASSERT_TRUE(AwaitView(ViewID::EncodingProgress));
    progress = Screen<EncodingProgressView>();
    ASSERT_NE(progress, nullptr);
    EXPECT_EQ(progress->GetStatusText()->GetText(), u"Encoding in Progress...");
    EXPECT_EQ(progress->GetProgressBar()->GetValue(), 500);
    EXPECT_EQ(progress->GetCopyLinkSection()->GetLinkText()->GetText(), link);
    Shoot("06-encoding");

    // The render is done; opened again, the panel shows the upload stage.
    host->Encoder().FinishEncoding(firstJob);
    ASSERT_TRUE(
        PumpPanelUntil([&] { return viewModel->GetEncodingStatus() == EncodingStatus::Encoded; }));
    ASSERT_TRUE(CloseWithEsc());
    ASSERT_TRUE(ClickWidget(headerShareButton));
    ASSERT_TRUE(AwaitView(ViewID::UploadProgress));
    progress = Screen<EncodingProgressView>();
    ASSERT_NE(progress, nullptr);
    EXPECT_EQ(progress->GetStatusText()->GetText(), u"Upload in Progress...");
    EXPECT_EQ(progress->GetCopyLinkSection()->GetLinkText()->GetText(), link);
    Shoot("07-uploading");

    // The upload: the panel ends on the link.
    host->Encoder().StartUploading(firstJob);
    ASSERT_TRUE(AwaitView(ViewID::CopyLinkSection));
    auto end = Screen<CopyLinkSectionView>();
    ASSERT_NE(end, nullptr);
    EXPECT_EQ(end->GetCopyLinkSection()->GetLinkText()->GetText(), link);
    EXPECT_EQ(end->GetCopyLinkSection()->GetLinkText()->GetURL(), UTF16toStdString(link));
    EXPECT_FALSE(end->GetUpdateContentView()->UI_IsShown());
    EXPECT_FALSE(end->GetOfflineSection()->UI_IsShown());
    // The screen and the popup's one-pixel border on each side.
    EXPECT_EQ(PanelSize(), (kelcore::geom::PointT<float>{342.0f, 77.0f}));
    EXPECT_EQ(PopupWindow()->size(), QSize(342, 77));
    EXPECT_EQ(StoredText(model::kReviewLinkURLKey), UTF16toStdString(link));
    Shoot("08-link");
    Shoot("08-link", true);
    Shoot("08-link", false, 2);

    // Copy link: the clipboard holds the link and the user is told.
    kelui::datatransfer::Clipboard::SendToClipboard(
        kelui::datatransfer::NewClipboardSendData(u"something else"));
    ASSERT_TRUE(Click(end->GetCopyLinkSection()->GetCopyButton()));
    SettlePanel();
    EXPECT_EQ(kelui::datatransfer::Clipboard::GetClipboardText(), link);
    const auto toasts = host->Toasts().Toasts();
    ASSERT_EQ(toasts.size(), 1u);
    EXPECT_EQ(toasts[0].message, "Copied");
    EXPECT_TRUE(PopupShown()) << "copying must not close the panel";

    // The user edits the sequence: the host marks it modified, and the end screen offers the
    // update in place, the popup growing by the strip.
    ASSERT_TRUE(PumpPanelUntil([&] { return !model::HasActiveShareJobs(); }))
        << "the finished share stayed filed";
    viewModel->SetActiveAssetDirty(true);
    ASSERT_TRUE(PumpPanelUntil([&] { return end->GetUpdateContentView()->UI_IsShown(); }))
        << "the update strip never appeared";
    SettlePanel();
    EXPECT_EQ(Screen<CopyLinkSectionView>(), end) << "a modified mark is not a change of screen";
    EXPECT_EQ(StoredText(model::kAssetModifiedAfterShareKey), "true");
    const float strip = end->GetUpdateContentView()->GetTextHeight() + 38.0f;
    EXPECT_EQ(PanelSize(), (kelcore::geom::PointT<float>{342.0f, 77.0f + strip}));
    EXPECT_EQ(PopupWindow()->height(),
              QRectF(0.0, 0.0, 342.0, 77.0 + static_cast<double>(strip)).toAlignedRect().height());
    EXPECT_EQ(end->GetUpdateContentView()->GetUpdateButton()->GetText(), u"Update shared content");
    Shoot("09-modified");

    // Update shared content: the share runs again, into the same link.
    ASSERT_TRUE(Click(end->GetUpdateContentView()->GetUpdateButton()));
    const string secondJob = AwaitQueuedJob(2);
    ASSERT_FALSE(secondJob.empty()) << "the update never reached the encoder; the panel shows view "
                                    << static_cast<int>(View());
    progress = Screen<EncodingProgressView>();
    ASSERT_NE(progress, nullptr);
    EXPECT_EQ(progress->GetCopyLinkSection()->GetLinkText()->GetText(), link);
    Shoot("10-update-queued");
    host->Encoder().RunThroughEncoding(secondJob);
    host->Encoder().StartUploading(secondJob);
    ASSERT_TRUE(AwaitView(ViewID::CopyLinkSection));
    end = Screen<CopyLinkSectionView>();
    ASSERT_NE(end, nullptr);
    EXPECT_EQ(viewModel->GetReviewLinkURL(), link);
    EXPECT_EQ(end->GetCopyLinkSection()->GetLinkText()->GetText(), link);
    EXPECT_FALSE(end->GetUpdateContentView()->UI_IsShown()) << "the update left the mark set";
    EXPECT_EQ(PanelSize(), (kelcore::geom::PointT<float>{342.0f, 77.0f}));
    Shoot("11-link-after-update");

    // On the server: one link, holding the stack, whose newest version, 2, is the update.
    const std::string linkID = StoredText(model::kReviewLinkGuidKey);
    const std::string stackID = StoredText(model::kVersionStackGuidKey);
    const std::string assetID = StoredText(model::kUploadedAssetGuidKey);
    ASSERT_FALSE(linkID.empty());
    ASSERT_FALSE(stackID.empty());
    const auto reviewLink = ApiGet("/v2/review_links/" + linkID);
    ASSERT_TRUE(reviewLink.is_object());
    EXPECT_EQ(Text(reviewLink.at("url")), UTF16toStdString(link));
    const auto& items = reviewLink.at("items").as_array();
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(Text(items[0].at("version_stack_id")), stackID);
    EXPECT_EQ(items[0].at("version_count").as_int64(), 2);
    EXPECT_EQ(Text(items[0].at("current").at("id")), assetID);
    EXPECT_EQ(ApiGet("/v2/assets/" + assetID).at("version").as_int64(), 2);
    EXPECT_EQ(ApiGet("/v2/assets/" + stackID + "/children").as_array().size(), 2u);
    EXPECT_EQ(ApiGet("/v2/projects/" + alpha + "/review_links").as_array().size(), 1u);
    const auto children = FolderChildren();
    ASSERT_EQ(children.size(), 1u);
    EXPECT_EQ(Text(children[0].at("id")), stackID);

    // What the panel went through, and what it reported. The screens of a running share are
    // counted as one, since how often it moves from stage to stage is the progress screen's
    // affair: the opens on the encoding and the upload stage are checked above.
    Pump();
    EXPECT_EQ(WithProgressStagesAsOne(delivered),
              (std::vector<ViewID>{
                  ViewID::SigninPrompt, ViewID::ReviewInVantro, ViewID::SelectProject,
                  ViewID::SelectFolder, ViewID::ReviewInVantro, ViewID::EncodingQueued,
                  ViewID::None, ViewID::EncodingQueued, ViewID::None, ViewID::EncodingQueued,
                  ViewID::CopyLinkSection, ViewID::EncodingQueued, ViewID::CopyLinkSection}));
    EXPECT_EQ(
        UsageEvents(),
        (std::vector<std::string>{
            "open/unified-header-share-button", "open/vantro-location-picker",
            "set/vantro-location", "start/share-first-time", "open/unified-header-share-button",
            "open/unified-header-share-button", "success/upload-media", "apply/copy-media-link",
            "start/update-content", "success/upload-media"}));
    const auto logged = events.Events();
    ASSERT_GE(logged.size(), 2u);
    EXPECT_EQ(logged[1].GetFields(),
              (std::vector<kelappsupport::analytics::SDMEvent::Field>{
                  {"kel", "ui_path_to_access", "click:first-time-share-view"}}));
    EXPECT_EQ(host->Toasts().Toasts().size(), 1u) << "a toast besides \"Copied\" came";
}

// While the panel stays open, the progress screen follows the share from stage to stage: each
// stage is a screen of its own (views 11, 12, 13) with its own line, as when the panel opens on
// a running share.
TEST_F(PanelFlowTest, TheOpenProgressScreenNamesEachStageOfTheShareAsItComes) {
    ASSERT_NO_FATAL_FAILURE(StartSignedInPanel());
    const auto share = Screen<ReviewInVantroView>();
    ASSERT_NE(share, nullptr);
    ASSERT_TRUE(Click(share->GetShareButton()));
    const string jobID = AwaitQueuedJob(1);
    ASSERT_FALSE(jobID.empty());
    EXPECT_EQ(StatusLine(), u"Queued in Sarvex");

    host->Encoder().BeginEncoding(jobID);
    ASSERT_TRUE(
        PumpPanelUntil([&] { return viewModel->GetEncodingStatus() == EncodingStatus::Encoding; }));
    SettlePanel();
    EXPECT_EQ(View(), ViewID::EncodingProgress)
        << "the encoder is rendering, but the open panel still shows the queued stage";
    EXPECT_EQ(StatusLine(), u"Encoding in Progress...")
        << "the open panel names the wrong stage while the encoder renders";

    host->Encoder().FinishEncoding(jobID);
    ASSERT_TRUE(
        PumpPanelUntil([&] { return viewModel->GetEncodingStatus() == EncodingStatus::Encoded; }));
    SettlePanel();
    EXPECT_EQ(View(), ViewID::UploadProgress)
        << "the render is done and goes to the upload, but the open panel still shows view "
        << static_cast<int>(View());
    EXPECT_EQ(StatusLine(), u"Upload in Progress...")
        << "the open panel names the wrong stage once the upload begins";

    host->Encoder().StartUploading(jobID);
    EXPECT_TRUE(AwaitView(ViewID::CopyLinkSection));
}

TEST_F(PanelFlowTest, CancelOnTheProgressScreenStopsTheUploadClosesThePanelAndLeavesNoVersion) {
    ASSERT_NO_FATAL_FAILURE(StartSignedInPanel());
    // Parts hang at the service, so the transfer is still running when the user cancels.
    const auto fault =
        client.PostJson(Url("/test/faults"), boost::json::object{{"route", "/v2/uploads/*/parts/*"},
                                                                 {"count", 1000},
                                                                 {"delay_ms", 60000}});
    ASSERT_EQ(fault.status, 201) << fault.body;
    const auto share = Screen<ReviewInVantroView>();
    ASSERT_NE(share, nullptr);
    ASSERT_TRUE(Click(share->GetShareButton()));
    const string jobID = AwaitQueuedJob(1);
    ASSERT_FALSE(jobID.empty());
    host->Encoder().RunThroughEncoding(jobID);
    host->Encoder().StartUploading(jobID);
    ASSERT_TRUE(PumpPanelUntil([&] {
        return std::filesystem::exists(server.DataDir() / "uploads") &&
               !std::filesystem::is_empty(server.DataDir() / "uploads");
    })) << "the upload never reached the server";
    const auto job = model::ShareManager::GetInstance().GetJobW(jobID);
    ASSERT_NE(job, nullptr);
    ASSERT_EQ(job->GetEncodingStatus(), EncodingStatus::Uploading);
    const auto progress = Screen<EncodingProgressView>();
    ASSERT_NE(progress, nullptr);
    EXPECT_EQ(progress->GetCancelButton()->GetText(), u"Cancel");
    Shoot("20-cancel-while-uploading");
    ClearDelivered();

    ASSERT_TRUE(Click(progress->GetCancelButton()));
    // The button cancels the job and closes the panel before it returns.
    EXPECT_EQ(View(), ViewID::None) << "Cancel left the panel on view " << static_cast<int>(View());
    // The transfer reports its end on the cloud library's thread, after the job has gone.
    ASSERT_TRUE(PumpPanelUntil([&] {
        const auto logged = UsageEvents();
        return std::find(logged.begin(), logged.end(), "cancel/upload-media") != logged.end() &&
               viewModel->GetEncodingStatus() == EncodingStatus::UploadCancelled;
    })) << "the transfer never reported its cancel";
    ASSERT_TRUE(PumpPanelUntil([&] {
        return model::ShareManager::GetInstance().GetJobW(jobID) == nullptr;
    })) << "the cancelled job stayed filed";
    SettlePanel();
    EXPECT_EQ(job->GetEncodingStatus(), EncodingStatus::UploadCancelled);
    // The transfer's end asks for the share screen. It may come before the button closes the
    // panel (both are delivered in the same pump, so nothing is drawn between them) or after
    // it, when the closed panel must drop it; either way the panel ends closed and stays so.
    EXPECT_EQ(View(), ViewID::None)
        << "after Cancel the panel shows view " << static_cast<int>(View())
        << ": the transfer's late share screen got through the closing gate "
           "(see PanelCloseRaceTest)";
    ASSERT_FALSE(delivered.empty());
    EXPECT_EQ(delivered.back(), ViewID::None);
    EXPECT_EQ(std::count(delivered.begin(), delivered.end(), ViewID::None), 1);
    EXPECT_FALSE(PopupShown()) << "Cancel closes the panel";
    EXPECT_TRUE(host->Toasts().Toasts().empty()) << "a cancel is not a failure";
    EXPECT_FALSE(model::HasActiveShareJobs());
    ASSERT_TRUE(PumpPanelUntil([&] {
        return !std::filesystem::exists(server.DataDir() / "uploads") ||
               std::filesystem::is_empty(server.DataDir() / "uploads");
    })) << "the cancelled upload stayed on the server";
    EXPECT_TRUE(FolderChildren().empty()) << "a version arrived in the folder";
    EXPECT_EQ(host->Stored(model::kVersionStackGuidKey), std::nullopt)
        << "the sequence claims a version stack";

    // Opened again, the panel offers the share anew.
    ASSERT_TRUE(ClickWidget(headerShareButton));
    ASSERT_TRUE(AwaitView(ViewID::ReviewInVantro));
    Shoot("21-after-cancel");
}

TEST_F(PanelFlowTest, ShareWithAFullAccountShowsTheStorageLimitScreenAndRendersNothing) {
    ASSERT_NO_FATAL_FAILURE(StartSignedInPanel());
    ASSERT_NO_FATAL_FAILURE(SetStorageUsed(server.DataDir(), studio, (std::uint64_t{1} << 34) + 1));
    const auto share = Screen<ReviewInVantroView>();
    ASSERT_NE(share, nullptr);

    ASSERT_TRUE(Click(share->GetShareButton()));
    ASSERT_TRUE(AwaitView(ViewID::StorageLimitExceeded));
    const auto full = Screen<StorageLimitExceededView>();
    ASSERT_NE(full, nullptr);
    EXPECT_EQ(full->GetDescriptionText()->GetText(),
              u"You've reached your storage limit. Upgrade your Vantro account for more storage.");
    EXPECT_EQ(full->GetWorkflowLabel()->GetNameText()->GetText(), u"Cut 1");
    EXPECT_TRUE(PopupShown());
    EXPECT_EQ(PanelSize(), (kelcore::geom::PointT<float>{342.0f, 87.0f}));
    Shoot("30-storage-limit");

    SettlePanel();
    EXPECT_EQ(host->Encoder().JobCount(), 0u);
    EXPECT_EQ(host->Stored(model::kSelectedEncoderPresetKey), std::nullopt)
        << "over the limit the preset is not written";
    EXPECT_TRUE(viewModel->GetReviewLinkURL().empty()) << "no link is made for a full account";
    EXPECT_EQ(ApiGet("/v2/projects/" + alpha + "/review_links").as_array().size(), 0u);
}

}  // namespace
}  // namespace vantrokelui::view::testing
