#include <kelcore/string/String.h>

#include <iterator>

#include <boost/locale/utf.hpp>

namespace kelcore::string {
namespace {

namespace utf = boost::locale::utf;

// Boost's whole-string converter resumes after every unit it read for a bad sequence, so a
// cut sequence swallows the valid character behind it ("a\xC3b" lost the b). Resuming one
// unit past the start of the bad sequence keeps it.
template <class Out, class In>
void AppendValidCodePoints(const In* it, const In* end, Out& out) {
    out.reserve(out.size() + static_cast<std::size_t>(end - it));
    while (it != end) {
        const In* start = it;
        const utf::code_point codePoint = utf::utf_traits<In>::decode(it, end);
        if (codePoint == utf::illegal || codePoint == utf::incomplete) {
            it = start + 1;
            continue;
        }
        utf::utf_traits<typename Out::value_type>::encode(codePoint, std::back_inserter(out));
    }
}

}  // namespace

std::string UTF16toStdString(string_view text) {
    std::string out;
    AppendValidCodePoints(text.data(), text.data() + text.size(), out);
    return out;
}

string StdToUTF16String(std::string_view utf8) {
    string out;
    AppendValidCodePoints(utf8.data(), utf8.data() + utf8.size(), out);
    return out;
}

std::string StdToUTF8String(std::string_view text) {
    std::string out;
    AppendValidCodePoints(text.data(), text.data() + text.size(), out);
    return out;
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
