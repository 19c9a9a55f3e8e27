#include <vantrosdk/VantroResponse.h>

#include <charconv>
#include <string>
#include <utility>

namespace vantrosdk {

namespace {

/// A header field holding a whole number (surrounding spaces allowed); empty otherwise.
std::optional<int> NumberField(const vantrocommon::http::HeaderMap& header, const char* name) {
    const auto found = header.find(name);
    if (found == header.end()) {
        return std::nullopt;
    }
    const std::string& text = found->second;
    const auto begin = text.find_first_not_of(" \t");
    const auto end = text.find_last_not_of(" \t");
    if (begin == std::string::npos) {
        return std::nullopt;
    }
    int value = 0;
    const char* first = text.data() + begin;
    const char* last = text.data() + end + 1;
    const auto [stop, error] = std::from_chars(first, last, value);
    if (error != std::errc() || stop != last) {
        return std::nullopt;
    }
    return value;
}

}  // namespace

VantroResponse::VantroResponse(int httpStatusCode, vantrocommon::http::HeaderMap header)
    : httpStatusCode(httpStatusCode),
      header(std::move(header)),
      pageNumber(NumberField(this->header, "PAGE-NUMBER")),
      totalPages(NumberField(this->header, "TOTAL-PAGES")) {}

}  // namespace vantrosdk
