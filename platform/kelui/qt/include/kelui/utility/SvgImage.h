// An image drawn from SVG artwork, rendered at the device pixel ratio of whatever it is painted
// on, so it is crisp at 1 and at 2. Artwork that uses `currentColor` is monochrome and takes the
// theme's text colour (or the painter's disabled colour); other colours stay. Immutable once
// made; painting is main-thread only.
//
//   boost::intrusive_ptr<SvgImage> icon = SvgImage::FromFile("icons/S_Copy_16.svg");
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include <boost/intrusive_ptr.hpp>

#include <kelui/limner/PaintableImage.h>

namespace kelui::utility {

class SvgImage final : public limner::PaintableImage {
public:
    /// The artwork of `file`; null when it cannot be read or is not valid SVG.
    static boost::intrusive_ptr<SvgImage> FromFile(const std::filesystem::path& file);
    /// The artwork in `svg`; null when it is not valid SVG.
    static boost::intrusive_ptr<SvgImage> FromData(std::string svg);

    float GetWidth() const override { return width; }
    float GetHeight() const override { return height; }
    void Paint(QPainter& painter, const QRectF& target,
               const kelui::skins::Theme& theme) const override;
    /// Whether the artwork takes the theme's colour.
    bool IsMonochrome() const { return monochrome; }

    ~SvgImage() override;

private:
    SvgImage(std::string svg, float width, float height);

    std::string svg;
    float width;
    float height;
    bool monochrome;
    struct Cache;
    std::unique_ptr<Cache> cache;
};

}  // namespace kelui::utility
