// The claims of an access token: who (sub), through which client (client_id), the refresh
// family it came from (fam, so revoking a family can refuse its access tokens too), issue and
// expiry times in seconds since the epoch. A value; any thread.
#pragma once

#include <cstdint>
#include <string>

namespace vantroserver::security {

struct AccessTokenClaims {
    std::string subject;  ///< The user id.
    std::string clientId;
    std::string familyId;  ///< Empty when the token belongs to no refresh family.
    std::int64_t issuedAt = 0;
    std::int64_t expiresAt = 0;
};

}  // namespace vantroserver::security
