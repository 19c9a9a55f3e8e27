#include "detail/HeaderNames.h"

namespace vantrocommon::detail {

std::string UpperCaseHeaderName(std::string_view name) {
    std::string upper(name);
    for (char& c : upper) {
        // Not std::toupper: the locale must not change what a field is called.
        if (c >= 'a' && c <= 'z') {
            c = static_cast<char>(c - 'a' + 'A');
        }
    }
    return upper;
}

}  // namespace vantrocommon::detail
