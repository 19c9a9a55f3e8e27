// The answer to GetAccountRequest: the account with its storage figures. Made by the SDK on its
// executor; immutable afterwards, any thread.
#pragma once

#include <utility>

#include <vantrocommon/http/HeaderMap.h>
#include <vantrosdk/Account.h>
#include <vantrosdk/VantroResponse.h>

namespace vantrosdk {

class GetAccountResponse : public VantroResponse {
public:
    GetAccountResponse() = default;
    GetAccountResponse(int httpStatusCode, vantrocommon::http::HeaderMap header, Account account)
        : VantroResponse(httpStatusCode, std::move(header)), account(std::move(account)) {}

    /// The account; empty fields when the answer was not successful.
    const Account& GetAccountResponseObject() const { return account; }

private:
    Account account;
};

}  // namespace vantrosdk
