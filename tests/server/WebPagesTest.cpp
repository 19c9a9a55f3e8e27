#include <gtest/gtest.h>

#include "ReviewLinkFixture.h"
#include "security/Random.h"

namespace servertest {
namespace {

using testsupport::HttpClient;

class WebPagesTest : public ReviewLinkFixture {
protected:
    std::string LinksPage(const std::string& project) {
        return "/projects/" + project + "/review-links";
    }

    /// Signs in through the web form; returns the cookie pair `vantro_session=...`.
    std::string WebSignIn(const std::string& username, const std::string& password,
                          const std::string& next = "/") {
        const auto reply = client.PostForm(
            Url("/signin"), {{"username", username}, {"password", password}, {"next", next}});
        EXPECT_EQ(reply.status, 303) << reply.body;
        const std::string setCookie = reply.Header("set-cookie");
        return setCookie.substr(0, setCookie.find(';'));
    }

    static bool Contains(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }
};

TEST_F(WebPagesTest, WithoutASessionTheLinksPageSendsToTheSignInForm) {
    const auto reply = client.Get(Url(LinksPage(alpha)));
    EXPECT_EQ(reply.status, 302);
    EXPECT_EQ(reply.Header("location"), "/signin?next=" + LinksPage(alpha));
    const auto form = client.Get(Url(reply.Header("location")));
    ASSERT_EQ(form.status, 200);
    EXPECT_TRUE(Contains(form.body, "action=\"/signin\""));
    EXPECT_TRUE(Contains(form.body, "value=\"" + LinksPage(alpha) + "\""));
    EXPECT_EQ(form.Header("cache-control"), "no-cache");
}

TEST_F(WebPagesTest, SigningInSetsAnHttpOnlyLaxCookieAndReturnsToThePage) {
    const auto reply = client.PostForm(
        Url("/signin"), {{"username", "ann"}, {"password", "pw-ann"}, {"next", LinksPage(alpha)}});
    ASSERT_EQ(reply.status, 303) << reply.body;
    EXPECT_EQ(reply.Header("location"), LinksPage(alpha));
    const std::string cookie = reply.Header("set-cookie");
    EXPECT_EQ(cookie.rfind("vantro_session=", 0), 0u) << cookie;
    EXPECT_TRUE(Contains(cookie, "HttpOnly"));
    EXPECT_TRUE(Contains(cookie, "SameSite=Lax"));
    EXPECT_TRUE(Contains(cookie, "Max-Age="));
    EXPECT_FALSE(Contains(cookie, "Secure"));  // Plain http here.
}

TEST_F(WebPagesTest, AWrongPasswordShowsTheFormAgainWithoutACookie) {
    const auto reply =
        client.PostForm(Url("/signin"), {{"username", "ann"}, {"password", "nope"}, {"next", "/"}});
    EXPECT_EQ(reply.status, 200);
    EXPECT_TRUE(Contains(reply.body, "Wrong username or password."));
    EXPECT_TRUE(reply.Header("set-cookie").empty());
}

TEST_F(WebPagesTest, OnlyLocalPathsAreFollowedAfterSigningIn) {
    for (const char* next : {"https://elsewhere.test/", "//elsewhere.test/x", "/\\elsewhere"}) {
        const auto reply = client.PostForm(
            Url("/signin"), {{"username", "ann"}, {"password", "pw-ann"}, {"next", next}});
        EXPECT_EQ(reply.status, 303);
        EXPECT_EQ(reply.Header("location"), "/") << next;
    }
}

TEST_F(WebPagesTest, TheLinksPageListsTheProjectsLinksForASignedInUser) {
    const auto link = NewLink("Director's <cut>");
    const auto stack = AddStack("shot.mp4");
    AddVersion(stack, "shot.mp4", Bytes(10, 1));
    AddVersion(stack, "shot.mp4", Bytes(10, 2));
    ASSERT_EQ(AddAssets(std::string(link.at("id").as_string()), {stack}).status, 200);
    NewLink("Empty");

    const auto cookie = WebSignIn("ann", "pw-ann");
    const auto page = client.Get(Url(LinksPage(alpha)), {{"Cookie", cookie}});
    ASSERT_EQ(page.status, 200) << page.body;
    EXPECT_EQ(page.Header("cache-control"), "no-cache");
    EXPECT_FALSE(page.Header("content-security-policy").empty());
    EXPECT_TRUE(Contains(page.body, "Director&#39;s &lt;cut&gt;"));
    EXPECT_TRUE(Contains(page.body, std::string(link.at("url").as_string())));
    EXPECT_TRUE(Contains(page.body, "shot.mp4"));
    EXPECT_TRUE(Contains(page.body, "(v2)"));
    EXPECT_TRUE(Contains(page.body, "Empty"));
    EXPECT_LT(page.body.find("Director"), page.body.find("Empty"));  // By name.
}

TEST_F(WebPagesTest, AProjectTheUserCannotSeeIs404) {
    const auto cookie = WebSignIn("carol", "pw-carol");
    EXPECT_EQ(client.Get(Url(LinksPage(alpha)), {{"Cookie", cookie}}).status, 404);
    EXPECT_EQ(client.Get(Url(LinksPage(beta)), {{"Cookie", cookie}}).status, 200);
    EXPECT_EQ(
        client.Get(Url(LinksPage(vantroserver::security::NewId())), {{"Cookie", cookie}}).status,
        404);
}

TEST_F(WebPagesTest, AForgedOrAlteredCookieIsNoSession) {
    const auto cookie = WebSignIn("carol", "pw-carol");
    // Carol's cookie, rewritten to name ann: the signature no longer matches.
    const auto dot = cookie.find('.');
    const std::string forged = "vantro_session=" + ann + cookie.substr(dot);
    EXPECT_EQ(client.Get(Url(LinksPage(alpha)), {{"Cookie", forged}}).status, 302);
    EXPECT_EQ(client.Get(Url(LinksPage(alpha)), {{"Cookie", cookie + "x"}}).status, 302);
    EXPECT_EQ(client.Get(Url(LinksPage(alpha)), {{"Cookie", "vantro_session=garbage"}}).status,
              302);
}

TEST_F(WebPagesTest, TheLegalPagesArePlainHtml) {
    for (const char* path : {"/legal/terms", "/legal/privacy"}) {
        const auto page = client.Get(Url(path));
        EXPECT_EQ(page.status, 200) << path;
        EXPECT_EQ(page.Header("content-type"), "text/html; charset=utf-8");
        EXPECT_TRUE(Contains(page.body, "<h1>"));
    }
}

}  // namespace
}  // namespace servertest
