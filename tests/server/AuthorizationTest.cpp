#include <gtest/gtest.h>

#include "ServerWorldFixture.h"

namespace servertest {
namespace {

using testsupport::Bearer;

class AuthorizationTest : public ServerWorldFixture {
protected:
    void SetUp() override {
        BuildWorld();
        StartServer();
        annToken = SignIn("ann", "pw-ann").access;
        bobToken = SignIn("bob", "pw-bob").access;
        alphaRoot = RootOf(annToken, editors, alpha);
        secretRoot = RootOf(bobToken, hidden, secret);
        bobRoot = RootOf(bobToken, bobTeam, bobProject);
    }

    long Status(const std::string& token, const std::string& path) {
        return client.Get(Url(path), Bearer(token)).status;
    }

    std::string annToken, bobToken;
    std::string alphaRoot, secretRoot, bobRoot;
};

TEST_F(AuthorizationTest, AnotherUsersIdsAnswer404) {
    for (const std::string& path :
         {"/v2/accounts/" + bobco, "/v2/accounts/" + bobco + "/teams",
          "/v2/accounts/" + bobco + "/shared_projects", "/v2/teams/" + bobTeam,
          "/v2/teams/" + bobTeam + "/projects", "/v2/projects/" + bobProject,
          "/v2/assets/" + bobRoot, "/v2/assets/" + bobRoot + "/children"}) {
        const auto reply = client.Get(Url(path), Bearer(annToken));
        EXPECT_EQ(reply.status, 404) << path;
        EXPECT_EQ(reply.Json().at("error").as_string(), "not_found") << path;
        EXPECT_EQ(Status(bobToken, path), 200) << path;  // The owner does see it.
    }
}

TEST_F(AuthorizationTest, ATeamOfASharedAccountThatTheUserIsNotInIs404) {
    // ann and bob are both in Acme, but only bob is in Hidden.
    EXPECT_EQ(Status(annToken, "/v2/teams/" + hidden + "/projects"), 404);
    EXPECT_EQ(Status(annToken, "/v2/projects/" + secret), 404);
    EXPECT_EQ(Status(annToken, "/v2/assets/" + secretRoot), 404);
    EXPECT_EQ(Status(bobToken, "/v2/assets/" + alphaRoot), 404);
    EXPECT_EQ(Status(annToken, "/v2/accounts/" + acme), 200);
    EXPECT_EQ(Status(bobToken, "/v2/accounts/" + acme), 200);
}

TEST_F(AuthorizationTest, MalformedAndUnknownIdsAnswer404) {
    for (const std::string& id :
         {std::string("nope"), std::string("00000000-0000-0000-0000-000000000000"),
          std::string("ABCDEFAB-0000-0000-0000-000000000000"), std::string("%00"), acme + "x"}) {
        for (const std::string& path : {"/v2/accounts/" + id, "/v2/teams/" + id + "/projects",
                                        "/v2/assets/" + id + "/children"}) {
            EXPECT_EQ(Status(annToken, path), 404) << path;
        }
    }
}

TEST_F(AuthorizationTest, NoFolderCanBeMadeInAnUnseenFolder) {
    const auto reply =
        client.PostJson(Url("/v2/assets/" + bobRoot + "/children"),
                        {{"name", "intruder"}, {"type", "folder"}}, Bearer(annToken));
    EXPECT_EQ(reply.status, 404);
    const auto list = client.Get(Url("/v2/assets/" + bobRoot + "/children"), Bearer(bobToken));
    EXPECT_EQ(list.Header("total"), "0");
}

TEST_F(AuthorizationTest, EveryApiRouteNeedsAToken) {
    for (const std::string& path :
         {std::string("/v2/me"), std::string("/v2/accounts"), "/v2/accounts/" + acme,
          "/v2/assets/" + alphaRoot + "/children", std::string("/v2/events")}) {
        const auto reply = client.Get(Url(path));
        EXPECT_EQ(reply.status, 401) << path;
        EXPECT_EQ(reply.Header("www-authenticate"), "Bearer") << path;
    }
}

}  // namespace
}  // namespace servertest
