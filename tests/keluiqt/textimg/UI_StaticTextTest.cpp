#include <kelui/controls/UI_StaticText.h>

#include <cmath>

#include <QAccessible>
#include <QPainter>
#include <QWidget>

#include <gtest/gtest.h>

#include <kelui/skins/Theme.h>
#include <kelui/ui/QtConversions.h>
#include <kelui/ui/UI_NodeManager.h>

#include "keluiqt/textimg/TextImgTestSupport.h"

namespace {

using kelcore::geom::PointT;
using kelui::controls::UI_StaticText;
using kelui::ui::ToQString;
using textimg_test::Grab;
using textimg_test::HasPixel;
using textimg_test::Make;

constexpr char16_t kEllipsis = u'\u2026';
const kelcore::string::string kTitle = u"Quarterly review of the launch film, final cut with grade";
const kelcore::string::string kLocation = u"/Projects/Launch film/Reviews/Week 12/final_cut_v7.mov";
const kelcore::string::string kParagraph =
    u"The sequence is rendered, uploaded in parts and shared for review with a link that "
    u"plays in any browser.";

std::shared_ptr<limner::Font> DefaultFont(const limner::FontDescription& face = {}) {
    return kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier()->GetFont(face);
}

PointT<float> Recommended(UI_StaticText& text) {
    const auto measuring =
        kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier()->GetMeasuringLimner();
    return text.UI_GetRecommendedSize(*measuring);
}

boost::intrusive_ptr<UI_StaticText> MakeText(const kelcore::string::string& content, float width,
                                             float height = 20.0f) {
    auto text = Make<UI_StaticText>();
    text->SetText(content);
    text->UI_SetLocalRectF({0.0f, 0.0f, width, height});
    return text;
}

/// `line` drawn as a plain Qt painter draws it in the text's widget and colour, on the
/// background that grabbing the widget gives.
QImage DrawnPlainly(const UI_StaticText& text, const QString& line) {
    QWidget& widget = *text.GetWidget();
    QImage image(widget.size(), QImage::Format_ARGB32);
    image.fill(widget.palette().color(widget.backgroundRole()));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setRenderHint(QPainter::TextAntialiasing, true);
    painter.setFont(widget.font());
    painter.setPen(kelui::ui::ToQColor(kelui::skins::GetApplicationTheme().text));
    painter.drawText(QRectF(widget.rect()), Qt::AlignLeft | Qt::AlignVCenter, line);
    painter.end();
    return image;
}

TEST(UI_StaticText, ShowsALineThatFitsWhole) {
    auto text = MakeText(u"Share for review:", 300.0f);
    text->SetTextTruncation(2);
    EXPECT_EQ(text->GetDisplayedText(), u"Share for review:");
}

TEST(UI_StaticText, EndTruncationKeepsTheStartAndEndsWithAnEllipsis) {
    auto text = MakeText(kTitle, 120.0f);
    text->SetTextTruncation(2);

    const kelcore::string::string shown = text->GetDisplayedText();

    ASSERT_GE(shown.size(), 2u);
    EXPECT_LT(shown.size(), kTitle.size());
    EXPECT_EQ(shown.back(), kEllipsis);
    EXPECT_TRUE(kTitle.starts_with(shown.substr(0, shown.size() - 1)));
    EXPECT_LE(DefaultFont()->MeasureText(shown).x, 120.0f);
}

TEST(UI_StaticText, PathTruncationKeepsBothEndsAndCutsTheMiddle) {
    auto text = MakeText(kLocation, 170.0f);
    text->SetTextTruncation(3);

    const kelcore::string::string shown = text->GetDisplayedText();

    EXPECT_LT(shown.size(), kLocation.size());
    const auto cut = shown.find(kEllipsis);
    ASSERT_NE(cut, kelcore::string::string::npos);
    ASSERT_GT(cut, 0u);
    ASSERT_LT(cut, shown.size() - 1);
    EXPECT_TRUE(kLocation.starts_with(shown.substr(0, cut)));
    EXPECT_TRUE(kLocation.ends_with(shown.substr(cut + 1)));
    EXPECT_LE(DefaultFont()->MeasureText(shown).x, 170.0f);
}

TEST(UI_StaticText, PaintsExactlyTheShortenedLine) {
    auto text = MakeText(kTitle, 120.0f);
    text->SetTextTruncation(2);

    const QImage painted = Grab(*text);

    EXPECT_EQ(painted, DrawnPlainly(*text, ToQString(text->GetDisplayedText())));
    EXPECT_NE(painted, DrawnPlainly(*text, ToQString(kTitle)));
}

TEST(UI_StaticText, PaintsThePathShortenedInTheMiddle) {
    auto text = MakeText(kLocation, 170.0f);
    text->SetTextTruncation(3);
    EXPECT_EQ(Grab(*text), DrawnPlainly(*text, ToQString(text->GetDisplayedText())));
}

TEST(UI_StaticText, RecommendsTheMeasuredLineRoundedUpToWholePixels) {
    auto text = MakeText(u"Share for review:", 10.0f);
    text->SetFontStyleName("Bold");
    const PointT<float> measured =
        DefaultFont({"", 0.0f, "Bold"})->MeasureText(u"Share for review:");

    const PointT<float> size = Recommended(*text);

    EXPECT_EQ(size.x, std::ceil(measured.x));
    EXPECT_EQ(size.y, std::ceil(measured.y));
    EXPECT_GT(size.x, 10.0f);
}

TEST(UI_StaticText, ItalicAndBoldFacesMeasureDifferently) {
    auto plain = MakeText(u"Launch film", 0.0f);
    auto bold = MakeText(u"Launch film", 0.0f);
    bold->SetFontStyleName("Bold");
    EXPECT_GT(Recommended(*bold).x, Recommended(*plain).x);
    EXPECT_TRUE(bold->GetWidget()->font().bold());
    auto italic = MakeText(u"Launch film", 0.0f);
    italic->SetFontStyleName("Italic");
    EXPECT_TRUE(italic->GetWidget()->font().italic());
}

TEST(UI_StaticText, EmptyTextMeasuresOneLineHighNotZero) {
    const auto font = DefaultFont();
    EXPECT_GT(font->MeasureText(u"").y, 0.0f);
    EXPECT_EQ(font->MeasureText(u"").y, font->MeasureText(u"Ag").y);

    auto text = MakeText(u"", 0.0f);
    const PointT<float> size = Recommended(*text);
    EXPECT_EQ(size.x, 0.0f);
    EXPECT_EQ(size.y, std::ceil(font->MeasureText(u"Ag").y));
}

TEST(UI_StaticText, SingleLineTextHeightIsOneLineAtAnyWidth) {
    auto text = MakeText(kParagraph, 60.0f);
    EXPECT_EQ(text->GetTextHeight(), std::ceil(DefaultFont()->MeasureText(kParagraph).y));
}

TEST(UI_StaticText, MultiLineHeightGrowsAsTheWidthShrinks) {
    auto text = MakeText(kParagraph, 400.0f);
    text->SetMultiLine(true);
    ASSERT_TRUE(text->IsMultiLine());
    const float wide = text->GetTextHeight();
    text->UI_SetLocalRectF({0.0f, 0.0f, 160.0f, 20.0f});
    const float middle = text->GetTextHeight();
    text->UI_SetLocalRectF({0.0f, 0.0f, 80.0f, 20.0f});
    const float narrow = text->GetTextHeight();

    EXPECT_GT(middle, wide);
    EXPECT_GT(narrow, middle);
    EXPECT_EQ(narrow, std::ceil(DefaultFont()->GetWrappedTextHeight(kParagraph, 80.0f, -1)));
}

TEST(UI_StaticText, MultiLineRecommendsThePresentWidthAndTheWrappedHeight) {
    auto text = MakeText(kParagraph, 160.0f);
    text->SetMultiLine(true);
    const PointT<float> size = Recommended(*text);
    EXPECT_EQ(size.x, 160.0f);
    EXPECT_EQ(size.y, std::ceil(DefaultFont()->GetWrappedTextHeight(kParagraph, 160.0f, -1)));
    EXPECT_GT(size.y, std::ceil(DefaultFont()->MeasureText(kParagraph).y));
}

TEST(UI_StaticText, MultiLineWithoutAWidthRecommendsItsOneLineWidth) {
    auto text = MakeText(kParagraph, 0.0f);
    text->SetMultiLine(true);
    const float oneLine = std::ceil(DefaultFont()->MeasureText(kParagraph).x);
    const PointT<float> size = Recommended(*text);
    EXPECT_EQ(size.x, oneLine);
    EXPECT_EQ(size.y, std::ceil(DefaultFont()->GetWrappedTextHeight(kParagraph, oneLine, -1)));
}

TEST(UI_StaticText, MultiLineTextIsPaintedOnSeveralLines) {
    auto text = MakeText(kParagraph, 120.0f, 200.0f);
    text->SetMultiLine(true);
    const QImage painted = Grab(*text);
    const QRgb background = painted.pixel(painted.width() - 1, painted.height() - 1);
    int lastInkRow = -1;
    for (int y = 0; y < painted.height(); ++y) {
        for (int x = 0; x < painted.width(); ++x) {
            if (painted.pixel(x, y) != background) {
                lastInkRow = y;
            }
        }
    }
    // Three or more lines at this width: ink well below the first line.
    EXPECT_GT(lastInkRow, static_cast<int>(2.0f * DefaultFont()->GetLineHeight()));
    EXPECT_EQ(text->GetDisplayedText(), kParagraph);
}

TEST(UI_StaticText, SetValueSetsTheTextAndTheAccessibleName) {
    auto text = Make<UI_StaticText>();
    text->SetValue(u"Share for review:");
    EXPECT_EQ(text->GetText(), u"Share for review:");
    EXPECT_EQ(text->GetWidget()->accessibleName(), QStringLiteral("Share for review:"));
}

TEST(UI_StaticText, ScreenReadersReadItAsStaticTextNamedByItsText) {
    auto text = Make<UI_StaticText>();
    text->SetText(u"Launch film");
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(text->GetWidget());
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::StaticText);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Launch film"));

