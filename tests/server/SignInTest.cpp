#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "support/VantroServerFixture.h"

namespace {

using testsupport::Bearer;
using testsupport::HttpClient;

class SignInTest : public testsupport::VantroServerFixture {
protected:
    void SetUp() override {
        userId = AddUser("ann", "right password");
        StartServer();
    }

    std::string userId;
};

TEST_F(SignInTest, AuthorizeShowsTheFormWithTheRequestInHiddenFields) {
    const auto challenge = ChallengeOf(NewVerifier());
    const auto reply = client.Get(AuthorizeUrl(challenge, "xyz<>"));
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.Header("content-type"), "text/html; charset=utf-8");
    EXPECT_NE(reply.body.find("<form method=\"post\" action=\"/oauth/authorize\">"),
              std::string::npos);
    EXPECT_NE(reply.body.find("name=\"code_challenge\" value=\"" + challenge + "\""),
              std::string::npos);
    // The state comes back escaped, never as markup.
    EXPECT_NE(reply.body.find("value=\"xyz&lt;&gt;\""), std::string::npos);
    EXPECT_EQ(reply.body.find("xyz<>"), std::string::npos);
}

TEST_F(SignInTest, AnUnknownClientGetsAnErrorPageNotARedirect) {
    const auto reply = client.Get(
        Url("/oauth/authorize?response_type=code&client_id=stranger&redirect_uri=" +
            HttpClient::Escape(kRedirectUri) + "&code_challenge=" + ChallengeOf(NewVerifier()) +
            "&code_challenge_method=S256&state=s"));
    EXPECT_EQ(reply.status, 400);
    EXPECT_EQ(reply.Header("location"), "");
    EXPECT_NE(reply.body.find("not registered"), std::string::npos);
}

TEST_F(SignInTest, OnlyLoopbackHttpRedirectsAreAccepted) {
    const auto challenge = ChallengeOf(NewVerifier());
    for (const char* bad : {"https://127.0.0.1/cb", "http://example.com/cb", "http://10.0.0.1/cb",
                            "http://user@127.0.0.1/cb", "http://127.0.0.1/cb#frag",
                            "http://localhost.example.com/", "/relative", ""}) {
        const auto reply = client.Get(AuthorizeUrl(challenge, "s", bad));
        EXPECT_EQ(reply.status, 400) << bad;
        EXPECT_EQ(reply.Header("location"), "") << bad;
    }
    for (const char* good :
         {"http://127.0.0.1/cb", "http://127.0.0.1:1/a/b?c=d", "http://[::1]:8080/",
          "http://localhost:53682/callback", "http://LOCALHOST/x"}) {
        const auto reply = client.Get(AuthorizeUrl(challenge, "s", good));
        EXPECT_EQ(reply.status, 200) << good;
    }
}

TEST_F(SignInTest, ABadRequestWithATrustedRedirectGoesBackWithAnError) {
    const auto reply = client.Get(
        Url("/oauth/authorize?response_type=token&client_id=vantrokelui-desktop&redirect_uri=" +
            HttpClient::Escape(kRedirectUri) + "&code_challenge=" + ChallengeOf(NewVerifier()) +
            "&code_challenge_method=S256&state=s1"));
    EXPECT_EQ(reply.status, 302);
    const auto params = QueryOf(reply.Header("location"));
    EXPECT_EQ(params.at("error"), "unsupported_response_type");
    EXPECT_EQ(params.at("state"), "s1");
    EXPECT_EQ(params.count("code"), 0u);

    const auto plain = client.Get(
        Url("/oauth/authorize?response_type=code&client_id=vantrokelui-desktop&redirect_uri=" +
            HttpClient::Escape(kRedirectUri) + "&code_challenge=abc&code_challenge_method=plain"));
    EXPECT_EQ(plain.status, 302);
    EXPECT_EQ(QueryOf(plain.Header("location")).at("error"), "invalid_request");
}

