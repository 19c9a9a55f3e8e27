// The share screen: its texts, the location link and where it leads, the presets, the Share
// action through the storage check to the pipeline, and its layout from measured sizes.
#include <vantrokelui/view/ReviewInVantroView.h>

#include <QAccessible>
#include <QAction>
#include <QMenu>
#include <QTest>

#include <gtest/gtest.h>

#include <kelappsupport/analytics/UsageEventsCapturedForTesting.h>
#include <kelcore/string/String.h>
#include <kelui/ui/QtConversions.h>
#include <vantrocommon/Guid.h>
#include <vantrokelui/sharedui/WorkflowSectionView.h>

#include "ReviewInVantroViewFixture.h"

namespace vantrokelui::view::testing {
namespace {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

constexpr char16_t kFeatureDescription[] =
    u"Export the current sequence and upload to the cloud for review in Vantro.";
constexpr char16_t kLinkClearedText[] =
    u"You can only access the latest shared link for this sequence from Corvane. Go to Vantro "
    u"to find all shared links.";
constexpr char16_t kSelectLocation[] = u"Select Vantro Location...";
constexpr char16_t kSelectLocationToShare[] = u"Select a Vantro location to share";

class ReviewInVantroViewTest : public ReviewInVantroViewFixture {
protected:
    /// A left click in the middle of `node`'s widget.
    static void Click(const boost::intrusive_ptr<kelui::ui::UI_Node>& node) {
        QWidget* widget = node->GetWidget();
        QTest::mouseClick(widget, Qt::LeftButton, {}, widget->rect().center());
    }

    /// A press on the location link's text (its first characters), and the release.
    void ClickLocation() {
        QWidget* widget = view->GetLocationButton()->GetWidget();
        const QPoint onText(6, widget->height() / 2);
        QTest::mousePress(widget, Qt::LeftButton, {}, onText);
        QTest::mouseRelease(widget, Qt::LeftButton, {}, onText);
        Pump();
    }

    static QString AccessibleName(const boost::intrusive_ptr<kelui::ui::UI_Node>& node) {
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(node->GetWidget());
        return accessible ? accessible->text(QAccessible::Name) : QString();
    }

