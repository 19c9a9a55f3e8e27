#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>

#include "ReviewLinkFixture.h"
#include "security/Random.h"

namespace servertest {
namespace {

using testsupport::Bearer;

class ReviewLinkTest : public ReviewLinkFixture {};

/// Whether `url` is `base` + `/r/` + 43 base64url characters (256 random bits).
bool IsLinkUrl(const std::string& url, const std::string& base) {
    const std::string prefix = base + "/r/";
    if (url.rfind(prefix, 0) != 0 || url.size() != prefix.size() + 43) {
        return false;
    }
    return std::all_of(
        url.begin() + static_cast<std::ptrdiff_t>(prefix.size()), url.end(),
        [](char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_'; });
}

TEST_F(ReviewLinkTest, ALinkIsCreatedWithAnAbsoluteUrlOnTheListeningAddress) {
    const auto reply = CreateLink(alpha, "First cut");
    ASSERT_EQ(reply.status, 201) << reply.body;
    const auto link = reply.Json().as_object();
    EXPECT_EQ(link.at("name").as_string(), "First cut");
    EXPECT_EQ(link.at("project_id").as_string(), alpha);
    EXPECT_EQ(link.at("item_count").as_int64(), 0);
    EXPECT_TRUE(vantroserver::security::IsWellFormedId(link.at("id").as_string()));
    EXPECT_FALSE(link.at("created_at").as_string().empty());
    const std::string url(link.at("url").as_string());
    EXPECT_TRUE(IsLinkUrl(url, "http://127.0.0.1:" + std::to_string(server.Port()))) << url;
    EXPECT_NE(NewLink("Second").at("url").as_string(), url);
}

TEST_F(ReviewLinkTest, CreationRefusesBadBodiesAndInvisibleProjects) {
    EXPECT_EQ(CreateLink(alpha, "").status, 400);
    EXPECT_EQ(client
                  .PostJson(Url("/v2/projects/" + alpha + "/review_links"),
                            boost::json::object{{"name", "x"}, {"extra", 1}}, Bearer(token))
                  .status,
              400);
    EXPECT_EQ(client
                  .PostJson(Url("/v2/projects/" + alpha + "/review_links"),
                            boost::json::object{{"name", 5}}, Bearer(token))
                  .status,
              400);
    const auto hidden = CreateLink(secret, "x");
    EXPECT_EQ(hidden.status, 404);
    EXPECT_EQ(hidden.Json().at("error").as_string(), "not_found");
    EXPECT_EQ(CreateLink(vantroserver::security::NewId(), "x").status, 404);
    EXPECT_EQ(CreateLink("not-an-id", "x").status, 404);
    EXPECT_EQ(client
                  .PostJson(Url("/v2/projects/" + alpha + "/review_links"),
                            boost::json::object{{"name", "x"}})
                  .status,
              401);
}

TEST_F(ReviewLinkTest, FilesAndStacksAreAddedOnceAndFoldersAreRefused) {
    const auto link = NewLink();
    const std::string linkId(link.at("id").as_string());
    const auto file = AddFile(alphaRoot, "a.mp4", Bytes(100, 1));
    const auto stack = AddStack("shot.mp4");
    const auto v1 = AddVersion(stack, "shot.mp4", Bytes(50, 2));
    const auto folder = AdminId({"folder", "add", "--parent", alphaRoot, "--name", "Footage"});

    const auto added = AddAssets(linkId, {file, stack});
    ASSERT_EQ(added.status, 200) << added.body;
    auto items = added.Json().at("items").as_array();
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items[0].at("asset_id").as_string(), file);
    EXPECT_EQ(items[0].at("type").as_string(), "file");
    EXPECT_TRUE(items[0].at("version_stack_id").is_null());
    EXPECT_EQ(items[1].at("asset_id").as_string(), stack);
    EXPECT_EQ(items[1].at("version_stack_id").as_string(), stack);
    EXPECT_EQ(items[1].at("current").at("id").as_string(), v1);
    EXPECT_EQ(added.Json().at("item_count").as_int64(), 2);

    // Again: not an error, nothing doubled.
    const auto again = AddAssets(linkId, {stack, file});
    ASSERT_EQ(again.status, 200) << again.body;
    EXPECT_EQ(again.Json().at("items").as_array().size(), 2u);

    const auto refused = AddAssets(linkId, {folder});
    EXPECT_EQ(refused.status, 400) << refused.body;
    EXPECT_EQ(refused.Json().at("error").as_string(), "invalid_request");
    EXPECT_EQ(AddAssets(linkId, {"not-an-id"}).status, 404);
    EXPECT_EQ(AddAssets(linkId, {vantroserver::security::NewId()}).status, 404);
    EXPECT_EQ(
        client
            .PostJson(Url("/v2/review_links/" + linkId + "/assets"),
                      boost::json::object{{"asset_ids", boost::json::array{1}}}, Bearer(token))
            .status,
        400);
}

TEST_F(ReviewLinkTest, AssetsOutsideTheLinksProjectAre404) {
    const auto link = NewLink();
    const std::string linkId(link.at("id").as_string());
    // Beta is ann's too, but another project; Secret she cannot see at all.
    const auto betaFile = AddFile(RootOf(token, editors, beta), "b.mp4", Bytes(10, 3));
    const auto secretRoot = Store()->Projects().Find(secret)->rootAssetId;
    const auto secretFile = StoreFile(secretRoot, "s.mp4", Bytes(10, 4));
    EXPECT_EQ(AddAssets(linkId, {betaFile}).status, 404);
    EXPECT_EQ(AddAssets(linkId, {secretFile}).status, 404);
    const auto read = client.Get(Url("/v2/review_links/" + linkId), Bearer(token));
    ASSERT_EQ(read.status, 200);
    EXPECT_TRUE(read.Json().at("items").as_array().empty());
}

TEST_F(ReviewLinkTest, LinksOfProjectsOthersCannotSeeAre404ToThem) {
    const auto link = NewLink();
    const std::string linkId(link.at("id").as_string());
    const auto file = AddFile(alphaRoot, "a.mp4", Bytes(10, 5));
    const std::string bobToken = SignIn("bob", "pw-bob").access;
    EXPECT_EQ(client.Get(Url("/v2/review_links/" + linkId), Bearer(bobToken)).status, 404);
    EXPECT_EQ(AddAssets(linkId, {file}, bobToken).status, 404);
    EXPECT_EQ(client.Get(Url("/v2/projects/" + alpha + "/review_links"), Bearer(bobToken)).status,
              404);
    EXPECT_EQ(CreateLink(alpha, "mine", bobToken).status, 404);
    // Carol sees Beta through a share, so she may manage its links.
    const std::string carolToken = SignIn("carol", "pw-carol").access;
    EXPECT_EQ(CreateLink(beta, "for carol", carolToken).status, 201);
    EXPECT_EQ(client.Get(Url("/v2/review_links/" + vantroserver::security::NewId()), Bearer(token))
                  .status,
              404);
}

TEST_F(ReviewLinkTest, AProjectsLinksArePagedByNameThenId) {
    for (const char* name : {"c", "a", "b"}) {
        NewLink(name);
    }
    const auto first =
        client.Get(Url("/v2/projects/" + alpha + "/review_links?page_size=2"), Bearer(token));
    ASSERT_EQ(first.status, 200) << first.body;
    EXPECT_EQ(Names(first.Json()), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(first.Header("total"), "3");
    EXPECT_EQ(first.Header("total-pages"), "2");
    EXPECT_EQ(first.Header("per-page"), "2");
    const auto second = client.Get(
        Url("/v2/projects/" + alpha + "/review_links?page=2&page_size=2"), Bearer(token));
    EXPECT_EQ(Names(second.Json()), (std::vector<std::string>{"c"}));
    EXPECT_EQ(second.Header("page-number"), "2");
    EXPECT_EQ(
        client.Get(Url("/v2/projects/" + alpha + "/review_links?page=0"), Bearer(token)).status,
        400);
    EXPECT_EQ(client.Get(Url("/v2/projects/" + beta + "/review_links"), Bearer(token)).body, "[]");
}

TEST_F(ReviewLinkTest, AStackedItemAlwaysReadsAsItsNewestVersion) {
    const std::string linkId(NewLink().at("id").as_string());
    const auto stack = AddStack("shot.mp4");
    const auto v1 = AddVersion(stack, "shot.mp4", Bytes(10, 6));
    ASSERT_EQ(AddAssets(linkId, {v1}).status, 200);
    const auto v2 = AddVersion(stack, "shot.mp4", Bytes(12, 7));
    const auto read = client.Get(Url("/v2/review_links/" + linkId), Bearer(token));
    ASSERT_EQ(read.status, 200) << read.body;
    const auto item = read.Json().at("items").at(0);
    EXPECT_EQ(item.at("asset_id").as_string(), v1);
    EXPECT_EQ(item.at("current").at("id").as_string(), v2);
    EXPECT_EQ(item.at("current").at("version").as_int64(), 2);
    EXPECT_EQ(item.at("version_count").as_int64(), 2);
}

class PublicUrlTest : public ReviewLinkFixture {
protected:
    PublicUrlTest() { extraServeArgs = {"--public-url", "https://review.example.test/base/"}; }
};

TEST_F(PublicUrlTest, TheConfiguredPublicUrlIsTheBaseOfLinks) {
    const std::string url(NewLink().at("url").as_string());
    EXPECT_TRUE(IsLinkUrl(url, "https://review.example.test/base")) << url;
}

TEST(PublicUrlOption, AUrlWithAQueryIsRefused) {
    testsupport::VantroServerProcess server;
    const auto result =
        server.Run({"serve", "--listen", "127.0.0.1:0", "--public-url", "http://host/?a=b"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.err.find("--public-url"), std::string::npos) << result.err;
}

}  // namespace
}  // namespace servertest
