#include <kelcore/string/String.h>

#include <boost/locale/encoding_utf.hpp>

namespace kelcore::string {
namespace {

using boost::locale::conv::skip;
using boost::locale::conv::utf_to_utf;

}  // namespace

std::string UTF16toStdString(string_view text) {
    return utf_to_utf<char>(text.data(), text.data() + text.size(), skip);
}

string StdToUTF16String(std::string_view utf8) {
    const auto converted = utf_to_utf<char16_t>(utf8.data(), utf8.data() + utf8.size(), skip);
    return string(converted.begin(), converted.end());
}

std::string StdToUTF8String(std::string_view text) {
    return utf_to_utf<char>(text.data(), text.data() + text.size(), skip);
}

string ReplaceInString(string_view text, string_view arg0, string_view arg1, string_view arg2) {
    const string_view args[] = {arg0, arg1, arg2};
    string out;
    out.reserve(text.size() + arg0.size() + arg1.size() + arg2.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'@' && i + 1 < text.size() && text[i + 1] >= u'0' && text[i + 1] <= u'2') {
            out.append(args[text[i + 1] - u'0']);
            ++i;
        } else {
            out.push_back(text[i]);
        }
    }
    return out;
}

}  // namespace kelcore::string
