// Asks for the accounts the user belongs to or has projects shared with them in (GET /v2/accounts,
// paged). A plain value; any thread.
//
//   client->GetAccounts()->GetCurrentUserAccountList(GetCurrentUserAccountListRequest()).Then(executor,
//   OnAnswer);
#pragma once

#include <vantrosdk/VantroRequest.h>

namespace vantrosdk {

class GetCurrentUserAccountListRequest : public VantroRequest {
public:
    GetCurrentUserAccountListRequest() = default;
};

}  // namespace vantrosdk