TEST_F(SignInTest, AWrongPasswordShowsTheFormAgainWithAMessage) {
    const auto reply = PostSignIn("ann", "wrong", ChallengeOf(NewVerifier()));
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.Header("location"), "");
    EXPECT_NE(reply.body.find("Wrong username or password."), std::string::npos);
    EXPECT_NE(reply.body.find("value=\"ann\""), std::string::npos);
    const auto unknown = PostSignIn("nobody", "right password", ChallengeOf(NewVerifier()));
    EXPECT_NE(unknown.body.find("Wrong username or password."), std::string::npos);
}

TEST_F(SignInTest, TheRightPasswordRedirectsWithCodeAndState) {
    const auto reply = PostSignIn("ann", "right password", ChallengeOf(NewVerifier()), "s t&u");
    ASSERT_EQ(reply.status, 302);
    const std::string location = reply.Header("location");
    EXPECT_EQ(location.rfind(std::string(kRedirectUri) + "?", 0), 0u) << location;
    const auto params = QueryOf(location);
    EXPECT_FALSE(params.at("code").empty());
    EXPECT_EQ(params.at("state"), "s t&u");
}

TEST_F(SignInTest, TheCodeGivesBearerTokensForTheUser) {
    const auto tokens = SignIn("ann", "right password");
    EXPECT_EQ(tokens.answer.at("token_type").as_string(), "Bearer");
    EXPECT_EQ(tokens.answer.at("expires_in").as_int64(), 3600);
    // A compact JWT: three base64url parts.
    EXPECT_EQ(std::count(tokens.access.begin(), tokens.access.end(), '.'), 2);
    const auto me = client.Get(Url("/v2/me"), Bearer(tokens.access));
    ASSERT_EQ(me.status, 200) << me.body;
    EXPECT_EQ(me.Json().at("id").as_string(), userId);
    EXPECT_EQ(me.Json().at("username").as_string(), "ann");
}

TEST_F(SignInTest, AWrongVerifierIsRefused) {
    const std::string verifier = NewVerifier();
    const std::string code = Authorize("ann", "right password", verifier);
    const auto reply = ExchangeCode(code, NewVerifier());
    EXPECT_EQ(reply.status, 400);
    EXPECT_EQ(reply.Json().at("error").as_string(), "invalid_grant");
}

TEST_F(SignInTest, ARedirectOtherThanTheAuthorizedOneIsRefused) {
    const std::string verifier = NewVerifier();
    const std::string code = Authorize("ann", "right password", verifier);
    const auto reply = ExchangeCode(code, verifier, "http://127.0.0.1:9/other");
    EXPECT_EQ(reply.status, 400);
    EXPECT_EQ(reply.Json().at("error").as_string(), "invalid_grant");
}

TEST_F(SignInTest, AReusedCodeIsRefusedAndRevokesWhatItIssued) {
    const std::string verifier = NewVerifier();
    const std::string code = Authorize("ann", "right password", verifier);
    const auto first = ExchangeCode(code, verifier);
    ASSERT_EQ(first.status, 200);
    const auto second = ExchangeCode(code, verifier);
    EXPECT_EQ(second.status, 400);
    EXPECT_EQ(second.Json().at("error").as_string(), "invalid_grant");

    const auto refreshed = Refresh(std::string(first.Json().at("refresh_token").as_string()));
    EXPECT_EQ(refreshed.status, 400);
    EXPECT_EQ(refreshed.Json().at("error").as_string(), "invalid_grant");
    const auto me =
        client.Get(Url("/v2/me"), Bearer(std::string(first.Json().at("access_token").as_string())));
    EXPECT_EQ(me.status, 401);
}

TEST_F(SignInTest, RefreshRotatesAndTheOldTokenStopsWorking) {
    const auto tokens = SignIn("ann", "right password");
    const auto rotated = Refresh(tokens.refresh);
    ASSERT_EQ(rotated.status, 200) << rotated.body;
    const std::string next = std::string(rotated.Json().at("refresh_token").as_string());
    EXPECT_NE(next, tokens.refresh);
    const auto access = std::string(rotated.Json().at("access_token").as_string());
    EXPECT_EQ(client.Get(Url("/v2/me"), Bearer(access)).status, 200);

    const auto again = Refresh(tokens.refresh);
    EXPECT_EQ(again.status, 400);
    EXPECT_EQ(again.Json().at("error").as_string(), "invalid_grant");
}

