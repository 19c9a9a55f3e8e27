// Text that the user reads but does not edit: a label, a title, a name, a location. The node
// paints it itself through the limner, with the same font that measures it, so the size a
// layout asks for is the size the text is drawn at. One line by default, shortened by the
// truncation when it does not fit; multi-line text wraps at word boundaries from the top.
// Screen readers read it as static text. Held by intrusive pointer like every node; main thread.
//
//   boost::intrusive_ptr<UI_StaticText> title(new UI_StaticText);
//   title->SetFontStyleName("Bold");
//   title->SetText(u"Share for review:");
#pragma once

#include <kelcore/geom/PointT.h>
#include <kelcore/string/String.h>
#include <kelui/controls/UI_TextControlBase.h>

namespace kelui::controls {

class UI_StaticText : public UI_TextControlBase {
public:
    UI_StaticText();
    ~UI_StaticText() override;

    /// Same as SetText(text).
    void SetValue(kelcore::string::string_view text);

    /// Wraps the text over as many lines as the width needs instead of shortening one line.
    void SetMultiLine(bool multiLine);
    bool IsMultiLine() const { return multiLine; }

    /// The height the text takes, in whole pixels: wrapped at the present width when
    /// multi-line (at its one-line width while the node has none), else one line.
    float GetTextHeight() const;
    /// The line as it is drawn at the present width: shortened with "…" by the truncation when
    /// it does not fit. Multi-line text is drawn whole and answers the whole text.
    kelcore::string::string GetDisplayedText() const;

    /// One line: the text's width and line height, rounded up to whole pixels. Multi-line: the
    /// present width (the one-line width while there is none) and the wrapped height there.
    kelcore::geom::PointT<float> UI_GetRecommendedSize(limner::Limner& measuring) override;
    void UI_Draw(limner::Limner& limner) override;

private:
    kelcore::geom::PointT<float> MeasureWith(const limner::Font& font) const;

    bool multiLine = false;
};

}  // namespace kelui::controls
