// The library's translations: locale files ("<locale>.strings") that ship beside the library in
// share/vantrokelui/locales, found from the library's own file, so a relocated installation (or
// the build tree) finds its texts. Loading one hands it to kelcore's localiser; any thread.
//
//   vantrokelui::utility::LoadLocalizedStrings("de_DE");   // false: keep the English defaults
#pragma once

#include <filesystem>
#include <string_view>

namespace vantrokelui::utility {

/// The folder of the library's locale files: share/vantrokelui/locales next to the library's lib
/// folder. Any thread.
std::filesystem::path LocalizedStringsDirectory();

/// Loads the library's texts for `locale` (such as "de_DE") into kelcore's localiser. False,
/// keeping the texts as they were, when the library has no file for it. Any thread.
bool LoadLocalizedStrings(std::string_view locale);

}  // namespace vantrokelui::utility
