// Renders the tree and the scroll view offscreen, in the light and the dark palette, to PNG
// files under /tmp/keluiqt-shots/tree/ for a person to look at, and checks the pixels that
// matter: the selected row's band and the content's scrolled position.
#include <kelui/controls/UI_MultiColumnTree.h>
#include <kelui/controls/UI_ScrollView.h>

#include <map>
#include <memory>
#include <string>

#include <QApplication>
#include <QImage>
#include <QPalette>
#include <QTreeView>

#include <gtest/gtest.h>

#include <kelui/skins/Theme.h>
#include <kelui/ui/QtConversions.h>
#include <kelui/ui/UI_NodeManager.h>

#include "keluiqt/tree/TreeTestSupport.h"
#include "support/qt/Screenshots.h"

namespace {

using kelcore::geom::RectT;
using kelui::controls::UI_MultiColumnTree;
using kelui::controls::UI_ScrollView;
using kelui::controls::UI_TreeRow;
using kelui::tests::NodeWindow;
using kelui::ui::ToQColor;

kelui::skins::Theme CurrentTheme() {
    return kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier()->GetTheme();
}

// A project browser: folders with a rounded icon, clips with a square one, and a duration column.
struct ClipTree {
    std::map<UI_TreeRow*, std::u16string> names;
    std::map<UI_TreeRow*, std::u16string> durations;
    boost::intrusive_ptr<UI_MultiColumnTree> tree;
    UI_TreeRow* selected = nullptr;

    ClipTree(const ClipTree&) = delete;
    ClipTree& operator=(const ClipTree&) = delete;
    ClipTree() {
        tree = boost::intrusive_ptr<UI_MultiColumnTree>(
            new UI_MultiColumnTree([this](limner::Limner* limner, UI_TreeRow* row, int column,
                                          RectT<float> rect) { Draw(*limner, row, column, rect); },
                                   {}, {}));
        tree->SetColumnWidths({220.0f, 80.0f});
        UI_TreeRow* projects = Add(nullptr, u"Projects", u"");
        UI_TreeRow* spring = Add(projects, u"Spring campaign", u"");
        Add(spring, u"Opening titles.mov", u"0:12");
        selected = Add(spring, u"Interview, take 3.mov", u"4:07");
        Add(spring, u"B-roll harbour.mov", u"1:45");
        Add(projects, u"Archive", u"");
        Add(nullptr, u"Shared with me", u"");
        Add(nullptr, u"Sound effects.wav", u"0:03");
        tree->LayoutAfterAppendRow();
        tree->OpenRow(projects);
        tree->OpenRow(spring);
        tree->SelectRow(selected);
    }

    UI_TreeRow* Add(UI_TreeRow* parent, const char16_t* name, const char16_t* duration) {
        UI_TreeRow* row = tree->CreateAndInsertRow(parent);
        row->SetHeight(24.0f);
        row->SetAccessibleText(name);
        names[row] = name;
        durations[row] = duration;
        return row;
    }