TEST_F(SignInTest, RevokeEndsTheFamilysRefreshingWhileIssuedAccessTokensLiveOut) {
    const auto tokens = SignIn("ann", "right password");
    const auto rotated = Refresh(tokens.refresh);
    ASSERT_EQ(rotated.status, 200);
    const std::string current(rotated.Json().at("refresh_token").as_string());
    const auto revoked = client.PostForm(Url("/oauth/revoke"), {{"token", current}});
    EXPECT_EQ(revoked.status, 200);
    EXPECT_EQ(Refresh(current).status, 400);
    EXPECT_EQ(Refresh(tokens.refresh).status, 400);
    // An upload begun before the sign-out may finish with the token it holds.
    EXPECT_EQ(client.Get(Url("/v2/me"), Bearer(tokens.access)).status, 200);
    // Unknown tokens are answered the same way.
    EXPECT_EQ(client.PostForm(Url("/oauth/revoke"), {{"token", "unknown"}}).status, 200);
}

TEST_F(SignInTest, TheTokenEndpointNamesWhatIsWrong) {
    auto error = [&](const HttpClient::Reply& reply) {
        return std::string(reply.Json().at("error").as_string());
    };
    const auto unknownGrant = client.PostForm(
        Url("/oauth/token"), {{"grant_type", "password"}, {"client_id", kClientId}});
    EXPECT_EQ(unknownGrant.status, 400);
    EXPECT_EQ(error(unknownGrant), "unsupported_grant_type");
    const auto unknownClient = client.PostForm(
        Url("/oauth/token"), {{"grant_type", "refresh_token"}, {"client_id", "stranger"}});
    EXPECT_EQ(unknownClient.status, 401);
    EXPECT_EQ(error(unknownClient), "invalid_client");
    const auto notForm = client.PostJson(Url("/oauth/token"), {{"grant_type", "refresh_token"}});
    EXPECT_EQ(notForm.status, 400);
    EXPECT_EQ(error(notForm), "invalid_request");
    const auto missing = client.PostForm(
        Url("/oauth/token"), {{"grant_type", "authorization_code"}, {"client_id", kClientId}});
    EXPECT_EQ(missing.status, 400);
    EXPECT_EQ(error(missing), "invalid_request");
}

TEST_F(SignInTest, ForgedAndMalformedBearerTokensAreRefused) {
    const auto tokens = SignIn("ann", "right password");
    // A character inside the signature (the last one carries padding bits).
    std::string forged = tokens.access;
    char& changed = forged[forged.size() - 5];
    changed = changed == 'A' ? 'B' : 'A';
    for (const std::string& token : {forged, std::string("abc"), std::string("a.b.c")}) {
        const auto reply = client.Get(Url("/v2/me"), Bearer(token));
        EXPECT_EQ(reply.status, 401) << token;
        EXPECT_EQ(reply.Json().at("error").as_string(), "invalid_token");
    }
    EXPECT_EQ(client.Get(Url("/v2/me")).status, 401);
}

class ShortTokenTest : public testsupport::VantroServerFixture {};

TEST_F(ShortTokenTest, AnExpiredAccessTokenIsRefusedAndRefreshStillWorks) {
    AddUser("ann", "pw");
    StartServer({"--access-token-ttl", "1"});
    const auto tokens = SignIn("ann", "pw");
    EXPECT_EQ(tokens.answer.at("expires_in").as_int64(), 1);
    // Expiry is the server's wall clock passing a second: nothing to await, so poll with a
    // deadline.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    long status = 200;
    while (status == 200 && std::chrono::steady_clock::now() < deadline) {
        status = client.Get(Url("/v2/me"), Bearer(tokens.access)).status;
        if (status == 200) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
    }
    EXPECT_EQ(status, 401);
    const auto refreshed = Refresh(tokens.refresh);
    ASSERT_EQ(refreshed.status, 200);
    const auto access = std::string(refreshed.Json().at("access_token").as_string());
    EXPECT_EQ(client.Get(Url("/v2/me"), Bearer(access)).status, 200);
}

}  // namespace
