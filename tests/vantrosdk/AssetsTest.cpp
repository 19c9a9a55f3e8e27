// Children of a folder against the real server: the asset records and the page asked for.
#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <string>

#include <vantrocommon/Guid.h>
#include <vantrosdk/Assets.h>
#include <vantrosdk/GetChildAssetsRequest.h>
#include <vantrosdk/GetChildAssetsResponse.h>

#include "SdkTestSupport.h"

namespace sdktest {
namespace {

using vantrocommon::Guid;
using vantrosdk::GetChildAssetsRequest;

class AssetsTest : public SdkWorldFixture {};

TEST_F(AssetsTest, ReadsTheChildrenOfAFolder) {
    StartWorld();
    const auto folder = AdminId({"folder", "add", "--parent", root, "--name", "Dailies"});
    const auto file =
        AdminId({"file", "add", "--parent", root, "--name", "cut.mov", "--size", "1234"});
    const auto client = Connect(Config());

    const auto response =
        Await(client->GetAssets()->GetChildAssets(GetChildAssetsRequest(Guid(root))));

    ASSERT_TRUE(response->IsSuccessful());
    const auto& assets = response->GetChildAssetsObject();
    ASSERT_EQ(assets.size(), 2u);
    // By name: "Dailies" before "cut.mov".
    EXPECT_EQ(assets[0].id, Guid(folder));
    EXPECT_EQ(assets[0].type, "folder");
    EXPECT_EQ(assets[0].filesize, 0u);
    EXPECT_EQ(assets[1].id, Guid(file));
    EXPECT_EQ(assets[1].name, "cut.mov");
    EXPECT_EQ(assets[1].type, "file");
    EXPECT_EQ(assets[1].filesize, 1234u);
    EXPECT_EQ(assets[1].parentId, Guid(root));
    EXPECT_EQ(assets[1].projectId, Guid(alpha));
    EXPECT_FALSE(assets[1].version.has_value());
}

TEST_F(AssetsTest, AsksForTheSecondPageOfTwoHundredAndFiftyChildren) {
    StartWorld();
    for (int i = 0; i < 250; ++i) {
        char name[16];
        std::snprintf(name, sizeof(name), "f%03d", i);
        const auto reply =
            client.PostJson(Url("/v2/assets/" + root + "/children"),
                            {{"name", name}, {"type", "folder"}}, testsupport::Bearer(token));
        ASSERT_EQ(reply.status, 201) << reply.body;
    }
    const auto client = Connect(Config());
    GetChildAssetsRequest request{Guid(root)};
    request.SetPageNumber(2);

    const auto response = Await(client->GetAssets()->GetChildAssets(request));

    ASSERT_TRUE(response->IsSuccessful());
    EXPECT_EQ(response->GetPageNumber(), 2);
    EXPECT_EQ(response->GetTotalPages(), 3);
    EXPECT_EQ(response->GetHeader().at("TOTAL"), "250");
    const auto& assets = response->GetChildAssetsObject();
    ASSERT_EQ(assets.size(), 100u);
    EXPECT_EQ(assets.front().name, "f100");
    EXPECT_EQ(assets.back().name, "f199");
    std::set<Guid> ids;
    for (const auto& asset : assets) {
        ASSERT_TRUE(asset.id.has_value());
        ids.insert(*asset.id);
    }
    EXPECT_EQ(ids.size(), 100u);
}

TEST_F(AssetsTest, AnswersAPageFarPastTheLastWithAnEmptyList) {
    StartWorld();
    const auto client = Connect(Config());
    GetChildAssetsRequest request{Guid(root)};
    request.SetPageNumber(9);

    const auto response = Await(client->GetAssets()->GetChildAssets(request));

    ASSERT_TRUE(response->IsSuccessful());
    EXPECT_TRUE(response->GetChildAssetsObject().empty());
    EXPECT_EQ(response->GetPageNumber(), 9);
    EXPECT_EQ(response->GetTotalPages(), 1);
}

}  // namespace
}  // namespace sdktest
