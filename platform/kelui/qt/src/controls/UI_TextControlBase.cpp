#include <kelui/controls/UI_TextControlBase.h>

#include <QWidget>

#include "limner/QtFont.h"

namespace kelui::controls {

void UI_TextControlBase::SetText(kelcore::string::string_view newText, bool invalidate) {
    text = kelcore::string::string(newText);
    SetAccessibleName(text);
    if (invalidate) {
        TextFaceChanged();
    }
}

void UI_TextControlBase::SetFontStyleName(std::string styleName) {
    font.styleName = std::move(styleName);
    TextFaceChanged();
}

void UI_TextControlBase::SetFontName(std::string family) {
    font.family = std::move(family);
    TextFaceChanged();
}

void UI_TextControlBase::SetFontSize(float pixelSize) {
    font.pixelSize = pixelSize;
    TextFaceChanged();
}

void UI_TextControlBase::SetTextTruncation(std::uint32_t value) {
    truncation =
        value <= 3 ? static_cast<limner::TextTruncation>(value) : limner::TextTruncation::None;
    TextFaceChanged();
}

void UI_TextControlBase::SetTextAlignment(limner::TextAlignment value) {
    alignment = value;
    TextFaceChanged();
}

void UI_TextControlBase::SetTextColor(std::optional<limner::ColorRGBA> color) {
    textColor = color;
    TextFaceChanged();
}

void UI_TextControlBase::TextFaceChanged() {
    SetAccessibleName(text);
    if (QWidget* widget = GetWidget()) {
        widget->setFont(limner::QtFont::MakeQFont(font));
    }
    UI_Invalidate();
}

}  // namespace kelui::controls