    /// The share-start events sent so far, by subtype.
    static std::vector<std::string> ShareStarts(
        const kelappsupport::analytics::UsageEventsCapturedForTesting& events) {
        std::vector<std::string> found;
        for (const auto& event : events.Events()) {
            if (event.GetType() == "start") {
                found.push_back(event.GetSubtype());
            }
        }
        return found;
    }
};

// --- construction ---------------------------------------------------------------------------

TEST_F(ReviewInVantroViewTest, BuildsItsSixChildrenInOrderWithTheirTexts) {
    MakeView();
    ASSERT_EQ(view->ChildCount(), 6u);
    EXPECT_EQ(view->ChildAt(0), view->GetWorkflowLabel());
    EXPECT_EQ(view->ChildAt(1), view->GetDescriptionText());
    EXPECT_EQ(view->ChildAt(2), view->GetLocationLabel());
    EXPECT_EQ(view->ChildAt(3), view->GetLocationButton());
    EXPECT_EQ(view->ChildAt(4), view->GetPresetPopup());
    EXPECT_EQ(view->ChildAt(5), view->GetShareButton());
    for (std::size_t index = 0; index < view->ChildCount(); ++index) {
        EXPECT_TRUE(view->ChildAt(index)->UI_IsShown()) << "child " << index;
    }
    EXPECT_TRUE(view->UI_IsShown());

    EXPECT_EQ(view->GetDescriptionText()->GetText(), kFeatureDescription);
    EXPECT_TRUE(view->GetDescriptionText()->IsMultiLine());
    EXPECT_EQ(view->GetLocationLabel()->GetText(), u"Location:");
    EXPECT_EQ(view->GetShareButton()->GetText(), u"Share");
    EXPECT_EQ(view->GetShareButton()->GetFontStyleName(), "Bold");
    EXPECT_EQ(view->GetLocationButton()->GetTextTruncation(), limner::TextTruncation::Path);
    EXPECT_EQ(view->GetPresetPopup()->GetButtonChromeType(),
              kelui::controls::UI_Popup::kChromeBorderless);

    // Screen readers hear what the user reads.
    EXPECT_EQ(AccessibleName(view->GetShareButton()), QStringLiteral("Share"));
    EXPECT_EQ(AccessibleName(view->GetLocationLabel()), QStringLiteral("Location:"));
    EXPECT_EQ(AccessibleName(view->GetLocationButton()), kelui::ui::ToQString(kSelectLocation));
}

TEST_F(ReviewInVantroViewTest, TheHeaderNamesTheActiveSequenceAndFollowsIt) {
    MakeView();
    EXPECT_EQ(view->GetWorkflowLabel()->GetNameText()->GetText(), u"Cut 1");
    viewModel->SetActiveAssetName(u"Cut 2 - final grade");
    Pump();
    EXPECT_EQ(view->GetWorkflowLabel()->GetNameText()->GetText(), u"Cut 2 - final grade");
}

TEST_F(ReviewInVantroViewTest, TheHeaderMenuOffersSignOutEnabledOnlyWhenSignedInAndOnline) {
    viewModel->SetIsLoggedIn(true);
    viewModel->SetIsNetworkConnected(true);
    MakeView();
    const auto& menu = view->GetWorkflowLabel()->GetMenuPopup();
    ASSERT_EQ(menu->GetItemCount(), 1);
    EXPECT_EQ(menu->GetItemText(0), u"Sign out of Vantro");
    EXPECT_TRUE(menu->IsItemEnabled(0));

    viewModel->SetIsLoggedIn(false);
    MakeView();
    EXPECT_FALSE(view->GetWorkflowLabel()->GetMenuPopup()->IsItemEnabled(0));
}

// --- location -------------------------------------------------------------------------------

TEST_F(ReviewInVantroViewTest, WithoutALocationTheLinkAsksForOneAndShareIsDisabledWithTheReason) {
    MakeView();
    EXPECT_EQ(view->GetLocationButton()->GetText(), kSelectLocation);
    EXPECT_EQ(view->GetLocationButton()->UI_GetToolTip(), u"");
    EXPECT_FALSE(view->GetShareButton()->UI_IsEnabled());
    EXPECT_EQ(view->GetShareButton()->UI_GetToolTip(), kSelectLocationToShare);
    EXPECT_EQ(view->GetShareButton()->UI_GetToolTipWidth(), 400.0f);
}

TEST_F(ReviewInVantroViewTest, AClickOnTheDisabledShareButtonDoesNothing) {
    MakeView();
    kelappsupport::analytics::UsageEventsCapturedForTesting events;
    Click(view->GetShareButton());
    Pump();
    EXPECT_TRUE(events.Events().empty());
    EXPECT_EQ(View(), ViewID::ReviewInVantro);
}

TEST_F(ReviewInVantroViewTest, AChosenLocationShowsThePathCutWithTheWholePathInTheTooltip) {
    const auto tree = LocalTree::Make(u"Studio North of the Riverside Production Company",
                                      u"Editors and Colourists", u"Spring Campaign 2024",
                                      u"Client reviews, second round");
    ChooseFolder(tree);
    MakeView();
    const string path = tree.user->GetSelectionPath();
    ASSERT_EQ(path,
              u"Studio North of the Riverside Production Company/Editors and "
              u"Colourists/Spring Campaign 2024/Client reviews, second round");

    const auto& link = view->GetLocationButton();
    EXPECT_EQ(link->GetText(), path);
    EXPECT_EQ(link->UI_GetToolTip(), path);
    EXPECT_EQ(link->UI_GetToolTipWidth(), 400.0f);
    const string shown = link->GetDisplayedText();
    EXPECT_NE(shown, path);
    EXPECT_NE(shown.find(u'\u2026'), string::npos) << "the cut is marked with an ellipsis";
    // Both ends of the path stay readable.
    EXPECT_EQ(shown.substr(0, 6), u"Studio");
    EXPECT_EQ(shown.substr(shown.size() - 5), u"round");

    EXPECT_TRUE(view->GetShareButton()->UI_IsEnabled());
    EXPECT_EQ(view->GetShareButton()->UI_GetToolTip(), u"");
}

TEST_F(ReviewInVantroViewTest, TheLinkAndShareFollowTheSelectionWhileShown) {
    const auto tree = LocalTree::Make();
    viewModel->SetUser(tree.user);
    MakeView();
    ASSERT_FALSE(view->GetShareButton()->UI_IsEnabled());

    tree.user->SetSelection(tree.folder);
    Pump();
    EXPECT_EQ(view->GetLocationButton()->GetText(), u"Studio/Editors/Alpha/Reviews");
    EXPECT_TRUE(view->GetShareButton()->UI_IsEnabled());
    // The link's width follows the label, whatever the text.
    EXPECT_EQ(view->GetLocationButton()->UI_GetLocalRectF(),
              view->ComputePanelLayout().locationButton);

    tree.user->SetSelection(nullptr);
    Pump();
    EXPECT_EQ(view->GetLocationButton()->GetText(), kSelectLocation);
    EXPECT_FALSE(view->GetShareButton()->UI_IsEnabled());
    EXPECT_EQ(view->GetShareButton()->UI_GetToolTip(), kSelectLocationToShare);
}

TEST_F(ReviewInVantroViewTest, APressOnTheLinkWithoutALocationOpensTheProjectStep) {
    MakeView();
    kelappsupport::analytics::UsageEventsCapturedForTesting events;
    ClickLocation();
    EXPECT_EQ(View(), ViewID::SelectProject);
    const auto captured = events.Events();
    ASSERT_EQ(captured.size(), 1u);
    EXPECT_EQ(captured[0].GetType(), "open");
    EXPECT_EQ(captured[0].GetSubtype(), "vantro-location-picker");
    ASSERT_EQ(captured[0].GetFields().size(), 1u);
    EXPECT_EQ(captured[0].GetFields()[0].key, "ui_path_to_access");
    EXPECT_EQ(captured[0].GetFields()[0].value, "click:first-time-share-view");
}

TEST_F(ReviewInVantroViewTest, APressOnTheLinkWithALocationOpensTheFolderStep) {
    ChooseFolder(LocalTree::Make());
    MakeView();
    ClickLocation();
    EXPECT_EQ(View(), ViewID::SelectFolder);
}

TEST_F(ReviewInVantroViewTest, InNewLinkModeThePickerEventSaysUpdate) {
    viewModel->SetCreateNewLinkMode(true);
    MakeView();
    kelappsupport::analytics::UsageEventsCapturedForTesting events;
    ClickLocation();
    EXPECT_EQ(View(), ViewID::SelectProject);
    const auto captured = events.Events();
    ASSERT_EQ(captured.size(), 1u);
    ASSERT_EQ(captured[0].GetFields().size(), 1u);
    EXPECT_EQ(captured[0].GetFields()[0].value, "click:update-share-view");
}

TEST_F(ReviewInVantroViewTest, OnlyAPressOnTheLinkNavigates) {
    MakeView();
    QWidget* widget = view->GetLocationButton()->GetWidget();
    const QPoint onText(6, widget->height() / 2);
    kelappsupport::analytics::UsageEventsCapturedForTesting events;
    QTest::mouseMove(widget, onText);
    QTest::mouseRelease(widget, Qt::LeftButton, {}, onText);
    Pump();
    EXPECT_EQ(View(), ViewID::ReviewInVantro);
    EXPECT_TRUE(events.Events().empty());

    QTest::mousePress(widget, Qt::LeftButton, {}, onText);
    Pump();
    EXPECT_EQ(View(), ViewID::SelectProject) << "the press alone navigates";
    EXPECT_EQ(events.Events().size(), 1u);
    QTest::mouseRelease(widget, Qt::LeftButton, {}, onText);
    Pump();
    EXPECT_EQ(events.Events().size(), 1u) << "the release adds nothing";
}

TEST_F(ReviewInVantroViewTest, TheLinksTargetIsFixedWhenTheScreenIsMade) {
    const auto tree = LocalTree::Make();
    viewModel->SetUser(tree.user);
    MakeView();
    tree.user->SetSelection(tree.folder);
    Pump();
    ClickLocation();
    EXPECT_EQ(View(), ViewID::SelectProject);
}

TEST_F(ReviewInVantroViewTest, SpaceOnTheFocusedLinkOpensThePickerAsAPressWould) {
    ChooseFolder(LocalTree::Make());
    MakeView();
    kelappsupport::analytics::UsageEventsCapturedForTesting events;
    QWidget* widget = view->GetLocationButton()->GetWidget();
    widget->setFocus(Qt::TabFocusReason);
    ASSERT_TRUE(QTest::qWaitFor([&] { return widget->hasFocus(); }));
    QTest::keyClick(widget, Qt::Key_Space);
    Pump();
    EXPECT_EQ(View(), ViewID::SelectFolder);
    EXPECT_EQ(events.Events().size(), 1u);
}

// --- presets --------------------------------------------------------------------------------

TEST_F(ReviewInVantroViewTest, ThePopupListsThePresetsAndShowsTheSelectedOne) {
    const auto presets = SetThreePresets();
    viewModel->SetSelectedEncoderPreset(presets[2]);
    MakeView();
    const auto& popup = view->GetPresetPopup();
    ASSERT_EQ(popup->GetItemCount(), 3);
    EXPECT_EQ(popup->GetItemText(0), u"H.264 Match Source");
    EXPECT_EQ(popup->GetItemText(1), u"H.264 1080p");
    EXPECT_EQ(popup->GetItemText(2), u"ProRes 422 Proxy");
    EXPECT_EQ(popup->GetValue(), 2);

    viewModel->SetSelectedEncoderPreset(presets[1]);
    Pump();
    EXPECT_EQ(popup->GetValue(), 1);
}

TEST_F(ReviewInVantroViewTest, ASelectedPresetIsFoundByItsPathNotByItsObject) {
    SetThreePresets();
    viewModel->SetSelectedEncoderPreset(Preset(u"another name", u"/presets/h264-1080.epr"));
    MakeView();
    EXPECT_EQ(view->GetPresetPopup()->GetValue(), 1);
}

TEST_F(ReviewInVantroViewTest, ASelectedPresetThatIsNotListedLeavesThePopupAsItWas) {
    const auto presets = SetThreePresets();
    viewModel->SetSelectedEncoderPreset(presets[2]);
    MakeView();
    ASSERT_EQ(view->GetPresetPopup()->GetValue(), 2);
    viewModel->SetSelectedEncoderPreset(Preset(u"H.264 Match Source", u"/elsewhere/h264.epr"));
    Pump();
    EXPECT_EQ(view->GetPresetPopup()->GetValue(), 2);
}

TEST_F(ReviewInVantroViewTest, ANewListRefillsThePopupAndSelectsItsFirstPreset) {
    SetThreePresets();
    MakeView();
    viewModel->SetEncoderPresets({Preset(u"DNxHR LB", u"/presets/dnxhr-lb.epr", u"mxf")});
    Pump();
    ASSERT_EQ(view->GetPresetPopup()->GetItemCount(), 1);
    EXPECT_EQ(view->GetPresetPopup()->GetItemText(0), u"DNxHR LB");
    EXPECT_EQ(view->GetPresetPopup()->GetValue(), 0);
    EXPECT_EQ(view->GetPresetPopup()->UI_GetLocalRectF(), view->ComputePanelLayout().presetPopup);
}

TEST_F(ReviewInVantroViewTest, PickingAPresetWithTheMouseSelectsItInTheViewModel) {
    const auto presets = SetThreePresets();
    MakeView();
    const auto& popup = view->GetPresetPopup();
    Click(popup);
    ASSERT_TRUE(QTest::qWaitFor([&] { return popup->GetMenu()->isVisible(); }));
    QAction* third = popup->GetMenu()->actions()[2];
    QTest::mouseClick(popup->GetMenu(), Qt::LeftButton, {},
                      popup->GetMenu()->actionGeometry(third).center());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !popup->GetMenu()->isVisible(); }));
    EXPECT_EQ(viewModel->GetSelectedEncoderPreset(), presets[2]);
    Pump();
    EXPECT_EQ(popup->GetValue(), 2);
}

