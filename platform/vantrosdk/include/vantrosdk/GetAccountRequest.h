// Asks for one account with its storage figures (GET /v2/accounts/{id}). A plain value; any thread.
//
//   client->GetAccounts()->GetAccount(GetAccountRequest(accountId)).Then(executor, OnAnswer);
#pragma once

#include <vantrocommon/Guid.h>
#include <vantrosdk/VantroRequest.h>

namespace vantrosdk {

class GetAccountRequest : public VantroRequest {
public:
    explicit GetAccountRequest(vantrocommon::Guid accountId) : accountId(accountId) {}

    const vantrocommon::Guid& GetAccountId() const { return accountId; }

private:
    vantrocommon::Guid accountId;
};

}  // namespace vantrosdk
