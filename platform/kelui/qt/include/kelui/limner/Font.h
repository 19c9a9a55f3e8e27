// A font that can measure text: the sizes that layouts are computed from. Made by a drawing
// supplier (WidgetDrawingSupplier::GetFont) and held by shared pointer; main thread.
//
//   auto font = supplier->GetFont({"", 0.0f, "Bold"});
//   kelcore::geom::PointT<float> size = font->MeasureText(u"Share for review:");
#pragma once

#include <kelcore/geom/PointT.h>
#include <kelcore/string/String.h>
#include <kelui/limner/FontDescription.h>

namespace limner {

class Font {
public:
    virtual ~Font() = default;

    virtual const FontDescription& GetDescription() const = 0;
    /// Width and height of `text` on one line (height is the line height, even for "").
    virtual kelcore::geom::PointT<float> MeasureText(kelcore::string::string_view text) const = 0;
    /// Height of `text` wrapped at word boundaries into lines no wider than `width`, at most
    /// `maxLines` lines (-1: no limit). Empty text measures one empty line.
    virtual float GetWrappedTextHeight(kelcore::string::string_view text, float width,
                                       int maxLines) const = 0;
    /// Distance from one baseline to the next.
    virtual float GetLineHeight() const = 0;
};

}  // namespace limner
