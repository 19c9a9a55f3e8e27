#include "detail/LoggableUrl.h"

namespace vantrocommon::detail {

std::string LoggableUrl(std::string_view url) {
    url = url.substr(0, url.find_first_of("?#"));
    const auto schemeEnd = url.find("://");
    if (schemeEnd == std::string_view::npos) {
        return std::string(url);
    }
    const auto authorityStart = schemeEnd + 3;
    const auto authorityEnd = url.find('/', authorityStart);
    const auto authority = url.substr(authorityStart, authorityEnd - authorityStart);
    const auto at = authority.rfind('@');
    if (at == std::string_view::npos) {
        return std::string(url);
    }
    std::string clean(url.substr(0, authorityStart));
    clean += authority.substr(at + 1);
    if (authorityEnd != std::string_view::npos) {
        clean += url.substr(authorityEnd);
    }
    return clean;
}

}  // namespace vantrocommon::detail
