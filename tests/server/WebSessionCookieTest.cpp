#include <gtest/gtest.h>

#include "security/Random.h"
#include "web/WebSessionCookie.h"

namespace servertest {
namespace {

using vantroserver::web::WebSessionCookie;

class WebSessionCookieTest : public ::testing::Test {
protected:
    WebSessionCookie Sessions(const std::string& key) {
        return WebSessionCookie(key, [this] { return now; });
    }

    const std::string key = std::string(32, 'k');
    const std::string userId = vantroserver::security::NewId();
    vantroserver::store::Timestamp now{std::chrono::milliseconds(1'700'000'000'000)};
};

TEST_F(WebSessionCookieTest, ACookieNamesItsUserUntilItExpires) {
    const auto sessions = Sessions(key);
    const std::string header = "other=1; vantro_session=" + sessions.Issue(userId) + "; x=y";
    EXPECT_EQ(sessions.UserOf(header), userId);
    now += WebSessionCookie::kLifetime - std::chrono::seconds(1);
    EXPECT_EQ(sessions.UserOf(header), userId);
    now += std::chrono::seconds(1);
    EXPECT_FALSE(sessions.UserOf(header).has_value());
}

TEST_F(WebSessionCookieTest, AnotherKeysCookieOrAnEditedOneIsRefused) {
    const std::string value = Sessions(std::string(32, 'o')).Issue(userId);
    EXPECT_FALSE(Sessions(key).UserOf("vantro_session=" + value).has_value());
    const auto sessions = Sessions(key);
    std::string edited = sessions.Issue(userId);
    // Push the expiry one digit further out; the signature no longer covers it.
    const auto dot = edited.find('.');
    edited.insert(dot + 1, "9");
    EXPECT_FALSE(sessions.UserOf("vantro_session=" + edited).has_value());
    EXPECT_FALSE(sessions.UserOf("").has_value());
    EXPECT_FALSE(sessions.UserOf("vantro_session=").has_value());
}

TEST_F(WebSessionCookieTest, TheHeaderIsHttpOnlyLaxAndSecureOnlyUnderTls) {
    const auto sessions = Sessions(key);
    const auto plain = sessions.SetCookieHeader(userId, false);
    EXPECT_NE(plain.find("HttpOnly"), std::string::npos);
    EXPECT_NE(plain.find("SameSite=Lax"), std::string::npos);
    EXPECT_NE(plain.find("Max-Age=43200"), std::string::npos);
    EXPECT_EQ(plain.find("Secure"), std::string::npos);
    EXPECT_NE(sessions.SetCookieHeader(userId, true).find("; Secure"), std::string::npos);
}

}  // namespace
}  // namespace servertest
