#include <gtest/gtest.h>

#include <deque>
#include <set>

#include "ServerWorldFixture.h"

namespace servertest {
namespace {

using testsupport::Bearer;

class DemoSeedTest : public testsupport::VantroServerFixture {
protected:
    void SetUp() override {
        Admin({"seed", "demo", "--password-iterations", "1000"});
        StartServer();
        token = SignIn("demo", "demo").access;
    }

    boost::json::value GetJson(const std::string& path) {
        const auto reply = client.Get(Url(path), Bearer(token));
        EXPECT_EQ(reply.status, 200) << path << ": " << reply.body;
        return reply.Json();
    }

    std::string token;
};

TEST_F(DemoSeedTest, TheBigFolderComesInPagesOfTheDefaultSize) {
    // Walk the demo user's tree through the API down to the folder with 250 children.
    std::deque<std::string> folders;
    const auto accounts = GetJson("/v2/accounts?page_size=1000");
    for (const auto& account : accounts.as_array()) {
        const std::string accountId(account.at("id").as_string());
        const auto teams = GetJson("/v2/accounts/" + accountId + "/teams?page_size=1000");
        for (const auto& team : teams.as_array()) {
            const std::string teamId(team.at("id").as_string());
            const auto projects = GetJson("/v2/teams/" + teamId + "/projects?page_size=1000");
            for (const auto& project : projects.as_array()) {
                folders.emplace_back(project.at("root_asset_id").as_string());
            }
        }
    }
    std::string big;
    while (!folders.empty() && big.empty()) {
        const std::string folder = folders.front();
        folders.pop_front();
        const auto reply =
            client.Get(Url("/v2/assets/" + folder + "/children?page_size=1000"), Bearer(token));
        ASSERT_EQ(reply.status, 200);
        if (reply.Header("total") == "250") {
            big = folder;
        }
        const auto children = reply.Json();
        for (const auto& child : children.as_array()) {
            if (child.at("type").as_string() == "folder") {
                folders.emplace_back(child.at("id").as_string());
            }
        }
    }
    ASSERT_FALSE(big.empty()) << "no folder with 250 children in the demo data";

    std::vector<std::string> names;
    std::set<std::string> ids;
    const std::vector<std::size_t> sizes{100, 100, 50};
    for (int page = 1; page <= 3; ++page) {
        const auto reply = client.Get(
            Url("/v2/assets/" + big + "/children?page=" + std::to_string(page)), Bearer(token));
        ASSERT_EQ(reply.status, 200);
        EXPECT_EQ(reply.Header("page-number"), std::to_string(page));
        EXPECT_EQ(reply.Header("per-page"), "100");
        EXPECT_EQ(reply.Header("total-pages"), "3");
        EXPECT_EQ(reply.Header("total"), "250");
        const auto list = reply.Json();
        EXPECT_EQ(list.as_array().size(), sizes[static_cast<std::size_t>(page - 1)]);
        for (const auto& child : list.as_array()) {
            names.emplace_back(child.at("name").as_string());
            ids.emplace(child.at("id").as_string());
        }
    }
    EXPECT_EQ(ids.size(), 250u);  // No child twice, none missing across the pages.
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
}

}  // namespace
}  // namespace servertest
