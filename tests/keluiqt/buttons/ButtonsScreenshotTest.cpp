// Renders every kind of button on a panel, light and dark, to PNG files under
// /tmp/keluiqt-shots/buttons/ for a person to look at, and checks the states that the pictures
// are meant to show.
#include <kelui/controls/UI_HotTextButton.h>
#include <kelui/controls/UI_HotTextURL.h>
#include <kelui/controls/UI_PictureButton.h>
#include <kelui/controls/UI_PictureTextButton.h>
#include <kelui/controls/UI_TextButton.h>
#include <kelui/ui/QtConversions.h>
#include <kelui/ui/UI_NodeManager.h>
#include <kelui/utility/OS_ResourceManager.h>

#include <filesystem>
#include <string>
#include <vector>

#include <QPainter>
#include <QTest>

#include <gtest/gtest.h>

#include "ButtonTestSupport.h"
#include "support/qt/Screenshots.h"

namespace {

using buttons_test::Grab;
using buttons_test::Make;
using buttons_test::Near;
using kelui::controls::UI_Button;
using kelui::controls::UI_HotTextButton;
using kelui::controls::UI_HotTextURL;
using kelui::controls::UI_PictureButton;
using kelui::controls::UI_PictureTextButton;
using kelui::controls::UI_TextButton;

constexpr limner::ColorRGBA kBlue{38.0f / 255.0f, 127.0f / 255.0f, 235.0f / 255.0f, 1.0f};
constexpr limner::ColorRGBA kWhite{1.0f, 1.0f, 1.0f, 1.0f};

const std::filesystem::path kIcons =
    std::filesystem::path(__FILE__).parent_path() / "../../../vantrokelui/resources/icons";

kelui::ui::ImageSupplyFunction Icon(kelui::utility::OS_ResourceManager& icons,
                                    const std::string& name) {
    return buttons_test::SupplyOf(icons.GetImage(name));
}

boost::intrusive_ptr<UI_TextButton> CallToAction(std::u16string_view text) {
    auto button = Make<UI_TextButton>();
    button->SetButtonChromeType(0);
    button->SetCustomThemeColor(UI_Button::kBackgroundColorID, kBlue);
    button->SetCustomThemeColor(UI_Button::kActiveBackgroundColorID, kBlue);
    button->SetCustomThemeColor(UI_Button::kTextColorID, kWhite);
    button->SetDisplayBorderNever(true);
    button->SetFontStyleName("Bold");
    button->SetText(text);
    return button;
}

// The panel: rows of buttons in each state, links, a review link row and a location path, in
// the panel's column from x = 15 to 325. Links stand 2 pixels left of the column so that their
// text lines up with it.
class Panel {
public:
    Panel() : icons(kIcons), window(340.0f, 282.0f) {
        measuring =
            kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier()->GetMeasuringLimner();

        float x = 15.0f;
        for (const auto* text : {u"Cancel", u"Hovered", u"Disabled", u"Focused"}) {
            auto button = Make<UI_TextButton>();
            button->SetText(text);
            x = Place(button, x, 15.0f);
            standard.push_back(button);
        }
        standard[2]->SetDisabled(true);

        x = 15.0f;
        for (const auto* text : {u"Share", u"Disabled", u"Focused"}) {
            auto button = CallToAction(text);
            x = Place(button, x, 51.0f);
            callToAction.push_back(button);
        }
        callToAction[1]->SetDisabled(true);
        commit = Make<UI_TextButton>();
        commit->SetCommitAppearance(true);
        commit->SetText(u"Done");
        Place(commit, x, 51.0f);

        copy = Make<UI_PictureTextButton>();
        copy->SetImageSupplyFunction(Icon(icons, "S_Copy_16"));
        copy->SetText(u"Copy link");
        copy->SetButtonChromeType(9);
        copy->SetDisplayContainerAlways(true);
        copy->SetDisplayBorderAlways(true);
        copy->SetSpringLoaded(true);
        x = Place(copy, 15.0f, 87.0f);
        for (const auto* text : {u"Copy", u"Focused"}) {
            auto button = Make<UI_PictureTextButton>();
            button->SetImageSupplyFunction(Icon(icons, "S_Copy_16"));
            button->SetText(text);
            button->SetButtonChromeType(9);
            button->SetDisplayContainerAlways(true);
            button->SetDisplayBorderAlways(true);
            x = Place(button, x, 87.0f);
            pictureText.push_back(button);
        }
        pictureText[0]->SetDisabled(true);

        // Icon buttons: at rest, hovered, disabled, focused; then quiet text buttons.
        x = 15.0f;
        for (const auto* name :
             {"S_Settings_18", "MoreSmallList_18", "S_Settings_18", "MoreSmallList_18"}) {
            auto button = Make<UI_PictureButton>();
            button->SetImageSupplyFunction(Icon(icons, name));
            button->SetText(u"Settings");
            button->SetButtonChromeType(10);
            x = Place(button, x, 123.0f) - 4.0f;
            pictures.push_back(button);
        }
        pictures[2]->SetDisabled(true);
        x += 8.0f;
        for (const auto* text : {u"Quiet", u"Hovered"}) {
            auto button = Make<UI_TextButton>();
            button->SetButtonChromeType(9);
            button->SetText(text);
            x = Place(button, x, 124.0f);
            quiet.push_back(button);
        }

        terms = Make<UI_HotTextURL>();
        terms->SetURL("https://review.example/terms");
        terms->SetText(u"Terms of Service");
        x = PlaceLink(terms, 13.0f, 163.0f);
        privacy = Make<UI_HotTextURL>();
        privacy->SetURL("https://review.example/privacy");
        privacy->SetText(u"Privacy Policy");
        x = PlaceLink(privacy, x + 4.0f, 163.0f);
        help = Make<UI_HotTextURL>();
        help->SetURL("https://review.example/help");
        help->SetText(u"Help");
        PlaceLink(help, x + 4.0f, 163.0f);

        reviewLink = Make<UI_HotTextURL>();
        reviewLink->SetTextTruncation(2);
        reviewLink->SetURL("https://review.example/r/3f9a2c71-8d44-4b0e-9f1d-2a7c5e6b8d90");
        reviewLink->SetText(u"https://review.example/r/3f9a2c71-8d44-4b0e-9f1d-2a7c5e6b8d90");
        window.Add(reviewLink, {13.0f, 195.0f, 196.0f, 20.0f});
        linkCopy = Make<UI_PictureTextButton>();
        linkCopy->SetImageSupplyFunction(Icon(icons, "S_Copy_16"));
        linkCopy->SetText(u"Copy link");
        linkCopy->SetButtonChromeType(9);
        linkCopy->SetDisplayContainerAlways(true);
        linkCopy->SetDisplayBorderAlways(true);
        window.Add(linkCopy, {325.0f - 86.0f, 195.0f, 86.0f, 20.0f});

        location = Make<UI_HotTextButton>();
        location->SetTextTruncation(3);
        location->SetText(u"/Users/editor/Projects/Spring campaign/Review/Final cut");
        window.Add(location, {13.0f, 227.0f, 314.0f, 20.0f});
        disabledLocation = Make<UI_HotTextButton>();
        disabledLocation->SetText(u"Select location...");
        disabledLocation->SetDisabled(true);
        PlaceLink(disabledLocation, 13.0f, 247.0f);
    }

