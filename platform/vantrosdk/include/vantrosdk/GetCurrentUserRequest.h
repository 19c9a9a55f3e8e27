// Asks for the signed-in user (GET /v2/me). A plain value; any thread.
//
//   client->GetAccounts()->GetCurrentUser(GetCurrentUserRequest()).Then(executor, OnAnswer);
#pragma once

#include <vantrosdk/VantroRequest.h>

namespace vantrosdk {

class GetCurrentUserRequest : public VantroRequest {
public:
    GetCurrentUserRequest() = default;
};

}  // namespace vantrosdk
