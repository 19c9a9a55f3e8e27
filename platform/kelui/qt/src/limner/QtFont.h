// A limner::Font over QFont and QFontMetricsF. Private to the toolkit; main thread.
#pragma once

#include <QFont>
#include <QFontMetricsF>

#include <kelui/limner/Font.h>

namespace limner {

class QtFont final : public Font {
public:
    explicit QtFont(const FontDescription& description);

    const FontDescription& GetDescription() const override { return description; }
    kelcore::geom::PointT<float> MeasureText(kelcore::string::string_view text) const override;
    float GetWrappedTextHeight(kelcore::string::string_view text, float width,
                               int maxLines) const override;
    float GetLineHeight() const override;

    const QFont& GetQFont() const { return font; }

    /// The QFont for `description`: the application font with the family, pixel size, weight
    /// and slant that the description asks for.
    static QFont MakeQFont(const FontDescription& description);

private:
    FontDescription description;
    QFont font;
    QFontMetricsF metrics;
};

}  // namespace limner
