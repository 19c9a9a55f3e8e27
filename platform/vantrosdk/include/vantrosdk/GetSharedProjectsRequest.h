// Asks for the projects of an account that are shared with the user
// (GET /v2/accounts/{id}/shared_projects, paged). The account is set after construction. A
// plain value; any thread.
//
//   GetSharedProjectsRequest request;
//   request.SetAccountId(account);
//   client->GetProjects()->GetSharedProjects(request).Then(executor, OnAnswer);
#pragma once

#include <vantrocommon/Guid.h>
#include <vantrosdk/VantroRequest.h>

namespace vantrosdk {

class GetSharedProjectsRequest : public VantroRequest {
public:
    GetSharedProjectsRequest() = default;

    /// The account whose shared projects are listed. A nil id (the default) is sent as it
    /// is, and the service answers 404.
    void SetAccountId(vantrocommon::Guid accountId) { this->accountId = accountId; }
    const vantrocommon::Guid& GetAccountId() const { return accountId; }

private:
    vantrocommon::Guid accountId;
};

}  // namespace vantrosdk
