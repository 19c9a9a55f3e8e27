// The `page`/`page_size` query parameters of a listing and the paging headers of its answer.
// A value type; any thread.
//
//   auto paging = Paging::FromQuery(context, defaultSize);   // nullopt: answer 400
//   auto rows = store.Children(id, paging->Offset(), paging->Limit());
//   paging->AddHeaders(response, total);
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "http/RequestContext.h"
#include "http/Response.h"

namespace vantroserver::http {

class Paging {
public:
    /// Larger page sizes are refused, so one request cannot ask for an unbounded answer.
    static constexpr std::size_t kMaxPageSize = 1000;

    /// Reads `page` (1-based, default 1) and `page_size` (default `defaultSize`, 1 to
    /// kMaxPageSize). Returns nothing and fills `error` when a value is not a positive decimal
    /// number in range.
    static std::optional<Paging> FromQuery(const RequestContext& context, std::size_t defaultSize,
                                           std::string& error);

    Paging(std::uint64_t page, std::size_t pageSize) : page(page), pageSize(pageSize) {}

    std::uint64_t Page() const { return page; }
    std::size_t PageSize() const { return pageSize; }
    std::uint64_t Offset() const { return (page - 1) * pageSize; }
    std::size_t Limit() const { return pageSize; }
    /// Pages needed for `total` items; at least 1, so an empty list still has its first page.
    std::uint64_t TotalPages(std::uint64_t total) const;

    /// Sets PAGE-NUMBER, TOTAL-PAGES, PER-PAGE and TOTAL.
    void AddHeaders(Response& response, std::uint64_t total) const;

private:
    std::uint64_t page;
    std::size_t pageSize;
};

}  // namespace vantroserver::http
