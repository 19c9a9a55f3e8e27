// Which font to draw or measure with: family, size in pixels and style name ("Regular", "Bold",
// "Italic", "Bold Italic"). A plain value; any thread. An empty family is the platform's user
// interface font, and a size of 0 its default size.
//
//   limner::FontDescription bold{"", 0.0f, "Bold"};
#pragma once

#include <string>

namespace limner {

struct FontDescription {
    std::string family;
    float pixelSize = 0.0f;
    std::string styleName = "Regular";

    friend bool operator==(const FontDescription&, const FontDescription&) = default;
};

/// The family to use for `name`: `name` itself when the platform has it, otherwise empty (the
/// user interface font). Families the panel names but the platform lacks thus fall back
/// quietly. Main thread (it asks the platform's font database).
std::string ValidateFontName(const std::string& name);

}  // namespace limner
