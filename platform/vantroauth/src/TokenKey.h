// Which stored tokens: the service (its API base URL), the client id, the profile and the user.
// The Secret Service item carries exactly these as attributes; the token file keys its entries
// by them. A plain value; any thread.
#pragma once

#include <compare>
#include <string>

namespace vantroauth {

struct TokenKey {
    std::string service;
    std::string client;
    std::string profile;
    std::string user;

    friend auto operator<=>(const TokenKey&, const TokenKey&) = default;
    friend bool operator==(const TokenKey&, const TokenKey&) = default;
};

}  // namespace vantroauth