TEST_F(ReviewInVantroViewTest, APickBeyondThePresentListIsIgnored) {
    SetThreePresets();
    MakeView();
    // The host's list shrinks (as new objects, as the pipeline makes them); the popup still
    // shows three until the delivery comes.
    const auto fresh = Preset(u"H.264 Match Source", u"/presets/h264-match.epr");
    viewModel->SetEncoderPresets({fresh});
    const auto& popup = view->GetPresetPopup();
    ASSERT_EQ(popup->GetItemCount(), 3);
    popup->GetWidget()->setFocus(Qt::TabFocusReason);
    QTest::keyClick(popup->GetWidget(), Qt::Key_Space);
    ASSERT_TRUE(QTest::qWaitFor([&] { return popup->GetMenu()->isVisible(); }));
    QTest::keyClick(popup->GetMenu(), Qt::Key_Down);
    QTest::keyClick(popup->GetMenu(), Qt::Key_Down);
    QTest::keyClick(popup->GetMenu(), Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !popup->GetMenu()->isVisible(); }));
    ASSERT_EQ(popup->GetValue(), 2) << "the pick itself happened";
    EXPECT_EQ(viewModel->GetSelectedEncoderPreset(), fresh);
    Pump();
    EXPECT_EQ(popup->GetItemCount(), 1);
    EXPECT_EQ(popup->GetValue(), 0);
}

