// Helpers for names and paths of files the library writes, such as the rendered movie named
// after a sequence. Stateless; any thread.
//
//   auto name = FileUtils::ReplaceIllegalFileNameCharacters(u"A/B: take 2?", u'-');
//   // name == u"A-B- take 2-"
#pragma once

#include <string>
#include <string_view>

#include <kelcore/string/String.h>

namespace kelcore::utility {

class FileUtils {
public:
    /// `name` with each character that cannot or should not stand in a file name replaced by
    /// `replacement`: '/', the control characters U+0000-U+001F and U+007F, and the characters
    /// \ : * ? " < > | that other systems reject when the file is shared. A name of dots only
    /// ("." or "..") becomes as many replacement characters. An empty name stays empty.
    /// Any thread.
    static string::string ReplaceIllegalFileNameCharacters(string::string_view name,
                                                           char16_t replacement);
    /// The same for UTF-8 text; `replacement` must be ASCII. Any thread.
    static std::string ReplaceIllegalFileNameCharacters(std::string_view name, char replacement);

    /// The last component of `path`: everything after the last '/', or the whole path when it
    /// has none. A path that ends in '/' gives the empty string. Any thread.
    static string::string GetPathFileName(string::string_view path);
    /// The same for UTF-8 text. Any thread.
    static std::string GetPathFileName(std::string_view path);
};

}  // namespace kelcore::utility
