// The limners over Qt: PainterLimner draws through a QPainter, MeasuringLimner only measures
// (its drawing operations do nothing). Private to the toolkit; main thread.
#pragma once

#include <QPainter>

#include <kelui/limner/Limner.h>
#include <kelui/skins/Theme.h>

namespace limner {

class MeasuringLimner : public Limner {
public:
    bool IsMeasuring() const override { return true; }
    float GetDevicePixelRatio() const override { return 1.0f; }
    std::shared_ptr<Font> GetFont(const FontDescription& description) const override;

    void Save() override {}
    void Restore() override {}
    void Translate(float, float) override {}
    void ClipRect(const kelcore::geom::RectT<float>&) override {}
    void FillRect(const kelcore::geom::RectT<float>&, const ColorRGBA&) override {}
    void StrokeRect(const kelcore::geom::RectT<float>&, const Pen&) override {}
    void FillPath(const Path&, const ColorRGBA&) override {}
    void StrokePath(const Path&, const Pen&) override {}
    void DrawLine(kelcore::geom::PointT<float>, kelcore::geom::PointT<float>, const Pen&) override {
    }
    void DrawText(kelcore::string::string_view, const kelcore::geom::RectT<float>&,
                  const FontDescription&, const ColorRGBA&, TextAlignment,
                  TextTruncation) override {}
    void DrawWrappedText(kelcore::string::string_view, const kelcore::geom::RectT<float>&,
                         const FontDescription&, const ColorRGBA&, TextAlignment) override {}
    void DrawImage(const ImageInterface&, const kelcore::geom::RectT<float>&, float) override {}
};

class PainterLimner final : public MeasuringLimner {
public:
    PainterLimner(QPainter& painter, kelui::skins::Theme theme);

    bool IsMeasuring() const override { return false; }
    float GetDevicePixelRatio() const override;

    void Save() override { painter.save(); }
    void Restore() override { painter.restore(); }
    void Translate(float dx, float dy) override { painter.translate(dx, dy); }
    void ClipRect(const kelcore::geom::RectT<float>& rect) override;
    void FillRect(const kelcore::geom::RectT<float>& rect, const ColorRGBA& color) override;
    void StrokeRect(const kelcore::geom::RectT<float>& rect, const Pen& pen) override;
    void FillPath(const Path& path, const ColorRGBA& color) override;
    void StrokePath(const Path& path, const Pen& pen) override;
    void DrawLine(kelcore::geom::PointT<float> from, kelcore::geom::PointT<float> to,
                  const Pen& pen) override;
    void DrawText(kelcore::string::string_view text, const kelcore::geom::RectT<float>& rect,
                  const FontDescription& font, const ColorRGBA& color, TextAlignment alignment,
                  TextTruncation truncation) override;
    void DrawWrappedText(kelcore::string::string_view text, const kelcore::geom::RectT<float>& rect,
                         const FontDescription& font, const ColorRGBA& color,
                         TextAlignment alignment) override;
    void DrawImage(const ImageInterface& image, const kelcore::geom::RectT<float>& rect,
                   float opacity) override;

private:
    QPainter& painter;
    kelui::skins::Theme theme;
};

/// The QPainterPath of `path`.
QPainterPath ToQPainterPath(const Path& path);
/// `text` shortened with an ellipsis by `truncation` to fit `width` with `metrics`.
QString TruncateText(const QString& text, const QFontMetricsF& metrics, float width,
                     TextTruncation truncation);

}  // namespace limner
