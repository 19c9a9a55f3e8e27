// What every control that shows text has: the text itself, its font face (family, size, style
// name such as "Bold" or "Italic"), its alignment, how a line that does not fit is shortened
// (SetTextTruncation: 0 clip, 1 start, 2 end, 3 path), and an optional colour that replaces the
// theme's. The text is also the control's accessible name. Main thread.
//
//   title->SetFontStyleName("Bold");
//   title->SetText(Localizer::Get().GetString("$$$/Corvane/area/Title=Share for review:"));
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <kelcore/string/String.h>
#include <kelui/controls/UI_ControlView.h>
#include <kelui/limner/FontDescription.h>
#include <kelui/limner/TextAlignment.h>
#include <kelui/limner/TextTruncation.h>

namespace kelui::controls {

class UI_TextControlBase : public UI_ControlView {
public:
    /// Sets the text; `invalidate` false leaves the redraw to the caller's next layout.
    virtual void SetText(kelcore::string::string_view text, bool invalidate = true);
    const kelcore::string::string& GetText() const { return text; }

    void SetFontStyleName(std::string styleName);
    const std::string& GetFontStyleName() const { return font.styleName; }
    /// An empty name is the platform's user interface font.
    void SetFontName(std::string family);
    const std::string& GetFontName() const { return font.family; }
    /// In pixels; 0 is the platform's default size.
    void SetFontSize(float pixelSize);
    float GetFontSize() const { return font.pixelSize; }
    const limner::FontDescription& GetFontDescription() const { return font; }

    void SetTextTruncation(std::uint32_t truncation);
    limner::TextTruncation GetTextTruncation() const { return truncation; }
    void SetTextAlignment(limner::TextAlignment alignment);
    limner::TextAlignment GetTextAlignment() const { return alignment; }

    /// Draws the text in `color` instead of the theme's; nullopt goes back to the theme's.
    void SetTextColor(std::optional<limner::ColorRGBA> color);
    const std::optional<limner::ColorRGBA>& GetTextColor() const { return textColor; }

protected:
    UI_TextControlBase() = default;
    explicit UI_TextControlBase(QWidget* widget) : UI_ControlView(widget) {}

    /// The text, font or look changed: the control updates its widget. The base sets the
    /// accessible name and the widget's font, and redraws.
    virtual void TextFaceChanged();

private:
    kelcore::string::string text;
    limner::FontDescription font;
    limner::TextTruncation truncation = limner::TextTruncation::None;
    limner::TextAlignment alignment = limner::TextAlignment::Left;
    std::optional<limner::ColorRGBA> textColor;
};

}  // namespace kelui::controls
