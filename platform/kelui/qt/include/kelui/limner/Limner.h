// What a node draws and measures with. A limner that paints draws into a node's widget through
// QPainter; a measuring limner only answers sizes (it is what UI_GetRecommendedSize gets). Both
// work in the node's own coordinates: (0, 0) is the top left of its float rectangle, exactly,
// whatever pixel the widget was rounded to. Made per paint or per query; main thread.
//
//   void MyView::UI_Draw(limner::Limner& limner) {
//       limner.FillRect({0, 0, width, height}, kelui::skins::GetPaletteGrayColor(theme, 1));
//   }
#pragma once

#include <memory>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <kelcore/string/String.h>
#include <kelui/limner/ColorRGBA.h>
#include <kelui/limner/Font.h>
#include <kelui/limner/FontDescription.h>
#include <kelui/limner/ImageInterface.h>
#include <kelui/limner/Path.h>
#include <kelui/limner/Pen.h>
#include <kelui/limner/TextAlignment.h>
#include <kelui/limner/TextTruncation.h>

namespace limner {

class Limner {
public:
    virtual ~Limner() = default;

    /// True for a limner that only measures: its drawing operations do nothing.
    virtual bool IsMeasuring() const = 0;
    /// Pixels per layout unit of the surface drawn on (2 on a double-resolution screen).
    virtual float GetDevicePixelRatio() const = 0;

    /// The font of `description`, for measuring and for DrawText.
    virtual std::shared_ptr<Font> GetFont(const FontDescription& description) const = 0;
    /// Shorthand for GetFont(description)->MeasureText(text).
    kelcore::geom::PointT<float> MeasureText(kelcore::string::string_view text,
                                             const FontDescription& description) const {
        return GetFont(description)->MeasureText(text);
    }

    virtual void Save() = 0;
    virtual void Restore() = 0;
    virtual void Translate(float dx, float dy) = 0;
    /// Limits drawing to `rect` (intersected with the current clip) until Restore.
    virtual void ClipRect(const kelcore::geom::RectT<float>& rect) = 0;

    virtual void FillRect(const kelcore::geom::RectT<float>& rect, const ColorRGBA& color) = 0;
    virtual void StrokeRect(const kelcore::geom::RectT<float>& rect, const Pen& pen) = 0;
    virtual void FillPath(const Path& path, const ColorRGBA& color) = 0;
    virtual void StrokePath(const Path& path, const Pen& pen) = 0;
    virtual void DrawLine(kelcore::geom::PointT<float> from, kelcore::geom::PointT<float> to,
                          const Pen& pen) = 0;

    /// One line of `text` in `rect`, vertically centred, shortened by `truncation` when it does
    /// not fit.
    virtual void DrawText(kelcore::string::string_view text,
                          const kelcore::geom::RectT<float>& rect, const FontDescription& font,
                          const ColorRGBA& color, TextAlignment alignment,
                          TextTruncation truncation) = 0;
    /// `text` wrapped at word boundaries into `rect`, from its top.
    virtual void DrawWrappedText(kelcore::string::string_view text,
                                 const kelcore::geom::RectT<float>& rect,
                                 const FontDescription& font, const ColorRGBA& color,
                                 TextAlignment alignment) = 0;
    /// `image` scaled into `rect`, at `opacity` from 0 to 1.
    virtual void DrawImage(const ImageInterface& image, const kelcore::geom::RectT<float>& rect,
                           float opacity = 1.0f) = 0;
};

}  // namespace limner