    void Draw(limner::Limner& limner, UI_TreeRow* row, int column, RectT<float> rect) {
        const kelui::skins::Theme theme = CurrentTheme();
        const limner::FontDescription font;
        if (column == 1) {
            limner.DrawText(durations[row], {rect.x, rect.y, rect.width - 8.0f, rect.height}, font,
                            kelui::skins::GetPaletteGrayColor(theme, 8),
                            limner::TextAlignment::Right, limner::TextTruncation::End);
            return;
        }
        const bool folder = names[row].find(u'.') == std::u16string::npos;
        limner::Path icon;
        icon.AddRoundedRect({rect.x + 2.0f, rect.y + 5.0f, 16.0f, 14.0f}, folder ? 3.0f : 1.0f);
        limner.FillPath(icon, folder ? theme.accent : kelui::skins::GetPaletteGrayColor(theme, 8));
        limner.DrawText(names[row], {rect.x + 24.0f, rect.y, rect.width - 26.0f, rect.height}, font,
                        theme.text, limner::TextAlignment::Left, limner::TextTruncation::End);
    }
};

void ShootTree(const std::string& name) {
    ClipTree clips;
    NodeWindow window(*clips.tree, {0.0f, 0.0f, 320.0f, 210.0f});
    ASSERT_TRUE(window.IsExposed());
    auto* view = qobject_cast<QTreeView*>(clips.tree->GetWidget());
    view->setFocus();
    ASSERT_TRUE(kelui::tests::ProcessEventsUntil([view] { return view->hasFocus(); }));

    const QImage image = view->grab().toImage();
    ASSERT_TRUE(testsupport::SaveScreenshot(image, "tree", name));

    // The selected row is one band of the theme's selection gray from edge to edge (inside the
    // style's focus frame).
    const RectT<float> rect = clips.tree->GetRowRect(clips.selected);
    const QColor band = ToQColor(kelui::skins::GetPaletteGrayColor(CurrentTheme(), 4));
    const int y = static_cast<int>(rect.y + rect.height / 2.0f);
    EXPECT_EQ(image.pixelColor(3, y).rgb(), band.rgb());
    EXPECT_EQ(image.pixelColor(image.width() - 4, y).rgb(), band.rgb());
    // Rows off the selection keep the view's background there.
    EXPECT_NE(image.pixelColor(1, 1).rgb(), band.rgb());
}

TEST(TreeScreenshot, ThreeLevelsWithASelectedRowInTheLightPalette) {
    ASSERT_FALSE(CurrentTheme().dark);
    ShootTree("tree-light.png");
}

TEST(TreeScreenshot, ThreeLevelsWithASelectedRowInTheDarkPalette) {
    const testsupport::ScopedDarkPalette dark;
    ASSERT_TRUE(CurrentTheme().dark);
    ShootTree("tree-dark.png");
}

// Content that draws numbered bands, so that the scrolled position shows.
struct BandsNode : kelui::ui::UI_SubView {
    void UI_Draw(limner::Limner& limner) override {
        const kelui::skins::Theme theme = CurrentTheme();
        const RectT<float> bounds = UI_GetLocalRectF();
        for (int band = 0; band * 40.0f < bounds.height; ++band) {
            const RectT<float> rect{0.0f, band * 40.0f, bounds.width, 40.0f};
            limner.FillRect(rect, kelui::skins::GetPaletteGrayColor(theme, band % 2 ? 2 : 0));
            const std::u16string label = u"Band " + QString::number(band + 1).toStdU16String();
            limner.DrawText(label, {12.0f, rect.y, rect.width - 24.0f, 40.0f}, {}, theme.text,
                            limner::TextAlignment::Left, limner::TextTruncation::End);
        }
    }
};

void ShootScrollView(const std::string& name) {
    boost::intrusive_ptr<UI_ScrollView> scroll(new UI_ScrollView);
    boost::intrusive_ptr<BandsNode> bands(new BandsNode);
    scroll->GetContentView()->ChildPushBack(bands);
    bands->UI_SetLocalRectF({0.0f, 0.0f, 300.0f, 400.0f});
    bands->UI_Show(true);
    NodeWindow window(*scroll, {0.0f, 0.0f, 320.0f, 150.0f});
    ASSERT_TRUE(window.IsExposed());
    scroll->SetContentRect({0.0f, 0.0f, scroll->GetViewportSize().x, 400.0f});
    bands->UI_SetLocalRectF({0.0f, 0.0f, scroll->GetViewportSize().x, 400.0f});
    scroll->ScrollTo(60.0f);

    QWidget& shown = window.Window();
    const QImage image =
        testsupport::RenderWidget(shown, 1, shown.palette().color(QPalette::Window));
    ASSERT_TRUE(testsupport::SaveScreenshot(image, "tree", name));

    // Scrolled by 60: the viewport's top shows the second band (gray 2) from 0 to 20.
    const QColor secondBand = ToQColor(kelui::skins::GetPaletteGrayColor(CurrentTheme(), 2));
    EXPECT_EQ(image.pixelColor(200, 10).rgb(), secondBand.rgb());
    EXPECT_NE(image.pixelColor(200, 30).rgb(), secondBand.rgb());
}

TEST(TreeScreenshot, ScrollViewWithTallContentInTheLightPalette) {
    ShootScrollView("scrollview-light.png");
}

TEST(TreeScreenshot, ScrollViewWithTallContentInTheDarkPalette) {
    const testsupport::ScopedDarkPalette dark;
    ShootScrollView("scrollview-dark.png");
}

}  // namespace
