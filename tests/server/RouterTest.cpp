#include <gtest/gtest.h>

#include "http/PathPattern.h"
#include "http/Router.h"

namespace vantroserver::http {
namespace {

using boost::beast::http::verb;

Response Named(const char* name) {
    return Response::Json(beasthttp::status::ok, {{"n", name}});
}

TEST(PathPattern, CapturesNamedSegmentsAndSkipsWildcards) {
    const PathPattern pattern("/v2/assets/{id}/*/x");
    const auto captures = pattern.Match({"v2", "assets", "abc", "anything", "x"});
    ASSERT_TRUE(captures);
    EXPECT_EQ(captures->at("id"), "abc");
    EXPECT_EQ(captures->size(), 1u);
    EXPECT_FALSE(pattern.Match({"v2", "assets", "abc", "anything"}));
    EXPECT_FALSE(pattern.Match({"v2", "assets", "abc", "anything", "y"}));
}

TEST(PathPattern, RefusesMalformedPatterns) {
    EXPECT_THROW(PathPattern("v2"), std::invalid_argument);
    EXPECT_THROW(PathPattern("/v2//x"), std::invalid_argument);
    EXPECT_THROW(PathPattern("/v2/{id"), std::invalid_argument);
    EXPECT_THROW(PathPattern("/v2/{}"), std::invalid_argument);
    EXPECT_TRUE(PathPattern("/").Match({}));
}

TEST(Router, FindsTheRouteForMethodAndPath) {
    Router router;
    router.Add(verb::get, "/v2/assets/{id}", Router::Access::Bearer,
               [](RequestContext&) { return Named("get"); });
    router.Add(verb::post, "/v2/assets/{id}/children", Router::Access::Bearer,
               [](RequestContext&) { return Named("post"); });
    const auto match = router.Find(verb::post, {"v2", "assets", "a1", "children"});
    const auto* found = std::get_if<Router::Found>(&match);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->route->pattern.Text(), "/v2/assets/{id}/children");
    EXPECT_EQ(found->captures.at("id"), "a1");
}

TEST(Router, AnswersWrongMethodWithTheAllowedOnes) {
    Router router;
    router.Add(verb::get, "/v2/x", Router::Access::Public,
               [](RequestContext&) { return Named("get"); });
    router.Add(verb::post, "/v2/x", Router::Access::Public,
               [](RequestContext&) { return Named("post"); });
    const auto match = router.Find(verb::put, {"v2", "x"});
    const auto* wrong = std::get_if<Router::WrongMethod>(&match);
    ASSERT_NE(wrong, nullptr);
    EXPECT_EQ(wrong->allowed, "GET, HEAD, POST");
}

TEST(Router, HeadFindsGetAndUnknownPathsAreNotFound) {
    Router router;
    router.Add(verb::get, "/static/{name}", Router::Access::Public,
               [](RequestContext&) { return Named("get"); });
    EXPECT_TRUE(std::holds_alternative<Router::Found>(router.Find(verb::head, {"static", "a"})));
    EXPECT_TRUE(std::holds_alternative<Router::NotFound>(router.Find(verb::get, {"static"})));
    EXPECT_TRUE(std::holds_alternative<Router::NotFound>(router.Find(verb::get, {"nope"})));
}

}  // namespace
}  // namespace vantroserver::http
