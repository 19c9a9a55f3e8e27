// Renders the popups, the popup window, a dialog and a toast in the light and the dark palette to
// /tmp/keluiqt-shots/popups/, for a person to look at. Each test also checks that something was
// drawn.
#include <kelui/controls/UI_PicturePopup.h>
#include <kelui/controls/UI_Popup.h>
#include <kelui/controls/UI_StaticText.h>
#include <kelui/controls/UI_TextButton.h>
#include <kelui/controls/UI_TouchPopupContainer.h>
#include <kelui/sharedui/QtToastManager.h>
#include <kelui/ui/MainTopLevelWindow.h>
#include <kelui/ui/QtWindow.h>
#include <kelui/ui/UI_Dialog.h>
#include <kelui/ui/UI_SubView.h>
#include <kelui/utility/ImageProvider.h>
#include <kelui/utility/OS_ResourceManager.h>

#include <QImage>
#include <QMenu>
#include <QPainter>
#include <QTest>

#include <gtest/gtest.h>

#include "keluiqt/popups/PopupsTestSupport.h"
#include "support/qt/Screenshots.h"

namespace {

using kelui::controls::UI_PicturePopup;
using kelui::controls::UI_Popup;
using kelui::controls::UI_StaticText;
using kelui::controls::UI_TextButton;
using kelui::controls::UI_TouchPopupContainer;
using kelui::ui::UI_SubView;
using popupstest::HostWindow;
using popupstest::Make;
using popupstest::WaitFor;

const char* ThemeName(bool dark) {
    return dark ? "dark" : "light";
}

// The library's icons for the time of one screenshot.
struct Icons {
    Icons() { kelui::utility::ImageProvider::SetThemeResourceManager(manager); }
    ~Icons() { kelui::utility::ImageProvider::SetThemeResourceManager({}); }

    kelui::ui::ImageSupplyFunction Supply(const std::string& name) const {
        auto resources = manager;
        return std::make_shared<std::function<void(kelui::ui::ConstMessage*)>>(
            [resources, name](kelui::ui::ConstMessage* message) {
                if (auto* request = dynamic_cast<kelui::ui::UI_PictureSupplyMessage*>(message)) {
                    request->SetIcon(name, resources.get(), true, nullptr);
                }
            });
    }

    std::shared_ptr<kelui::utility::OS_ResourceManager> manager =
        std::make_shared<kelui::utility::OS_ResourceManager>(popupstest::IconsFolder());
};

// How many distinct colours an image has: a blank rendering has one or two.
int CountColours(const QImage& image) {
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 2) {
        for (int x = 0; x < image.width(); x += 2) {
            colours.insert(image.pixel(x, y));
        }
    }
    return static_cast<int>(colours.size());
}

bool SaveImage(const QImage& image, const std::string& name) {
    return testsupport::SaveScreenshot(image, "popups", name + ".png");
}

class Screenshot : public ::testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        if (GetParam()) {
            dark = std::make_unique<testsupport::ScopedDarkPalette>();
        }
    }
    void TearDown() override { dark.reset(); }

    std::unique_ptr<testsupport::ScopedDarkPalette> dark;
};