    text->SetValue(u"Launch film v2");
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Launch film v2"));
}

TEST(UI_StaticText, PaintsInTheThemeTextColour) {
    auto text = MakeText(u"MMMM", 200.0f, 60.0f);
    text->SetFontSize(40.0f);
    text->SetFontStyleName("Bold");
    const auto theme = kelui::skins::GetApplicationTheme();
    EXPECT_TRUE(HasPixel(Grab(*text), kelui::ui::ToQColor(theme.text)));
}

TEST(UI_StaticText, PaintsInItsOwnColourAndInTheDisabledColourWhenDisabled) {
    auto text = MakeText(u"MMMM", 200.0f, 60.0f);
    text->SetFontSize(40.0f);
    text->SetFontStyleName("Bold");
    const limner::ColorRGBA red{1.0f, 0.0f, 0.0f, 1.0f};
    text->SetTextColor(red);
    EXPECT_TRUE(HasPixel(Grab(*text), Qt::red));

    text->SetDisabled(true);
    const QImage disabled = Grab(*text);
    EXPECT_FALSE(HasPixel(disabled, Qt::red));
    EXPECT_TRUE(
        HasPixel(disabled, kelui::ui::ToQColor(kelui::skins::GetApplicationTheme().disabledText)));
}

TEST(UI_StaticText, FollowsTheDarkTheme) {
    const textimg_test::ScopedDarkPalette dark;
    auto text = MakeText(u"MMMM", 200.0f, 60.0f);
    text->SetFontSize(40.0f);
    text->SetFontStyleName("Bold");
    const auto theme = kelui::skins::GetApplicationTheme();
    ASSERT_TRUE(theme.dark);
    EXPECT_TRUE(HasPixel(Grab(*text), kelui::ui::ToQColor(theme.text)));
}

}  // namespace
