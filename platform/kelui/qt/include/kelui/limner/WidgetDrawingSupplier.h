// The toolkit's drawing supplier: the theme, fonts, paths and measuring limners that nodes draw
// and lay out with. A window, popup container or dialog holds one for the nodes inside it
// (UI_Node::UI_GetDrawSupplier finds it through the parents), and UI_NodeManager keeps a
// default for nodes outside any window. Shared by everything that draws with it; main thread.
//
//   auto supplier = node->UI_GetDrawSupplier();
//   auto measuring = supplier->GetMeasuringLimner();
//   auto size = node->UI_GetRecommendedSize(*measuring);
#pragma once

#include <memory>

#include <kelui/limner/DrawingSupplier.h>
#include <kelui/limner/Font.h>
#include <kelui/limner/Limner.h>
#include <kelui/limner/Path.h>
#include <kelui/skins/Theme.h>

namespace limner {

class WidgetDrawingSupplier final : public DrawingSupplier {
public:
    /// A supplier whose theme follows the application's palette, read at each GetTheme.
    WidgetDrawingSupplier();
    /// A supplier with a fixed theme (a window that keeps its own look, tests of both themes).
    explicit WidgetDrawingSupplier(kelui::skins::Theme theme);
    ~WidgetDrawingSupplier() override;

    /// A limner that only measures, over QFontMetricsF.
    std::unique_ptr<Limner> GetMeasuringLimner() const;
    std::shared_ptr<Font> GetFont(const FontDescription& description) const;
    Path CreatePath() const { return Path{}; }
    kelui::skins::Theme GetTheme() const;

private:
    bool followsApplication = true;
    kelui::skins::Theme theme;
};

}  // namespace limner