TEST_P(Screenshot, AnOpenPopupList) {
    Icons icons;
    HostWindow host(QRect(40, 40, 300, 230));
    auto label = Make<UI_StaticText>();
    label->SetText(u"Preset");
    auto presets = Make<UI_Popup>();
    for (const char16_t* name :
         {u"H.264 — Match Source", u"H.264 — 1080p", u"HEVC — 4K", u"ProRes 422 Proxy"}) {
        presets->AddItem(name, -1);
    }
    presets->DisableItem(3, true);
    presets->SetValue(1);
    auto accounts = Make<UI_Popup>();
    accounts->SetImageSupplyFunction(icons.Supply("S_VantroProjectName_16"));
    accounts->AddItemWithCustomIcon(u"Studio North", -1);
    accounts->SetValue(0);
    auto borderless = Make<UI_Popup>();
    borderless->SetButtonChromeType(UI_Popup::kChromeBorderless);
    borderless->AddItem(u"Borderless choice", -1);
    borderless->SetValue(0);
    auto more = Make<UI_PicturePopup>();
    more->SetImageSupplyFunction(icons.Supply("MoreSmallList_18"));
    more->AddItem(u"Sign out", -1);
    const std::vector<
        std::pair<boost::intrusive_ptr<kelui::ui::UI_Node>, kelcore::geom::RectT<float>>>
        layout{{label, {15.0f, 18.0f, 60.0f, 16.0f}},
               {presets, {70.0f, 14.0f, 200.0f, 24.0f}},
               {accounts, {70.0f, 150.0f, 200.0f, 24.0f}},
               {borderless, {70.0f, 184.0f, 140.0f, 24.0f}},
               {more, {268.0f, 188.0f, 18.0f, 18.0f}}};
    for (const auto& [node, rect] : layout) {
        host.node->ChildPushBack(node);
        node->UI_SetLocalRectF(rect);
        node->UI_Show(true);
    }
    // The accounts popup has the keyboard's focus, and shows its ring.
    host.window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&host.window));
    accounts->GetWidget()->setFocus(Qt::TabFocusReason);
    presets->ShowMenu();
    ASSERT_TRUE(WaitFor([&] { return presets->GetMenu()->isVisible(); }));
    QTest::keyClick(presets->GetMenu(), Qt::Key_Down);

    // The window and the list over it, as the user sees them.
    QImage shot(host.window.size(), QImage::Format_ARGB32);
    shot.fill(Qt::transparent);
    QPainter painter(&shot);
    painter.drawPixmap(0, 0, host.window.grab());
    painter.drawPixmap(presets->GetMenu()->pos() - host.window.pos(), presets->GetMenu()->grab());
    painter.end();
    presets->HideMenu();

    EXPECT_GT(CountColours(shot), 8);
    EXPECT_TRUE(SaveImage(shot, std::string("popup-list-") + ThemeName(GetParam())));
}

TEST_P(Screenshot, APopupWindowWithContent) {
    Icons icons;
    HostWindow host(QRect(40, 40, 420, 300));
    auto anchor = Make<UI_SubView>();
    host.node->ChildPushBack(anchor);
    anchor->UI_SetLocalRectF({360.0f, 10.0f, 40.0f, 20.0f});
    auto container = Make<UI_TouchPopupContainer>(nullptr, anchor, false, true, false, 2u, true);
    auto content = Make<UI_SubView>();
    auto title = Make<UI_StaticText>();
    title->SetFontStyleName("Bold");
    title->SetText(u"Share for review:");
    auto name = Make<UI_StaticText>();
    name->SetText(u"Sequence 01 — final grade");
    name->SetTextTruncation(2);
    auto more = Make<UI_PicturePopup>();
    more->SetImageSupplyFunction(icons.Supply("MoreSmallList_18"));
    more->AddItem(u"Sign out", -1);
    auto presetLabel = Make<UI_StaticText>();
    presetLabel->SetText(u"Preset");
    auto presets = Make<UI_Popup>();
    presets->AddItem(u"H.264 — Match Source", -1);
    presets->SetValue(0);
    auto cancel = Make<UI_TextButton>();
    cancel->SetText(u"Cancel");
    auto share = Make<UI_TextButton>();
    share->SetText(u"Share");
    share->SetCommitAppearance(true);
    const std::vector<
        std::pair<boost::intrusive_ptr<kelui::ui::UI_Node>, kelcore::geom::RectT<float>>>
        layout{
            {title, {15.0f, 17.5f, 125.0f, 16.0f}},   {name, {140.0f, 17.5f, 140.0f, 16.0f}},
            {more, {292.0f, 16.0f, 18.0f, 18.0f}},    {presetLabel, {15.0f, 58.0f, 60.0f, 16.0f}},
            {presets, {80.0f, 54.0f, 230.0f, 24.0f}}, {cancel, {150.0f, 106.0f, 76.0f, 24.0f}},
            {share, {234.0f, 106.0f, 76.0f, 24.0f}}};
    for (const auto& [node, rect] : layout) {
        content->ChildPushBack(node);
        node->UI_SetLocalRectF(rect);
        node->UI_Show(true);
    }
    container->GetContainer()->ChildPushBack(content);
    content->UI_SetLocalRectF({0.0f, 0.0f, 325.0f, 145.0f});
    content->UI_Show(true);
    container->StartPopup();
    const auto anchorRect = anchor->UI_LocalToGlobalF(anchor->UI_GetLocalRectF());
    container->SetContentSize(anchorRect.x + anchorRect.width - 325.0f,
                              anchorRect.y + anchorRect.height + 4.0f, 325.0f, 145.0f);
    ASSERT_TRUE(WaitFor([&] { return container->IsPopupShown(); }));
    // Tab from the first control (the "more" menu) lights the preset popup's focus ring.
    ASSERT_TRUE(WaitFor([&] { return QApplication::focusWidget() == more->GetWidget(); }));
    QTest::keyClick(more->GetWidget(), Qt::Key_Tab);
    EXPECT_TRUE(presets->GetWidget()->hasFocus());

    QImage shot(host.window.size(), QImage::Format_ARGB32);
    QPainter painter(&shot);
    painter.drawPixmap(0, 0, host.window.grab());
    painter.drawPixmap(container->GetWidget()->pos() - host.window.pos(),
                       container->GetWidget()->grab());
    painter.end();
    container->UI_Hide(true);

    EXPECT_GT(CountColours(shot), 8);
    EXPECT_TRUE(SaveImage(shot, std::string("popup-window-") + ThemeName(GetParam())));
}

