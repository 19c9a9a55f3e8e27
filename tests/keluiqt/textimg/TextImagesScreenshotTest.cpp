// Renders a column of the controls of this folder, light and dark, at ratio 1 and 2, to PNG
// files under /tmp/keluiqt-shots/textimg/ for people to look at.
#include <algorithm>
#include <cmath>
#include <vector>

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

#include <kelui/controls/UI_Divider.h>
#include <kelui/controls/UI_ProgressBar.h>
#include <kelui/controls/UI_StaticImage.h>
#include <kelui/controls/UI_StaticText.h>
#include <kelui/ui/UI_NodeManager.h>
#include <kelui/ui/UI_SubView.h>
#include <kelui/utility/OS_ResourceManager.h>

#include "keluiqt/textimg/TextImgTestSupport.h"
#include "support/qt/Screenshots.h"

namespace {

using kelui::controls::UI_Divider;
using kelui::controls::UI_ProgressBar;
using kelui::controls::UI_StaticImage;
using kelui::controls::UI_StaticText;
using textimg_test::Make;

constexpr float kMargin = 15.0f;
constexpr float kWidth = 340.0f;
constexpr float kInner = kWidth - 2.0f * kMargin;

class Column {
public:
    Column() : root(Make<kelui::ui::UI_SubView>()) {}

    void AddText(const kelcore::string::string& text, const std::string& style,
                 std::uint32_t truncation, bool multiLine) {
        auto node = Make<UI_StaticText>();
        node->SetFontStyleName(style);
        node->SetTextTruncation(truncation);
        node->SetMultiLine(multiLine);
        node->SetText(text);
        Place(node, multiLine ? kInner : std::min(kInner, RecommendedOf(*node).x), 0.0f);
        // Multi-line text knows its height once it has its width.
        node->UI_SetLocalRectF({kMargin, y, kInner, RecommendedOf(*node).y});
        y += node->UI_GetLocalRectF().height + 6.0f;
    }

    void AddIcons(kelui::utility::OS_ResourceManager& resources,
                  const std::vector<std::string>& names) {
        float x = kMargin;
        float rowHeight = 0.0f;
        for (const std::string& name : names) {
            auto icon = Make<UI_StaticImage>();
            icon->SetImage(resources.GetImage(name));
            const auto rect = icon->GetImageRect();
            if (x + static_cast<float>(rect.width) > kMargin + kInner) {
                x = kMargin;
                y += rowHeight + 8.0f;
                rowHeight = 0.0f;
            }
            Attach(icon);
            icon->UI_SetLocalRectF(
                {x, y, static_cast<float>(rect.width), static_cast<float>(rect.height)});
            x += static_cast<float>(rect.width) + 10.0f;
            rowHeight = std::max(rowHeight, static_cast<float>(rect.height));
        }
        y += rowHeight + 10.0f;
    }

    void AddDivider() {
        auto divider = Make<UI_Divider>();
        Attach(divider);
        divider->UI_SetLocalRectF({kMargin, y, kInner, 9.0f});
        y += 15.0f;
    }

    void AddProgress(bool known) {
        auto progress = Make<UI_ProgressBar>();
        Attach(progress);
        progress->UI_SetLocalRectF({kMargin, y, kInner, 8.0f});
        if (known) {
            progress->SetProgress(40, 100);
        } else {
            progress->SetValueUnknown();
        }
        y += 18.0f;
    }

    const boost::intrusive_ptr<kelui::ui::UI_SubView>& Finish() {
        root->UI_SetLocalRectF({0.0f, 0.0f, kWidth, std::ceil(y + kMargin - 6.0f)});
        return root;
    }

private:
    static kelcore::geom::PointT<float> RecommendedOf(kelui::ui::UI_Node& node) {
        const auto measuring =
            kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier()->GetMeasuringLimner();
        return node.UI_GetRecommendedSize(*measuring);
    }

    void Attach(const boost::intrusive_ptr<kelui::ui::UI_Node>& node) {
        root->ChildPushBack(node);
        node->UI_Show(true);
    }

    void Place(const boost::intrusive_ptr<kelui::ui::UI_Node>& node, float width, float height) {
        Attach(node);
        node->UI_SetLocalRectF({kMargin, y, width, height});
    }

    boost::intrusive_ptr<kelui::ui::UI_SubView> root;
    float y = kMargin;
};

std::vector<std::string> ArtworkNames() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(textimg_test::ArtworkFolder())) {
        if (entry.path().extension() == ".svg") {
            names.push_back(entry.path().stem().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// Whether `image` shows more than one colour.
bool ShowsSomething(const QImage& image) {
    const QRgb first = image.pixel(0, 0);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != first) {
                return true;
            }
        }
    }
    return false;
}

void RenderColumn(const std::string& look) {
    kelui::utility::OS_ResourceManager resources(textimg_test::ArtworkFolder());
    const std::vector<std::string> names = ArtworkNames();
    ASSERT_FALSE(names.empty());

    Column column;
    column.AddText(u"Share for review:", "Regular", 0, false);
    column.AddText(u"Launch film \u2014 final cut", "Bold", 0, false);
    column.AddText(u"Rendered two minutes ago", "Italic", 0, false);
    column.AddText(u"Quarterly review of the launch film, final cut with colour grade and mix",
                   "Regular", 2, false);
    column.AddText(u"/Projects/Launch film/Reviews/Week 12/Deliverables/final_cut_v7.mov",
                   "Regular", 3, false);
    column.AddText(
        u"The sequence is rendered, uploaded in parts and shared for review with a "
        u"link that plays in any browser, so reviewers need nothing installed.",
        "Regular", 0, true);
    column.AddIcons(resources, names);
    column.AddDivider();
    column.AddProgress(true);
    column.AddProgress(false);
    const auto& root = column.Finish();

    const QImage single = root->GetWidget()->grab().toImage();
    ASSERT_TRUE(ShowsSomething(single));
    EXPECT_TRUE(testsupport::SaveScreenshot(single, "textimg", look + "-1x.png"));

    const QImage doubled = testsupport::RenderWidget(*root->GetWidget(), 2);
    ASSERT_TRUE(ShowsSomething(doubled));
    EXPECT_TRUE(testsupport::SaveScreenshot(doubled, "textimg", look + "-2x.png"));
}

TEST(TextImagesScreenshot, LightColumnAtRatioOneAndTwo) {
    RenderColumn("light");
}

TEST(TextImagesScreenshot, DarkColumnAtRatioOneAndTwo) {
    const testsupport::ScopedDarkPalette dark;
    RenderColumn("dark");
}

}  // namespace
