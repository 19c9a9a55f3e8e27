// The platform's text type and the conversions at its edges. Text inside the library is UTF-16
// in the platform allocator; the cloud libraries, files and logs take UTF-8 std::string.
// Conversions never throw on malformed input: invalid sequences are dropped.
//
//   kelcore::string::string name = StdToUTF16String("Clip 2");
//   std::string utf8 = UTF16toStdString(name);
#pragma once

#include <string>
#include <string_view>

#include <kelcore/allocator/STLAllocator.h>

namespace kelcore::string {

using string =
    std::basic_string<char16_t, std::char_traits<char16_t>, allocator::STLAllocator<char16_t>>;
using string_view = std::u16string_view;

/// UTF-16 to UTF-8.
std::string UTF16toStdString(string_view text);
/// UTF-8 to UTF-16.
string StdToUTF16String(std::string_view utf8);
/// Text in the system's narrow encoding (UTF-8 on Linux) to valid UTF-8.
std::string StdToUTF8String(std::string_view text);

/// Replaces "@0", "@1" and "@2" in `text` by the given arguments, each occurrence once, left to
/// right; the inserted text is not scanned again. "@" before any other character stays.
string ReplaceInString(string_view text, string_view arg0 = {}, string_view arg1 = {},
                       string_view arg2 = {});

}  // namespace kelcore::string