TEST_P(Screenshot, ADialog) {
    auto dialog = Make<kelui::ui::UI_Dialog>(nullptr, u"Choose a location",
                                             kelcore::geom::PointT<float>{}, nullptr);
    auto content = Make<UI_SubView>();
    auto heading = Make<UI_StaticText>();
    heading->SetFontStyleName("Bold");
    heading->SetText(u"Choose a location");
    auto text = Make<UI_StaticText>();
    text->SetMultiLine(true);
    text->SetText(u"The shared sequence goes to the folder you choose. You can move it later.");
    auto cancel = Make<UI_TextButton>();
    cancel->SetText(u"Cancel");
    auto commit = Make<UI_TextButton>();
    commit->SetText(u"Choose");
    commit->SetCommitAppearance(true);
    const std::vector<
        std::pair<boost::intrusive_ptr<kelui::ui::UI_Node>, kelcore::geom::RectT<float>>>
        layout{{heading, {20.0f, 18.0f, 300.0f, 18.0f}},
               {text, {20.0f, 44.0f, 300.0f, 40.0f}},
               {cancel, {156.0f, 106.0f, 80.0f, 24.0f}},
               {commit, {244.0f, 106.0f, 76.0f, 24.0f}}};
    for (const auto& [node, rect] : layout) {
        content->ChildPushBack(node);
        node->UI_SetLocalRectF(rect);
        node->UI_Show(true);
    }
    dialog->GetViewContainer()->ChildPushBack(content);
    content->UI_SetLocalRectF({0.0f, 0.0f, 340.0f, 148.0f});
    content->UI_Show(true);
    dialog->UI_SetLocalRect({0, 0, 340, 148});
    dialog->Position();
    dialog->SetContentSize(340.0f, 148.0f);
    dialog->SetButtons(cancel, commit);

    const QImage shot = dialog->GetWidget()->grab().toImage();

    EXPECT_EQ(shot.size(), QSize(340, 148));
    EXPECT_GT(CountColours(shot), 8);
    EXPECT_TRUE(SaveImage(shot, std::string("dialog-") + ThemeName(GetParam())));
}

TEST_P(Screenshot, Toasts) {
    Icons icons;
    HostWindow host(QRect(40, 40, 480, 200));
    auto window = std::make_shared<kelui::ui::QtWindow>(&host.window);
    kelui::ui::SetMainTopLevelWindow(window);
    kelui::sharedui::QtToastManager manager;
    QImage shot(host.window.width(), host.window.height() * 3, QImage::Format_ARGB32);
    QPainter painter(&shot);
    const std::vector<std::tuple<std::string, std::string, kelui::sharedui::ToastType>> toasts{
        {"Copied", "", kelui::sharedui::ToastType::Success},
        {"Unable to create share for review link.", "Try again", kelui::sharedui::ToastType::Error},
        {"Uploading \"Sequence 01 — final grade and a very long name.mp4\" to the review service "
         "failed.",
         "", kelui::sharedui::ToastType::Warning}};
    int row = 0;
    for (const auto& [message, label, type] : toasts) {
        manager.DisplayToastMessage(
            window, message, label, [] {}, [] {}, type, 30.0,
            kelui::sharedui::kToastManager_DefaultPriority,
            kelui::sharedui::ToastLineType::SingleLine);
        ASSERT_NE(manager.GetShownToast(), nullptr);
        painter.drawPixmap(0, row * host.window.height(), host.window.grab());
        ++row;
    }
    painter.end();
    kelui::ui::SetMainTopLevelWindow({});

    EXPECT_GT(CountColours(shot), 8);
    EXPECT_TRUE(SaveImage(shot, std::string("toast-") + ThemeName(GetParam())));
}

INSTANTIATE_TEST_SUITE_P(LightAndDark, Screenshot, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& param) {
                             return std::string(ThemeName(param.param));
                         });

}  // namespace
