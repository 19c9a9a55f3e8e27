#include "http/Paging.h"

#include <charconv>
#include <limits>

namespace vantroserver::http {

namespace {

// Pages past this could overflow the offset; nobody pages that far.
constexpr std::uint64_t kMaxPage = std::numeric_limits<std::uint32_t>::max();

std::optional<std::uint64_t> ParsePositive(std::string_view text, std::uint64_t max) {
    std::uint64_t value = 0;
    if (text.empty() || text.size() > 20) {
        return std::nullopt;
    }
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || value == 0 || value > max) {
        return std::nullopt;
    }
    return value;
}

}  // namespace

std::optional<Paging> Paging::FromQuery(const RequestContext& context, std::size_t defaultSize,
                                        std::string& error) {
    std::uint64_t page = 1;
    std::size_t pageSize = defaultSize;
    if (const auto text = context.Query("page")) {
        const auto value = ParsePositive(*text, kMaxPage);
        if (!value) {
            error = "page must be a whole number from 1 to " + std::to_string(kMaxPage);
            return std::nullopt;
        }
        page = *value;
    }
    if (const auto text = context.Query("page_size")) {
        const auto value = ParsePositive(*text, kMaxPageSize);
        if (!value) {
            error = "page_size must be a whole number from 1 to " + std::to_string(kMaxPageSize);
            return std::nullopt;
        }
        pageSize = static_cast<std::size_t>(*value);
    }
    return Paging(page, pageSize);
}

std::uint64_t Paging::TotalPages(std::uint64_t total) const {
    return total == 0 ? 1 : (total + pageSize - 1) / pageSize;
}

void Paging::AddHeaders(Response& response, std::uint64_t total) const {
    response.Set("PAGE-NUMBER", std::to_string(page));
    response.Set("TOTAL-PAGES", std::to_string(TotalPages(total)));
    response.Set("PER-PAGE", std::to_string(pageSize));
    response.Set("TOTAL", std::to_string(total));
}

}  // namespace vantroserver::http
