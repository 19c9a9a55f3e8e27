// Review links against the real server: making one, adding files, adding one again.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <boost/json/value.hpp>

#include <vantrocommon/Guid.h>
#include <vantrosdk/AddAssetsToReviewLinkRequest.h>
#include <vantrosdk/AddAssetsToReviewLinkResponse.h>
#include <vantrosdk/CreateReviewLinkRequest.h>
#include <vantrosdk/CreateReviewLinkResponse.h>
#include <vantrosdk/ReviewLinks.h>

#include "SdkTestSupport.h"

namespace sdktest {
namespace {

using vantrocommon::Guid;
using vantrosdk::AddAssetsToReviewLinkRequest;
using vantrosdk::CreateReviewLinkRequest;

class ReviewLinksTest : public SdkWorldFixture {};

TEST_F(ReviewLinksTest, CreatesALinkWithItsUrl) {
    StartWorld();
    const auto client = Connect(Config());

    const auto response = Await(
        client->GetReviewLinks()->CreateReviewLink(CreateReviewLinkRequest(Guid(alpha), "Cut 3")));

    ASSERT_EQ(response->GetHTTPStatusCode(), 201);
    const auto& link = response->GetReviewLinkObject();
    ASSERT_TRUE(link.id.has_value());
    ASSERT_TRUE(link.url.has_value());
    EXPECT_EQ(link.url->rfind(Url("/r/"), 0), 0u) << *link.url;
    EXPECT_EQ(link.name, "Cut 3");
    EXPECT_EQ(link.projectId, Guid(alpha));
    EXPECT_EQ(link.itemCount, 0);
}

TEST_F(ReviewLinksTest, AddsAssetsAndAnAssetAddedAgainKeepsItsPlace) {
    StartWorld();
    const auto first = AdminId({"file", "add", "--parent", root, "--name", "b.mov", "--size", "1"});
    const auto second =
        AdminId({"file", "add", "--parent", root, "--name", "a.mov", "--size", "1"});
    const auto client = Connect(Config());
    const auto created = Await(
        client->GetReviewLinks()->CreateReviewLink(CreateReviewLinkRequest(Guid(alpha), "Cut")));
    ASSERT_TRUE(created->GetReviewLinkObject().id.has_value());
    const Guid link = *created->GetReviewLinkObject().id;

    const auto added = Await(client->GetReviewLinks()->AddAssetsToReviewLink(
        AddAssetsToReviewLinkRequest(link, {Guid(first)})));
    const auto addedMore = Await(client->GetReviewLinks()->AddAssetsToReviewLink(
        AddAssetsToReviewLinkRequest(link, {Guid(second)})));
    const auto addedAgain = Await(client->GetReviewLinks()->AddAssetsToReviewLink(
        AddAssetsToReviewLinkRequest(link, {Guid(first)})));

    EXPECT_EQ(added->GetHTTPStatusCode(), 200);
    EXPECT_EQ(added->GetReviewLinkObject().itemCount, 1);
    EXPECT_EQ(addedMore->GetReviewLinkObject().itemCount, 2);
    EXPECT_TRUE(addedAgain->IsSuccessful());
    EXPECT_EQ(addedAgain->GetReviewLinkObject().itemCount, 2);
    EXPECT_EQ(addedAgain->GetReviewLinkObject().id, link);
    const auto reply = ApiGet("/v2/review_links/" + link.AsString());
    ASSERT_EQ(reply.status, 200);
    std::vector<std::string> order;
    const auto shown = reply.Json();
    for (const auto& item : shown.at("items").as_array()) {
        order.emplace_back(item.at("asset_id").as_string());
    }
    EXPECT_EQ(order, (std::vector<std::string>{first, second}));
}

TEST_F(ReviewLinksTest, AnswersAFolderWithA400Response) {
    StartWorld();
    const auto client = Connect(Config());
    const auto created = Await(
        client->GetReviewLinks()->CreateReviewLink(CreateReviewLinkRequest(Guid(alpha), "Cut")));
    ASSERT_TRUE(created->GetReviewLinkObject().id.has_value());

    const auto response = Await(client->GetReviewLinks()->AddAssetsToReviewLink(
        AddAssetsToReviewLinkRequest(*created->GetReviewLinkObject().id, {Guid(root)})));

    EXPECT_EQ(response->GetHTTPStatusCode(), 400);
    EXPECT_FALSE(response->GetReviewLinkObject().id.has_value());
}

TEST_F(ReviewLinksTest, DoesNotRetryCreatingALink) {
    StartWorld();
    const auto recorder = Recorder();
    auto config = Config();
    config.SetTransport(recorder);
    vantrocommon::RetryPolicy policy;
    policy.initialDelay = std::chrono::milliseconds(1);
    config.SetRetryPolicy(policy);
    const auto client = Connect(config);
    InjectFault({{"route", "/v2/projects/*/review_links"}, {"status", 503}, {"count", 1}});

    const auto response = Await(
        client->GetReviewLinks()->CreateReviewLink(CreateReviewLinkRequest(Guid(alpha), "Cut")));

    EXPECT_EQ(response->GetHTTPStatusCode(), 503);
    EXPECT_EQ(recorder->Exchanges().size(), 1u);
}

}  // namespace
}  // namespace sdktest
