// The answer to GetCurrentUserRequest: the signed-in user when successful. Made by the SDK on its
// executor; immutable afterwards, any thread.
#pragma once

#include <utility>

#include <vantrocommon/http/HeaderMap.h>
#include <vantrosdk/User.h>
#include <vantrosdk/VantroResponse.h>

namespace vantrosdk {

class GetCurrentUserResponse : public VantroResponse {
public:
    GetCurrentUserResponse() = default;
    GetCurrentUserResponse(int httpStatusCode, vantrocommon::http::HeaderMap header, User user)
        : VantroResponse(httpStatusCode, std::move(header)), user(std::move(user)) {}

    /// The user; empty fields when the answer was not successful.
    const User& GetUserObject() const { return user; }

private:
    User user;
};

}  // namespace vantrosdk
