// A test fixture around the real server: a fresh data directory, the admin commands to fill
// it, a started server and the sign-in flow (authorization code with PKCE S256) as a client
// performs it. For integration tests of vantro-server; the test's thread.
//
//   class SignInTest : public testsupport::VantroServerFixture {};
//   TEST_F(SignInTest, ...) {
//       AddUser("ann");
//       StartServer();
//       auto tokens = SignIn("ann");
//       EXPECT_EQ(client.Get(Url("/v2/me"), Bearer(tokens.access)).status, 200);
//   }
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "support/HttpClient.h"
#include "support/VantroServerProcess.h"

namespace testsupport {

class VantroServerFixture : public ::testing::Test {
protected:
    static constexpr const char* kClientId = "vantrokelui-desktop";
    static constexpr const char* kRedirectUri = "http://127.0.0.1:53682/callback";

    struct Tokens {
        std::string access;
        std::string refresh;
        boost::json::object answer;  ///< The token endpoint's whole answer.
    };

    /// Stops the server and expects a clean exit (no crash, no sanitizer report at shutdown).
    void TearDown() override;

    /// Adds a user through the admin command; returns their id.
    std::string AddUser(const std::string& username, const std::string& password = "secret");
    /// Runs an admin command (`--data` is added) and returns its output (the new id, usually).
    std::string Admin(std::vector<std::string> args) { return server.Admin(std::move(args)); }
    /// Runs an admin command and returns the first id it printed; throws when none.
    std::string AdminId(std::vector<std::string> args);
    /// Every id (8-4-4-4-12 lower-case hex) in `text`, in order.
    static std::vector<std::string> IdsIn(const std::string& text);

    void StartServer(std::vector<std::string> extra = {}) { server.Start(std::move(extra)); }
    std::string Url(const std::string& path) const { return server.Url(path); }

    /// The authorize URL for `challenge`, with `state`.
    std::string AuthorizeUrl(const std::string& challenge, const std::string& state = "st",
                             const std::string& redirectUri = kRedirectUri) const;
    /// Posts the sign-in form; returns the raw reply (a redirect when the password is right).
    HttpClient::Reply PostSignIn(const std::string& username, const std::string& password,
                                 const std::string& challenge, const std::string& state = "st",
                                 const std::string& redirectUri = kRedirectUri);
    /// Signs in through the form and returns the code from the redirect; fails the test (and
    /// returns empty) when no code comes back.
    std::string Authorize(const std::string& username, const std::string& password,
                          const std::string& verifier);
    /// Exchanges a code at the token endpoint.
    HttpClient::Reply ExchangeCode(const std::string& code, const std::string& verifier,
                                   const std::string& redirectUri = kRedirectUri);
    HttpClient::Reply Refresh(const std::string& refreshToken);
    /// The whole flow; fails the test when any step does.
    Tokens SignIn(const std::string& username, const std::string& password = "secret");

    /// A fresh random PKCE verifier (43 characters) and its S256 challenge.
    static std::string NewVerifier();
    static std::string ChallengeOf(const std::string& verifier);
    /// The query parameters of a URL (as in a Location header), decoded.
    static std::map<std::string, std::string> QueryOf(const std::string& url);

    VantroServerProcess server;
    HttpClient client;
};

}  // namespace testsupport