// --- Share ----------------------------------------------------------------------------------

TEST_F(ReviewInVantroViewTest, ShareReportsAFirstShareOutsideNewLinkMode) {
    ChooseFolder(LocalTree::Make());
    MakeView();
    kelappsupport::analytics::UsageEventsCapturedForTesting events;
    Click(view->GetShareButton());
    Pump();
    const auto captured = events.Events();
    ASSERT_EQ(captured.size(), 1u);
    EXPECT_EQ(captured[0].GetCategory(), "EXPORT");
    EXPECT_EQ(captured[0].GetSubcategory(), "Publish");
    EXPECT_EQ(captured[0].GetType(), "start");
    EXPECT_EQ(captured[0].GetSubtype(), "share-first-time");
    ASSERT_EQ(captured[0].GetFields().size(), 1u);
    EXPECT_EQ(captured[0].GetFields()[0].section, "kel");
    EXPECT_EQ(captured[0].GetFields()[0].value, "click:vantro-share-for-review-dialog");
}

TEST_F(ReviewInVantroViewTest, NewLinkModeShowsTheLinkClearedTextAndReportsANewLink) {
    viewModel->SetCreateNewLinkMode(true);
    ChooseFolder(LocalTree::Make());
    MakeView();
    EXPECT_EQ(view->GetDescriptionText()->GetText(), kLinkClearedText);
    kelappsupport::analytics::UsageEventsCapturedForTesting events;
    Click(view->GetShareButton());
    Pump();
    EXPECT_EQ(ShareStarts(events), std::vector<std::string>{"create-new-media-link"});
}

