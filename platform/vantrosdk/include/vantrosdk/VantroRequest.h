// The base of the SDK's typed requests: what every request may carry besides its own
// arguments, which is the page of a listing. A page number, when set, is sent as `page=N`; the
// page size is always the service's. A plain value, copied into the call that sends it. Any
// thread.
#pragma once

#include <optional>

namespace vantrosdk {

class VantroRequest {
public:
    virtual ~VantroRequest() = default;

    /// The 1-based page of a listing to ask for. Sent as given: the service answers a number
    /// below 1 with 400. Ignored by requests that are not listings.
    void SetPageNumber(int pageNumber) { this->pageNumber = pageNumber; }
    /// Empty unless SetPageNumber was called (the service then answers the first page).
    std::optional<int> GetPageNumber() const { return pageNumber; }

protected:
    VantroRequest() = default;
    VantroRequest(const VantroRequest&) = default;
    VantroRequest& operator=(const VantroRequest&) = default;

private:
    std::optional<int> pageNumber;
};

}  // namespace vantrosdk
