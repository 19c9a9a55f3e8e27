// The HTML of the sign-in flow: the username/password form (carrying the authorize request in
// hidden fields) and the error page shown instead of redirecting to an unverified address.
// Every value is HTML-escaped. Stateless; any thread.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vantroserver::api {

class SignInPage {
public:
    using Fields = std::vector<std::pair<std::string, std::string>>;

    /// The form posting to /oauth/authorize; `message` (may be empty) is shown above it.
    static std::string Form(const Fields& hidden, std::string_view username,
                            std::string_view message);
    static std::string Error(std::string_view message);
};

}  // namespace vantroserver::api
