#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "security/Random.h"
#include "store/DataDirectory.h"
#include "support/VantroServerProcess.h"

namespace storetest {
namespace {

using testsupport::VantroServerProcess;
using vantroserver::store::PageRequest;

// Runs the real executable against a data directory made by `vantro-server init`.
class AdminCommandsTest : public ::testing::Test {
protected:
    std::string AddUser(const std::string& username) {
        return server.Admin({"user", "add", "--username", username, "--password", "pw-" + username,
                             "--password-iterations", "1000"});
    }

    std::shared_ptr<vantroserver::store::Store> OpenStore() {
        vantroserver::store::StoreOptions options;
        options.passwordIterations = 1000;
        return vantroserver::store::DataDirectory::Open(server.DataDir(), options).GetStore();
    }

    /// Expects exit code 1, nothing on stdout and a message on stderr containing `fragment`.
    void ExpectRefused(std::vector<std::string> args, const std::string& fragment) {
        const auto result = server.Run(args);
        EXPECT_EQ(result.exitCode, 1) << result.out << result.err;
        EXPECT_TRUE(result.out.empty()) << result.out;
        EXPECT_NE(result.err.find(fragment), std::string::npos) << result.err;
    }

    static std::vector<std::string> Lines(const std::string& text) {
        std::vector<std::string> lines;
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);) {
            lines.push_back(line);
        }
        return lines;
    }

    VantroServerProcess server;
};

TEST_F(AdminCommandsTest, InitMadeTheDataDirectoryAndRefusesToRunTwice) {
    EXPECT_TRUE(std::filesystem::exists(server.DataDir() / "vantro.db"));
    EXPECT_TRUE(OpenStore()->Clients().Exists("vantrokelui-desktop"));
    ExpectRefused({"init"}, "already holds");
}

TEST_F(AdminCommandsTest, UserAddPrintsTheNewId) {
    const std::string id = AddUser("ann");
    EXPECT_TRUE(vantroserver::security::IsWellFormedId(id)) << id;
    const auto user = OpenStore()->Users().Authenticate("ann", "pw-ann");
    ASSERT_TRUE(user.has_value());
    EXPECT_EQ(user->id, id);
}

TEST_F(AdminCommandsTest, UserAddHashesWithTheSlowDefaultUnlessTold) {
    server.Admin({"user", "add", "--username", "slow", "--password", "pw", "--name", "Slow Sam",
                  "--email", "sam@example.com"});
    auto database = vantroserver::store::Database::Open(server.DataDir() / "vantro.db", false);
    auto lease = database->Acquire();
    auto statement = lease->Prepare("SELECT password_hash, name, email FROM users");
    ASSERT_TRUE(statement.Step());
    EXPECT_EQ(statement.ColumnText(0).rfind("pbkdf2-sha256$600000$", 0), 0u)
        << statement.ColumnText(0);
    EXPECT_EQ(statement.ColumnText(1), "Slow Sam");
    EXPECT_EQ(statement.ColumnText(2), "sam@example.com");
}

TEST_F(AdminCommandsTest, BadInputExitsWithOneAndAMessage) {
    AddUser("ann");
    ExpectRefused(
        {"user", "add", "--username", "ann", "--password", "x", "--password-iterations", "1000"},
        "taken");
    ExpectRefused({"user", "add", "--username", "ann"}, "--password");
    ExpectRefused(
        {"account", "add", "--name", "Acme", "--owner", "nobody", "--storage-limit", "10"},
        "no user nobody");
    ExpectRefused({"account", "add", "--name", "Acme", "--owner", "ann", "--storage-limit", "lots"},
                  "--storage-limit");
    ExpectRefused({"account", "add", "--name", "Acme", "--owner", "ann", "--storage-limit", "-1"},
                  "--storage-limit");
    ExpectRefused({"team", "add", "--account", "not-an-id", "--name", "T"}, "no account");
    ExpectRefused({"folder", "add", "--parent", vantroserver::security::NewId(), "--name", "F"},
                  "no asset");
    ExpectRefused({"frobnicate"}, "");
    ExpectRefused({"user"}, "");
}

TEST_F(AdminCommandsTest, BuildsATreeThatTheStoreSees) {
    const std::string ann = AddUser("ann");
    const std::string bob = AddUser("bob");
    const std::string account = server.Admin(
        {"account", "add", "--name", "Acme", "--owner", "ann", "--storage-limit", "1000"});
    EXPECT_EQ(server.Admin({"account", "member", "add", "--account", account, "--user", bob}), bob);
    const std::string team = server.Admin({"team", "add", "--account", account, "--name", "Editors",
                                           "--member", "ann", "--member", "bob"});
    const auto projectLines =
        Lines(server.Admin({"project", "add", "--team", team, "--name", "Alpha"}));
    ASSERT_EQ(projectLines.size(), 2u);
    const std::string& project = projectLines[0];
    const std::string& root = projectLines[1];
    const std::string folder =
        server.Admin({"folder", "add", "--parent", root, "--name", "Footage"});
    const std::string file =
        server.Admin({"file", "add", "--parent", folder, "--name", "a.mov", "--size", "600"});
    ExpectRefused({"file", "add", "--parent", folder, "--name", "b.mov", "--size", "401"},
                  "storage limit");

    auto store = OpenStore();
    EXPECT_EQ(store->Accounts().Find(account)->storageUsed, 600);
    EXPECT_TRUE(store->Teams().IsMember(team, ann));
    EXPECT_TRUE(store->Teams().IsMember(team, bob));
    EXPECT_EQ(store->Projects().Find(project)->rootAssetId, root);
    const auto children = store->Assets().Children(folder, PageRequest{});
    ASSERT_EQ(children.items.size(), 1u);
    EXPECT_EQ(children.items[0].id, file);
    EXPECT_EQ(children.items[0].filesize, 600);
}

