#include <kelcore/utility/FileUtils.h>

#include <algorithm>
#include <type_traits>

namespace kelcore::utility {
namespace {

template <class Char>
bool IsIllegalInFileName(Char c) {
    // Through the unsigned type: a byte of a UTF-8 sequence must not widen to a negative value.
    const auto unit = static_cast<std::uint32_t>(static_cast<std::make_unsigned_t<Char>>(c));
    if (unit < 0x20 || unit == 0x7F) {
        return true;
    }
    constexpr std::string_view kIllegal = "/\\:*?\"<>|";
    return unit < 0x80 && kIllegal.find(static_cast<char>(unit)) != std::string_view::npos;
}

template <class String, class Char>
String ReplaceIllegal(std::basic_string_view<Char> name, Char replacement) {
    String out(name.begin(), name.end());
    // "." and ".." name directories, and a name of dots only is hidden or unusable.
    if (!out.empty() && std::all_of(out.begin(), out.end(), [](Char c) { return c == '.'; })) {
        std::fill(out.begin(), out.end(), replacement);
        return out;
    }
    std::replace_if(out.begin(), out.end(), IsIllegalInFileName<Char>, replacement);
    return out;
}

template <class String, class Char>
String LastComponent(std::basic_string_view<Char> path) {
    const auto slash = path.rfind(Char('/'));
    const auto name = slash == path.npos ? path : path.substr(slash + 1);
    return String(name.begin(), name.end());
}

}  // namespace

string::string FileUtils::ReplaceIllegalFileNameCharacters(string::string_view name,
                                                           char16_t replacement) {
    return ReplaceIllegal<string::string>(name, replacement);
}

std::string FileUtils::ReplaceIllegalFileNameCharacters(std::string_view name, char replacement) {
    return ReplaceIllegal<std::string>(name, replacement);
}

string::string FileUtils::GetPathFileName(string::string_view path) {
    return LastComponent<string::string>(path);
}

std::string FileUtils::GetPathFileName(std::string_view path) {
    return LastComponent<std::string>(path);
}

}  // namespace kelcore::utility