TEST_F(ReviewInVantroViewTest, TheDescriptionIsChosenOnceWhenTheScreenIsMade) {
    MakeView();
    viewModel->SetCreateNewLinkMode(true);
    Pump();
    EXPECT_EQ(view->GetDescriptionText()->GetText(), kFeatureDescription);
}

TEST_F(ReviewInVantroViewTest, AnAccountWithinItsLimitWritesThePresetAndStartsTheShare) {
    const auto tree = LocalTree::Make();
    ChooseFolder(tree);
    const auto presets = SetThreePresets();
    viewModel->SetSelectedEncoderPreset(presets[1]);
    StoreEarlierShare(tree);
    SignInWithStorage(100, 100);  // equal is not over
    MakeView();

    Click(view->GetShareButton());
    PumpUntil([&] { return View() == ViewID::EncodingQueued; });

    const vantrocommon::Guid account(
        kelcore::string::UTF16toStdString(tree.account->GetID().AsString()));
    ASSERT_EQ(transport->Urls().size(), 1u);
    EXPECT_EQ(transport->Urls()[0], "http://service.invalid/v2/accounts/" + account.AsString());
    EXPECT_EQ(Stored(model::kSelectedEncoderPresetKey),
              model::FormatEncoderPresetJSON({u"H.264 1080p", u"/presets/h264-1080.epr", u"mp4"}));
    const auto renders = Renders();
    ASSERT_EQ(renders.size(), 1u);
    EXPECT_EQ(renders[0].presetPath, u"/presets/h264-1080.epr");
}