TEST_F(AdminCommandsTest, ShareProjectMakesTheAccountVisibleThroughSharesOnly) {
    AddUser("ann");
    const std::string carol = AddUser("carol");
    const std::string account = server.Admin(
        {"account", "add", "--name", "Acme", "--owner", "ann", "--storage-limit", "1000"});
    const std::string team =
        server.Admin({"team", "add", "--account", account, "--name", "Editors"});
    const std::string project =
        Lines(server.Admin({"project", "add", "--team", team, "--name", "Beta"}))[0];
    EXPECT_EQ(server.Admin({"share", "project", "--project", project, "--user", "carol"}), carol);
    ExpectRefused({"share", "project", "--project", project, "--user", "carol"}, "already");

    auto store = OpenStore();
    const auto accounts = store->Accounts().ListForUser(carol, PageRequest{});
    ASSERT_EQ(accounts.items.size(), 1u);
    EXPECT_FALSE(accounts.items[0].member);
    EXPECT_EQ(store->Projects().ListSharedWith(carol, account, PageRequest{}).items.size(), 1u);
    EXPECT_EQ(store->Teams().ListForUser(carol, account, PageRequest{}).total, 0u);
}

TEST_F(AdminCommandsTest, ClientAddRegistersAnId) {
    EXPECT_EQ(server.Admin({"client", "add", "--id", "review-tool"}), "review-tool");
    EXPECT_TRUE(OpenStore()->Clients().Exists("review-tool"));
    ExpectRefused({"client", "add", "--id", "review-tool"}, "already");
}

TEST_F(AdminCommandsTest, SeedDemoPrintsCredentialsAndMakesTheDemoTree) {
    const std::string output = server.Admin({"seed", "demo", "--password-iterations", "1000"});
    std::map<std::string, std::string> values;
    for (const auto& line : Lines(output)) {
        const auto equals = line.find('=');
        ASSERT_NE(equals, std::string::npos) << line;
        values[line.substr(0, equals)] = line.substr(equals + 1);
    }
    EXPECT_EQ(values["demo_username"], "demo");
    EXPECT_EQ(values["demo_password"], "demo");

    auto store = OpenStore();
    const auto demo = store->Users().Authenticate("demo", "demo");
    ASSERT_TRUE(demo.has_value());
    EXPECT_EQ(demo->id, values["demo_user_id"]);
    EXPECT_TRUE(store->Users().Authenticate(values["second_username"], values["second_password"]));

    const auto accounts = store->Accounts().ListForUser(demo->id, PageRequest{});
    EXPECT_EQ(accounts.total, 2u);
    const auto teams = store->Teams().ListForUser(demo->id, values["account_id"], PageRequest{});
    EXPECT_GE(teams.total, 2u);
    EXPECT_EQ(store->Projects()
                  .ListSharedWith(demo->id, values["second_account_id"], PageRequest{})
                  .total,
              1u);

    const auto dailies = store->Assets().Children(values["folder_dailies_id"], PageRequest{0, 100});
    EXPECT_EQ(dailies.total, 250u);
    bool sawFolder = false, sawFile = false, sawStack = false;
    for (std::uint64_t offset = 0; offset < dailies.total; offset += 100) {
        for (const auto& child :
             store->Assets()
                 .Children(values["folder_dailies_id"], PageRequest{offset, 100})
                 .items) {
            sawFolder |= child.type == vantroserver::store::AssetType::Folder;
            sawFile |= child.type == vantroserver::store::AssetType::File;
            sawStack |= child.type == vantroserver::store::AssetType::VersionStack;
        }
    }
    EXPECT_TRUE(sawFolder && sawFile && sawStack);
    const auto stack = store->Assets().Find(values["version_stack_rough_cut_id"]);
    ASSERT_TRUE(stack.has_value());
    EXPECT_EQ(store->Assets().Children(stack->id, PageRequest{}).total, 3u);
    EXPECT_GT(store->Accounts().Find(values["account_id"])->storageUsed, 0);

    ExpectRefused({"seed", "demo", "--password-iterations", "1000"}, "taken");
}

TEST_F(AdminCommandsTest, ServeRefusesBadOptionsBeforeStarting) {
    ExpectRefused({"serve", "--listen", "127.0.0.1"}, "--listen");
    ExpectRefused({"serve", "--listen", "127.0.0.1:99999"}, "--listen");
    ExpectRefused({"serve", "--listen", "127.0.0.1:0", "--rate-limit", "10"}, "--rate-limit");
    ExpectRefused({"serve", "--listen", "127.0.0.1:0", "--rate-limit", "0/1000"}, "--rate-limit");
    ExpectRefused({"serve", "--listen", "127.0.0.1:0", "--page-size", "0"}, "--page-size");
    ExpectRefused({"serve", "--listen", "127.0.0.1:0", "--tls-cert", "/nonexistent"}, "--tls-cert");
}

}  // namespace
}  // namespace storetest