    /// Renders the panel with the pointer over one standard button; the other hovered and
    /// focused controls are rendered in that state one at a time and painted in.
    QImage Render() {
        Hover(standard[1]);
        QImage image = Grab(window.GetWidget());
        QPainter painter(&image);
        for (const auto& node :
             std::vector<boost::intrusive_ptr<kelui::ui::UI_Node>>{quiet[1], pictures[1], help}) {
            Hover(node);
            PaintIn(painter, node);
        }
        QTest::mouseMove(window.GetWidget(), QPoint(335, 278));
        for (const auto& node : std::vector<boost::intrusive_ptr<kelui::ui::UI_Node>>{
                 standard[3], callToAction[2], pictureText[1], pictures[3], privacy}) {
            node->GetWidget()->setFocus(Qt::TabFocusReason);
            EXPECT_TRUE(node->GetWidget()->hasFocus());
            PaintIn(painter, node);
        }
        return image;
    }

    kelui::utility::OS_ResourceManager icons;
    buttons_test::Window window;
    std::unique_ptr<limner::Limner> measuring;
    std::vector<boost::intrusive_ptr<UI_TextButton>> standard;
    std::vector<boost::intrusive_ptr<UI_TextButton>> callToAction;
    boost::intrusive_ptr<UI_TextButton> commit;
    boost::intrusive_ptr<UI_PictureTextButton> copy;
    std::vector<boost::intrusive_ptr<UI_PictureTextButton>> pictureText;
    std::vector<boost::intrusive_ptr<UI_PictureButton>> pictures;
    std::vector<boost::intrusive_ptr<UI_TextButton>> quiet;
    boost::intrusive_ptr<UI_HotTextURL> terms;
    boost::intrusive_ptr<UI_HotTextURL> privacy;
    boost::intrusive_ptr<UI_HotTextURL> help;
    boost::intrusive_ptr<UI_HotTextURL> reviewLink;
    boost::intrusive_ptr<UI_PictureTextButton> linkCopy;
    boost::intrusive_ptr<UI_HotTextButton> location;
    boost::intrusive_ptr<UI_HotTextButton> disabledLocation;

private:
    float Place(const boost::intrusive_ptr<kelui::ui::UI_Node>& node, float x, float y) {
        const auto size = node->UI_GetRecommendedSize(*measuring);
        window.Add(node, {x, y, size.x, size.y});
        return x + size.x + 8.0f;
    }
    float PlaceLink(const boost::intrusive_ptr<kelui::ui::UI_Node>& node, float x, float y) {
        const auto size = node->UI_GetRecommendedSize(*measuring);
        window.Add(node, {x, y, size.x, 20.0f});
        return x + size.x;
    }
    void Hover(const boost::intrusive_ptr<kelui::ui::UI_Node>& node) {
        QWidget* widget = node->GetWidget();
        QTest::mouseMove(widget, QPoint(6, widget->height() / 2));
        EXPECT_TRUE(QTest::qWaitFor([widget] { return widget->underMouse(); }));
    }
    void PaintIn(QPainter& painter, const boost::intrusive_ptr<kelui::ui::UI_Node>& node) {
        painter.drawImage(node->GetWidget()->geometry().topLeft(), Grab(node->GetWidget()));
    }
};

void Save(const QImage& image, const std::string& name) {
    EXPECT_TRUE(testsupport::SaveScreenshot(image, "buttons", name + ".png"));
    // Twice the size too, pixel for pixel, so details are easy to judge.
    EXPECT_TRUE(testsupport::SaveScreenshot(
        image.scaled(image.size() * 2, Qt::IgnoreAspectRatio, Qt::FastTransformation), "buttons",
        name + "@2x.png"));
}

// What both pictures must show, whatever the theme.
void CheckPanel(Panel& panel, const QImage& image) {
    const QPoint share = panel.callToAction[0]->GetWidget()->geometry().topLeft();
    EXPECT_EQ(image.pixelColor(share + QPoint(5, 12)), QColor(38, 127, 235));
    const QPoint disabled = panel.callToAction[1]->GetWidget()->geometry().topLeft();
    EXPECT_NE(image.pixelColor(disabled + QPoint(5, 12)), QColor(38, 127, 235));
    const QColor accent = kelui::ui::ToQColor(kelui::skins::GetApplicationTheme().accent);
    const QPoint focused = panel.standard[3]->GetWidget()->geometry().topLeft();
    EXPECT_TRUE(Near(image.pixelColor(focused + QPoint(1, 12)), accent));
    const QPoint hovered = panel.standard[1]->GetWidget()->geometry().topLeft();
    const QPoint normal = panel.standard[0]->GetWidget()->geometry().topLeft();
    EXPECT_NE(image.pixelColor(hovered + QPoint(5, 12)), image.pixelColor(normal + QPoint(5, 12)));
    const QString location = kelui::ui::ToQString(panel.location->GetDisplayedText());
    EXPECT_TRUE(location.contains(QChar(0x2026)) && location.endsWith(QStringLiteral("cut")));
}

TEST(ButtonsScreenshot, LightPanel) {
    Panel panel;
    ASSERT_TRUE(panel.window.IsActive());
    const QImage image = panel.Render();
    CheckPanel(panel, image);
    Save(image, "buttons-light");
}

TEST(ButtonsScreenshot, DarkPanel) {
    const testsupport::ScopedDarkPalette dark;
    Panel panel;
    ASSERT_TRUE(panel.window.IsActive());
    ASSERT_TRUE(kelui::skins::GetApplicationTheme().dark);
    const QImage image = panel.Render();
    CheckPanel(panel, image);
    Save(image, "buttons-dark");
}

}  // namespace