TEST_F(ReviewInVantroViewTest, AFullAccountGoesToTheStorageLimitScreenAndStartsNothing) {
    const auto tree = LocalTree::Make();
    ChooseFolder(tree);
    SetThreePresets();
    StoreEarlierShare(tree);
    SignInWithStorage(101, 100);
    MakeView();

    Click(view->GetShareButton());
    PumpUntil([&] { return View() == ViewID::StorageLimitExceeded; });
    Pump();
    EXPECT_EQ(transport->Urls().size(), 1u);
    EXPECT_EQ(Stored(model::kSelectedEncoderPresetKey), std::nullopt);
    EXPECT_TRUE(Renders().empty());
}

TEST_F(ReviewInVantroViewTest, AnEmptyPresetListGivesAnEmptyPopupAndShareStillChecksStorage) {
    const auto tree = LocalTree::Make();
    ChooseFolder(tree);
    StoreEarlierShare(tree);
    // An earlier share's preset stays with the sequence and carries this one.
    model::SetSequenceString(
        host->SetSequenceValueFn(), guids.projectGuid, guids.sequenceGuid,
        model::kSelectedEncoderPresetKey,
        model::FormatEncoderPresetJSON({u"Stored", u"/presets/stored.epr", u"mp4"}));
    SignInWithStorage(10, 100);
    MakeView();
    EXPECT_EQ(view->GetPresetPopup()->GetItemCount(), 0);
    EXPECT_EQ(view->GetPresetPopup()->GetValue(), -1);
    ASSERT_TRUE(view->GetShareButton()->UI_IsEnabled());

    Click(view->GetShareButton());
    PumpUntil([&] { return View() == ViewID::EncodingQueued; });
    EXPECT_EQ(transport->Urls().size(), 1u) << "the storage check asked the service";
    const auto renders = Renders();
    ASSERT_EQ(renders.size(), 1u);
    EXPECT_EQ(renders[0].presetPath, u"/presets/stored.epr");
}

TEST_F(ReviewInVantroViewTest, WithoutASignedInBackEndTheCheckNeverAnswersAndNothingStarts) {
    const auto tree = LocalTree::Make();
    ChooseFolder(tree);
    SetThreePresets();
    StoreEarlierShare(tree);
    MakeView();
    kelappsupport::analytics::UsageEventsCapturedForTesting events;
    Click(view->GetShareButton());
    Pump();
    EXPECT_EQ(ShareStarts(events), std::vector<std::string>{"share-first-time"});
    EXPECT_EQ(View(), ViewID::ReviewInVantro);
    EXPECT_EQ(Stored(model::kSelectedEncoderPresetKey), std::nullopt);
    EXPECT_TRUE(Renders().empty());
}

TEST_F(ReviewInVantroViewTest, AnAnswerAfterTheScreenHasGoneStillReachesTheViewModel) {
    const auto tree = LocalTree::Make();
    ChooseFolder(tree);
    SetThreePresets();
    StoreEarlierShare(tree);
    SignInWithStorage(101, 100);
    MakeView();
    Click(view->GetShareButton());
    // The screen leaves at once, as a change of screen would take it.
    root->ChildRemove(view);
    view.reset();
    PumpUntil([&] { return View() == ViewID::StorageLimitExceeded; });
}

// --- layout ---------------------------------------------------------------------------------

