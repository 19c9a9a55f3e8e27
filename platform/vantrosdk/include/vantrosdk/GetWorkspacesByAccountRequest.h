// Asks for the workspaces of an account that the user is in (GET /v2/accounts/{id}/teams, paged). A
// plain value; any thread.
//
//   client->GetWorkspaces()->GetWorkspacesByAccount(GetWorkspacesByAccountRequest(accountId)).Then(executor,
//   OnAnswer);
#pragma once

#include <vantrocommon/Guid.h>
#include <vantrosdk/VantroRequest.h>

namespace vantrosdk {

class GetWorkspacesByAccountRequest : public VantroRequest {
public:
    explicit GetWorkspacesByAccountRequest(vantrocommon::Guid accountId) : accountId(accountId) {}

    const vantrocommon::Guid& GetAccountId() const { return accountId; }

private:
    vantrocommon::Guid accountId;
};

}  // namespace vantrosdk
