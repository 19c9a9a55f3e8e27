// A button drawn as a link: its text alone, in the theme's link colour, underlined while the
// pointer is over it, with no box (the panel's location button, which shows a folder path and
// opens the location picker). Only the text is clickable, so a wide rectangle with a short text
// does not react beside it. Truncation applies (path truncation keeps both ends of a path).
// Owned by its parent node; main thread.
//
//   boost::intrusive_ptr<UI_HotTextButton> location(new UI_HotTextButton);
//   location->SetTextTruncation(3);
//   location->SetText(u"Projects/Spring campaign/Review");
#pragma once

#include <kelui/controls/UI_Button.h>

namespace kelui::controls {

class UI_HotTextButton : public UI_Button {
public:
    UI_HotTextButton();

    /// The text as drawn at the present width: shortened with an ellipsis, per the truncation,
    /// when it does not fit. An owner may show the whole text as a tooltip when they differ.
    kelcore::string::string GetDisplayedText() const;

    /// The text on one line, rounded up to whole pixels, and 2 pixels on each side for the focus
    /// ring: placed 2 pixels left of a column, its text lines up with the column's.
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;

protected:
    /// Draws no box: only the keyboard focus ring, around the text.
    void DrawChrome(limner::Limner& limner, const DrawState& state) override;
    void DrawContent(limner::Limner& limner, const DrawState& state,
                     const limner::ColorRGBA& textColor) override;
    bool IsOnClickablePart(kelcore::geom::PointT<float> point) override;
    /// The custom text colour, the control's, or the theme's link colour; disabled: the theme's
    /// disabled text colour.
    limner::ColorRGBA GetContentColor(const DrawState& state) const override;
};

}  // namespace kelui::controls