TEST_F(ReviewInVantroViewTest, TheLayoutFollowsTheColumnFromMeasuredSizes) {
    ChooseFolder(LocalTree::Make());
    SetThreePresets();
    MakeView();

    const float h0 = sharedui::GetRecommendedSize(view->GetWorkflowLabel()).y;
    ASSERT_EQ(h0, 20.0f);
    const float h1 = sharedui::MeasureTextHeight(view->GetDescriptionText(), 310.0f);
    const PointT<float> label = sharedui::GetRecommendedSize(view->GetLocationLabel());
    const PointT<float> popup = sharedui::GetRecommendedSize(view->GetPresetPopup());
    const PointT<float> share = sharedui::GetRecommendedSize(view->GetShareButton());
    const float y1 = 42.0f;
    const float y2 = y1 + h1 + 13.0f;
    const float y3 = y2 + label.y + 13.0f;

    EXPECT_EQ(view->GetWorkflowLabel()->UI_GetLocalRectF(), (RectT<float>{15, 10, 310, 20}));
    EXPECT_EQ(view->GetDescriptionText()->UI_GetLocalRectF(), (RectT<float>{15, y1, 310, h1}));
    EXPECT_EQ(view->GetLocationLabel()->UI_GetLocalRectF(),
              (RectT<float>{15, y2, label.x, label.y}));
    EXPECT_EQ(view->GetLocationButton()->UI_GetLocalRectF(),
              (RectT<float>{label.x + 17.0f, y2, 310.0f - label.x - 2.0f, label.y}));
    EXPECT_EQ(view->GetPresetPopup()->UI_GetLocalRectF(), (RectT<float>{15, y3, popup.x, popup.y}));
    // Share stands right-aligned on the popup's row, at the column's right edge.
    EXPECT_EQ(view->GetShareButton()->UI_GetLocalRectF(),
              (RectT<float>{325.0f - share.x, y3, share.x, share.y}));
    EXPECT_EQ(sharedui::GetRecommendedSize(view), (PointT<float>{340.0f, y3 + share.y + 15.0f}));

    // The popup is wide enough for its longest item and does not reach the Share button.
    EXPECT_LT(15.0f + popup.x, 325.0f - share.x);
    const auto layout = view->ComputePanelLayout();
    EXPECT_EQ(layout.recommendedSize, sharedui::GetRecommendedSize(view));
}

TEST_F(ReviewInVantroViewTest, ALongerDescriptionRaisesTheHeightAndTheSectionLearnsItWhenMeasured) {
    boost::intrusive_ptr<ReviewInVantroView> content(new ReviewInVantroView(viewModel));
    boost::intrusive_ptr<sharedui::WorkflowSectionView> section(
        new sharedui::WorkflowSectionView(content, {}, nullptr));
    section->UI_Show(true);
    root->ChildPushBack(section);
    Pump();
    const auto before = sharedui::GetRecommendedSize(section);
    section->UI_SetLocalRectF({0.0f, 0.0f, before.x, before.y});
    const float shortHeight = sharedui::MeasureTextHeight(content->GetDescriptionText(), 310.0f);

    content->GetDescriptionText()->SetText(kLinkClearedText);
    const float longHeight = sharedui::MeasureTextHeight(content->GetDescriptionText(), 310.0f);
    ASSERT_GT(longHeight, shortHeight);
    const float raise = longHeight - shortHeight;

    EXPECT_EQ(sharedui::GetRecommendedSize(content).y, before.y + raise);
    // Nobody has measured the section yet: the host still has the old height.
    EXPECT_EQ(section->UI_GetLocalRectF().height, before.y);
    EXPECT_EQ(sharedui::GetRecommendedSize(section).y, before.y + raise);

    // A screen made in new-link mode is that much taller from the start.
    viewModel->SetCreateNewLinkMode(true);
    section->SetContent(new ReviewInVantroView(viewModel));
    Pump();
    EXPECT_EQ(section->UI_GetLocalRectF().height, before.y + raise);
    root->ChildRemove(section);
}

}  // namespace
}  // namespace vantrokelui::view::testing
