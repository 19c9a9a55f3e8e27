// The answer to GetCurrentUserAccountListRequest: one page of accounts. Made by the SDK on its
// executor; immutable afterwards, any thread.
#pragma once

#include <utility>
#include <vector>

#include <vantrocommon/http/HeaderMap.h>
#include <vantrosdk/Account.h>
#include <vantrosdk/VantroResponse.h>

namespace vantrosdk {

class GetCurrentUserAccountListResponse : public VantroResponse {
public:
    GetCurrentUserAccountListResponse() = default;
    GetCurrentUserAccountListResponse(int httpStatusCode, vantrocommon::http::HeaderMap header,
                                      std::vector<Account> accounts)
        : VantroResponse(httpStatusCode, std::move(header)), accounts(std::move(accounts)) {}

    /// The page's accounts in the service's order (by name); empty when not successful.
    const std::vector<Account>& GetCurrentUserAccountListObject() const { return accounts; }

private:
    std::vector<Account> accounts;
};

}  // namespace vantrosdk
