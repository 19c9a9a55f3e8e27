#include <gtest/gtest.h>

#include <boost/json/parse.hpp>

#include "support/VantroServerFixture.h"

namespace servertest {
namespace {

using testsupport::Bearer;

class TokenIssueCommandTest : public testsupport::VantroServerFixture {};

TEST_F(TokenIssueCommandTest, PrintsTokensThatTheServerAcceptsAndRefreshes) {
    const auto ann = AddUser("ann");
    const auto printed = Admin({"token", "issue", "--user", "ann"});
    const auto answer = boost::json::parse(printed).as_object();
    EXPECT_EQ(answer.at("token_type").as_string(), "Bearer");
    EXPECT_EQ(answer.at("expires_in").as_int64(), 3600);
    EXPECT_EQ(answer.size(), 4u);

    StartServer();
    const auto me =
        client.Get(Url("/v2/me"), Bearer(std::string(answer.at("access_token").as_string())));
    ASSERT_EQ(me.status, 200) << me.body;
    EXPECT_EQ(me.Json().at("id").as_string(), ann);
    const auto refreshed = Refresh(std::string(answer.at("refresh_token").as_string()));
    EXPECT_EQ(refreshed.status, 200) << refreshed.body;
}

TEST_F(TokenIssueCommandTest, RefusesUnknownUsersAndClients) {
    AddUser("ann");
    const auto noUser = server.Run({"token", "issue", "--user", "nobody"});
    EXPECT_EQ(noUser.exitCode, 1);
    EXPECT_TRUE(noUser.out.empty());
    EXPECT_NE(noUser.err.find("no user"), std::string::npos) << noUser.err;
    const auto noClient = server.Run({"token", "issue", "--user", "ann", "--client", "other"});
    EXPECT_EQ(noClient.exitCode, 1);
    EXPECT_NE(noClient.err.find("no client"), std::string::npos) << noClient.err;
}

TEST_F(TokenIssueCommandTest, AnotherRegisteredClientAndLifetimeAreHonoured) {
    AddUser("ann");
    Admin({"client", "add", "--id", "cli"});
    const auto answer = boost::json::parse(Admin({"token", "issue", "--user", "ann", "--client",
                                                  "cli", "--access-token-ttl", "60"}))
                            .as_object();
    EXPECT_EQ(answer.at("expires_in").as_int64(), 60);
    StartServer();
    // The refresh token belongs to the client it was issued for.
    const auto wrongClient = Refresh(std::string(answer.at("refresh_token").as_string()));
    EXPECT_EQ(wrongClient.status, 400);
    EXPECT_EQ(wrongClient.Json().at("error").as_string(), "invalid_grant");
}

}  // namespace
}  // namespace servertest
