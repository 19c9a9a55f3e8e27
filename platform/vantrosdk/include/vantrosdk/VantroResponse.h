// The base of the SDK's typed responses: the HTTP status and header fields of the answer. Every
// status the service answers is a response (404, 429 and 500 included, with their headers, so a
// caller's rate-limit queue can read X-RATELIMIT-* and Retry-After); only an exchange that
// failed fails the future instead. Immutable once made; any thread.
//
//   if (!response->IsSuccessful() && response->GetHTTPStatusCode() == 429) Later(response);
//   if (response->GetPageNumber() < response->GetTotalPages()) AskForNextPage();
#pragma once

#include <optional>

#include <vantrocommon/http/HeaderMap.h>

namespace vantrosdk {

class VantroResponse {
public:
    /// Status 0 (not successful), no header fields.
    VantroResponse() = default;
    /// `header`: names upper-cased, as the transport gives them.
    VantroResponse(int httpStatusCode, vantrocommon::http::HeaderMap header);
    virtual ~VantroResponse() = default;

    /// Whether the status is 2xx.
    bool IsSuccessful() const { return httpStatusCode >= 200 && httpStatusCode < 300; }
    int GetHTTPStatusCode() const { return httpStatusCode; }
    /// Every header field of the answer by upper-cased name ("X-RATELIMIT-LIMIT").
    const vantrocommon::http::HeaderMap& GetHeader() const { return header; }

    /// The page a listing answered (PAGE-NUMBER); empty when the field is missing or is not a
    /// number.
    std::optional<int> GetPageNumber() const { return pageNumber; }
    /// The listing's number of pages (TOTAL-PAGES); empty when missing or not a number.
    std::optional<int> GetTotalPages() const { return totalPages; }

protected:
    VantroResponse(const VantroResponse&) = default;
    VantroResponse& operator=(const VantroResponse&) = default;

private:
    int httpStatusCode = 0;
    vantrocommon::http::HeaderMap header;
    std::optional<int> pageNumber;
    std::optional<int> totalPages;
};

}  // namespace vantrosdk
