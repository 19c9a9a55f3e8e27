#include "http/PublicBase.h"

#include <boost/url/parse.hpp>

namespace vantroserver::http {

namespace {

std::string WithoutTrailingSlash(std::string text) {
    while (!text.empty() && text.back() == '/') {
        text.pop_back();
    }
    return text;
}

}  // namespace

PublicBase::PublicBase(std::optional<std::string> configured)
    : url(configured ? WithoutTrailingSlash(std::move(*configured)) : std::string{}),
      fixed(configured.has_value()) {}

void PublicBase::SetListening(bool tls, std::string_view host, unsigned short port) {
    if (fixed) {
        return;
    }
    std::string address(host);
    if (address.find(':') != std::string::npos) {
        address = "[" + address + "]";
    }
    std::lock_guard lock(mutex);
    url = std::string(tls ? "https" : "http") + "://" + address + ":" + std::to_string(port);
}

std::string PublicBase::Url() const {
    std::lock_guard lock(mutex);
    return url;
}

bool PublicBase::IsAcceptable(std::string_view text) {
    const auto parsed = boost::urls::parse_absolute_uri(text);
    if (!parsed || parsed->has_query() || parsed->has_fragment() || parsed->has_userinfo() ||
        parsed->host().empty()) {
        return false;
    }
    return parsed->scheme_id() == boost::urls::scheme::http ||
           parsed->scheme_id() == boost::urls::scheme::https;
}

}  // namespace vantroserver::http
