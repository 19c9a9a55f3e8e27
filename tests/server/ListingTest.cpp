#include <gtest/gtest.h>

#include <cctype>

#include "ServerWorldFixture.h"

namespace servertest {
namespace {

using testsupport::Bearer;
using testsupport::HttpClient;

class ListingTest : public ServerWorldFixture {
protected:
    void SetUp() override {
        BuildWorld();
        StartServer(extraServeArgs);
        token = SignIn("ann", "pw-ann").access;
        alphaRoot = RootOf(token, editors, alpha);
        FillAlpha(alphaRoot);
    }

    HttpClient::Reply Get(const std::string& path) { return client.Get(Url(path), Bearer(token)); }

    static void ExpectPaging(const HttpClient::Reply& reply, const std::string& page,
                             const std::string& totalPages, const std::string& perPage,
                             const std::string& total) {
        EXPECT_EQ(reply.Header("page-number"), page);
        EXPECT_EQ(reply.Header("total-pages"), totalPages);
        EXPECT_EQ(reply.Header("per-page"), perPage);
        EXPECT_EQ(reply.Header("total"), total);
    }

    std::vector<std::string> extraServeArgs;
    std::string token;
    std::string alphaRoot;
};

TEST_F(ListingTest, MeDescribesTheSignedInUser) {
    const auto reply = Get("/v2/me");
    ASSERT_EQ(reply.status, 200);
    EXPECT_EQ(reply.Header("content-type"), "application/json");
    EXPECT_EQ(reply.Json().at("id").as_string(), ann);
    EXPECT_EQ(reply.Json().at("username").as_string(), "ann");
}

TEST_F(ListingTest, AccountsAreTheUsersOwnByNameAndPaged) {
    const auto all = Get("/v2/accounts");
    ASSERT_EQ(all.status, 200) << all.body;
    EXPECT_EQ(Names(all.Json()), (std::vector<std::string>{"Acme", "Zeta"}));
    ExpectPaging(all, "1", "1", "100", "2");

    const auto second = Get("/v2/accounts?page=2&page_size=1");
    ASSERT_EQ(second.status, 200) << second.body;
    EXPECT_EQ(Names(second.Json()), (std::vector<std::string>{"Zeta"}));
    ExpectPaging(second, "2", "2", "1", "2");
}

TEST_F(ListingTest, AnAccountReportsItsStorageInBytes) {
    const auto reply = Get("/v2/accounts/" + acme);
    ASSERT_EQ(reply.status, 200) << reply.body;
    const auto account = reply.Json().as_object();
    EXPECT_EQ(account.at("name").as_string(), "Acme");
    EXPECT_EQ(account.at("storage_limit").as_int64(), 1000000);
    EXPECT_EQ(account.at("storage_used").as_int64(), 400);  // Files of 250, 100 and 50 bytes.
    EXPECT_EQ(Get("/v2/accounts/" + zeta).Json().at("storage_used").as_int64(), 0);
}

TEST_F(ListingTest, TeamsOfAnAccountAreThoseTheUserIsIn) {
    const auto reply = Get("/v2/accounts/" + acme + "/teams");
    ASSERT_EQ(reply.status, 200) << reply.body;
    EXPECT_EQ(Names(reply.Json()), (std::vector<std::string>{"Editors", "Sales"}));
    ExpectPaging(reply, "1", "1", "100", "2");
    EXPECT_EQ(reply.Json().at(0).at("account_id").as_string(), acme);
}

TEST_F(ListingTest, ProjectsOfATeamCarryTheirRootFolder) {
    const auto reply = Get("/v2/teams/" + editors + "/projects?page_size=1");
    ASSERT_EQ(reply.status, 200) << reply.body;
    EXPECT_EQ(Names(reply.Json()), (std::vector<std::string>{"Alpha"}));
    ExpectPaging(reply, "1", "2", "1", "2");
    const auto json = reply.Json();
    const auto& project = json.at(0);
    EXPECT_EQ(project.at("id").as_string(), alpha);
    EXPECT_EQ(project.at("team_id").as_string(), editors);

    const auto root = Get("/v2/assets/" + alphaRoot);
    ASSERT_EQ(root.status, 200);
    EXPECT_EQ(root.Json().at("type").as_string(), "folder");
    EXPECT_TRUE(root.Json().at("parent_id").is_null());
}

TEST_F(ListingTest, ChildrenComeByNameInPagesWithTheirHeaders) {
    std::vector<std::string> names;
    const std::vector<std::size_t> sizes{3, 3, 1};
    for (int page = 1; page <= 3; ++page) {
        const auto reply =
            Get("/v2/assets/" + alphaRoot + "/children?page_size=3&page=" + std::to_string(page));
        ASSERT_EQ(reply.status, 200) << reply.body;
        ExpectPaging(reply, std::to_string(page), "3", "3", "7");
        const auto pageNames = Names(reply.Json());
        EXPECT_EQ(pageNames.size(), sizes[static_cast<std::size_t>(page - 1)]);
        names.insert(names.end(), pageNames.begin(), pageNames.end());
    }
    EXPECT_EQ(names, (std::vector<std::string>{"a", "b", "c", "d", "e", "f", "g"}));

    const auto past = Get("/v2/assets/" + alphaRoot + "/children?page_size=3&page=4");
    EXPECT_EQ(past.status, 200);
    EXPECT_TRUE(past.Json().as_array().empty());
    ExpectPaging(past, "4", "3", "3", "7");
}

TEST_F(ListingTest, ChildrenCarryTypeParentSizeAndTime) {
    const auto reply = Get("/v2/assets/" + alphaRoot + "/children");
    ASSERT_EQ(reply.status, 200);
    const auto json = reply.Json();
    const auto& list = json.as_array();
    ASSERT_EQ(list.size(), 7u);
    // ISO 8601 UTC to the second: 2024-05-01T12:34:56Z.
    auto iso8601 = [](const std::string& text) {
        const std::string shape = "dddd-dd-ddTdd:dd:ddZ";
        if (text.size() != shape.size()) {
            return false;
        }
        for (std::size_t i = 0; i < shape.size(); ++i) {
            if (shape[i] == 'd' ? !std::isdigit(static_cast<unsigned char>(text[i]))
                                : text[i] != shape[i]) {
                return false;
            }
        }
        return true;
    };
    for (const auto& item : list) {
        const auto& child = item.as_object();
        EXPECT_EQ(child.at("parent_id").as_string(), alphaRoot);
        EXPECT_TRUE(iso8601(std::string(child.at("created_at").as_string())));
        EXPECT_NE(std::find(children.begin(), children.end(), child.at("id").as_string()),
                  children.end());
    }
    EXPECT_EQ(list[0].at("type").as_string(), "folder");  // a
    EXPECT_EQ(list[0].at("filesize").as_int64(), 0);
    EXPECT_EQ(list[1].at("type").as_string(), "file");  // b
    EXPECT_EQ(list[1].at("filesize").as_int64(), 100);
    EXPECT_EQ(list[3].at("filesize").as_int64(), 250);  // d
}

TEST_F(ListingTest, BadPagingValuesAre400) {
    for (const char* query : {"page=0", "page=-2", "page=x", "page_size=0", "page_size=100000",
                              "page_size=", "page=1e3"}) {
        const auto reply = Get("/v2/assets/" + alphaRoot + "/children?" + query);
        EXPECT_EQ(reply.status, 400) << query;
        EXPECT_EQ(reply.Json().at("error").as_string(), "invalid_request") << query;
    }
}

TEST_F(ListingTest, CreatingAFolderAnswers201AndListsIt) {
    const auto created = client.PostJson(Url("/v2/assets/" + alphaRoot + "/children"),
                                         {{"name", "b2"}, {"type", "folder"}}, Bearer(token));
    ASSERT_EQ(created.status, 201) << created.body;
    EXPECT_EQ(created.Json().at("name").as_string(), "b2");
    EXPECT_EQ(created.Json().at("type").as_string(), "folder");
    EXPECT_EQ(created.Json().at("parent_id").as_string(), alphaRoot);
    const auto list = Get("/v2/assets/" + alphaRoot + "/children");
    EXPECT_EQ(Names(list.Json()),
              (std::vector<std::string>{"a", "b", "b2", "c", "d", "e", "f", "g"}));
    EXPECT_EQ(list.Header("total"), "8");
}

TEST_F(ListingTest, CreatingAFolderRefusesBadBodies) {
    const std::string url = Url("/v2/assets/" + alphaRoot + "/children");
    const std::vector<std::pair<std::string, std::string>> bodies{
        {"not json", "application/json"},
        {"[1,2]", "application/json"},
        {R"({"name":"x","type":"folder"})", "text/plain"},
        {R"({"type":"folder"})", "application/json"},
        {R"({"name":"x","type":"file"})", "application/json"},
        {R"({"name":"","type":"folder"})", "application/json"},
        {R"({"name":"a/b","type":"folder"})", "application/json"},
        {R"({"name":7,"type":"folder"})", "application/json"},
        {R"({"name":"x","type":"folder","extra":1})", "application/json"},
    };
    for (const auto& [body, type] : bodies) {
        const auto reply = client.Post(url, body, type, Bearer(token));
        EXPECT_EQ(reply.status, 400) << body;
        EXPECT_EQ(reply.Json().at("error").as_string(), "invalid_request") << body;
    }
    // Inside a file: the parent must be a folder.
    const auto inFile = client.PostJson(Url("/v2/assets/" + children[4] + "/children"),
                                        {{"name", "x"}, {"type", "folder"}}, Bearer(token));
    EXPECT_EQ(inFile.status, 400) << inFile.body;
    EXPECT_EQ(Get("/v2/assets/" + alphaRoot + "/children").Header("total"), "7");
}

TEST_F(ListingTest, ASharedProjectShowsItsAccountWithoutMembership) {
    const auto carolToken = SignIn("carol", "pw-carol").access;
    const auto accounts = client.Get(Url("/v2/accounts"), Bearer(carolToken));
    ASSERT_EQ(accounts.status, 200);
    ASSERT_EQ(Names(accounts.Json()), (std::vector<std::string>{"Acme"}));
    EXPECT_FALSE(accounts.Json().at(0).at("member").as_bool());

    const auto shared =
        client.Get(Url("/v2/accounts/" + acme + "/shared_projects"), Bearer(carolToken));
    ASSERT_EQ(shared.status, 200) << shared.body;
    EXPECT_EQ(Names(shared.Json()), (std::vector<std::string>{"Beta"}));
    ExpectPaging(shared, "1", "1", "100", "1");
    const auto teams = client.Get(Url("/v2/accounts/" + acme + "/teams"), Bearer(carolToken));
    EXPECT_EQ(teams.status, 200);
    EXPECT_TRUE(teams.Json().as_array().empty());
    EXPECT_EQ(teams.Header("total"), "0");

    const std::string betaRoot(shared.Json().at(0).at("root_asset_id").as_string());
    EXPECT_EQ(client.Get(Url("/v2/assets/" + betaRoot), Bearer(carolToken)).status, 200);
    EXPECT_EQ(client.Get(Url("/v2/assets/" + alphaRoot), Bearer(carolToken)).status, 404);
}

class SmallPageTest : public ListingTest {
protected:
    SmallPageTest() { extraServeArgs = {"--page-size", "2"}; }
};

TEST_F(SmallPageTest, TheServersPageSizeIsTheDefault) {
    const auto reply = Get("/v2/assets/" + alphaRoot + "/children");
    ASSERT_EQ(reply.status, 200);
    EXPECT_EQ(Names(reply.Json()), (std::vector<std::string>{"a", "b"}));
    ExpectPaging(reply, "1", "4", "2", "7");
}

}  // namespace
}  // namespace servertest
