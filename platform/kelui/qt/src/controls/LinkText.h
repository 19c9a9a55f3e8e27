// Text drawn as a link, shared by UI_HotTextButton and UI_HotTextURL: where the (shortened) text
// lies inside a rectangle, so that drawing, the underline, the focus ring and the clickable area
// all agree. Private to the toolkit; main thread.
#pragma once

#include <QString>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <kelui/limner/Limner.h>

namespace kelui::controls::detail {

struct LinkTextLayout {
    /// The text as drawn: shortened with an ellipsis when it does not fit.
    QString shown;
    /// Where the drawn text lies, in the coordinates of the rectangle it was laid out in.
    kelcore::geom::RectT<float> textRect{};
    /// The vertical position of the underline's centre.
    float underlineY = 0.0f;
    float underlineThickness = 1.0f;
};

/// Room kept on each side of a link's text: the focus ring's, and what lines the text of a link
/// placed 2 pixels left of a column up with the column's static texts.
inline constexpr float kLinkPadding = 2.0f;

/// Lays `text` out on one line in `rect`, less kLinkPadding on each side, as
/// limner::Limner::DrawText does: vertically centred, placed by `alignment`, shortened by
/// `truncation` to the width left.
LinkTextLayout LayoutLinkText(const QString& text, const limner::FontDescription& font,
                              const kelcore::geom::RectT<float>& rect,
                              limner::TextAlignment alignment, limner::TextTruncation truncation);

/// Draws `layout` in `color`, underlined when `underline`.
void DrawLinkText(limner::Limner& limner, const LinkTextLayout& layout,
                  const limner::FontDescription& font, const limner::ColorRGBA& color,
                  bool underline);

/// Draws the keyboard focus ring of a link around its text, kept inside `bounds`.
void DrawLinkFocusRing(limner::Limner& limner, const LinkTextLayout& layout,
                       const kelcore::geom::RectT<float>& bounds, const limner::ColorRGBA& color);

/// Whether `point` is on the clickable part of a link: its text, with a little slack at the ends.
bool IsOnLinkText(const LinkTextLayout& layout, kelcore::geom::PointT<float> point);

/// The size a link asks for: its whole text on one line, rounded up to whole pixels, and
/// kLinkPadding on each side.
kelcore::geom::PointT<float> GetLinkRecommendedSize(limner::Limner& measuring,
                                                    kelcore::string::string_view text,
                                                    const limner::FontDescription& font);

}  // namespace kelui::controls::detail
