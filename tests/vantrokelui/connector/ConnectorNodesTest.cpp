// The SDK back end's nodes and entries over a real VantroClient whose transport is an
// in-memory service, under virtual time: the SDK, the queues and the continuations all run on
// the manual executor, so each page arrives when the test moves time, and every delivery to
// the main thread is pumped by the test. What the real server cannot produce (asset types it
// never sends, an account without a plan, storage above the limit) is tested here.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <kelcore/string/String.h>
#include <kelcore/threads/VirtualTime.h>
#include <kelcore/utility/Guid.h>
#include <vantrokelui/model/connector/FetchAccountChildrenQueue.h>
#include <vantrokelui/model/connector/UserFunctions.h>
#include <vantrokelui/model/connector/VantroSdkAccount.h>
#include <vantrokelui/model/connector/VantroSdkFile.h>
#include <vantrokelui/model/connector/VantroSdkFolder.h>
#include <vantrokelui/model/connector/VantroSdkProject.h>
#include <vantrokelui/model/connector/VantroSdkUser.h>
#include <vantrokelui/model/connector/VantroSdkVersionStack.h>
#include <vantrokelui/model/connector/VantroSdkWorkspace.h>
#include <vantrokelui/nodes/VantroAccount.h>
#include <vantrokelui/nodes/VantroFile.h>
#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrokelui/nodes/VantroProject.h>
#include <vantrokelui/nodes/VantroVersionStack.h>
#include <vantrokelui/nodes/VantroWorkspace.h>

#include "ConnectorTestSupport.h"
#include "support/MainThreadFixture.h"

namespace {

using namespace std::chrono_literals;
using connectortest::FakeService;
using vantrokelui::FetchChildrenState;
using vantrokelui::VantroNode;
namespace integration = vantrokelui::model::VantroConnectorIntegration;

kelcore::utility::Guid PlatformId(const vantrocommon::Guid& id) {
    return kelcore::utility::Guid(id.AsString());
}

std::u16string Text(const std::string& utf8) {
    const auto text = kelcore::string::StdToUTF16String(utf8);
    return {text.begin(), text.end()};
}

std::u16string NameOf(const std::shared_ptr<VantroNode>& node) {
    const auto name = node->GetName();
    return {name.begin(), name.end()};
}

class ConnectorNodesTest : public testsupport::MainThreadFixture {
protected:
    void SetUp() override {
        MainThreadFixture::SetUp();
        client = connectortest::ConnectFakeClient(service, time.GetExecutor());
        ASSERT_TRUE(client) << "the SDK client over the in-memory service was not made";
    }
    void TearDown() override {
        connectortest::DisconnectClient();
        MainThreadFixture::TearDown();
    }

    std::shared_ptr<integration::VantroSdkFolder> FolderNode(const vantrocommon::Guid& id,
                                                             const std::string& name = "Dailies") {
        vantrosdk::Asset asset;
        asset.id = id;
        asset.name = name;
        asset.type = "folder";
        return std::make_shared<integration::VantroSdkFolder>(asset, std::weak_ptr<VantroNode>());
    }

    std::shared_ptr<integration::VantroSdkAccount> AccountNode(const vantrocommon::Guid& id) {
        vantrosdk::Account account;
        account.id = id;
        account.name = "Account";
        return std::make_shared<integration::VantroSdkAccount>(account,
                                                               std::weak_ptr<VantroNode>());
    }

    kelcore::threads::VirtualTime time;
    std::shared_ptr<FakeService> service = std::make_shared<FakeService>();
    std::shared_ptr<vantrosdk::VantroClient> client;
};

// Folders

TEST_F(ConnectorNodesTest, AFolderOf250ChildrenGrowsInThreePagesAndIsFetchedFromTheFirst) {
    const auto id = service->AddFolderWithChildren(250);
    const auto folder = FolderNode(id);
    std::vector<std::size_t> sizes;
    std::vector<FetchChildrenState> states;
    const auto filesBinding = folder->AddFilesBinding(
        [&](const vantrokelui::utility::SharedPtrVector<vantrokelui::VantroFile>& files) {
            sizes.push_back(files.size());
        });
    const auto stateBinding = folder->AddFetchChildrenStateBinding(
        [&](FetchChildrenState state) { states.push_back(state); });

    folder->FetchChildren();
    time.RunUntilIdle();
    EXPECT_EQ(folder->GetFiles().size(), 100u);
    EXPECT_EQ(folder->GetFetchChildrenState(), FetchChildrenState::Fetched)
        << "Fetched from the first page on";
    time.AdvanceBy(5s);
    EXPECT_EQ(folder->GetFiles().size(), 200u);
    time.AdvanceBy(5s);
    EXPECT_EQ(folder->GetFiles().size(), 250u);
    time.AdvanceBy(60s);
    Pump();

    EXPECT_EQ(sizes, (std::vector<std::size_t>{0, 100, 200, 250}));
    EXPECT_EQ(states, (std::vector<FetchChildrenState>{FetchChildrenState::NotFetched,
                                                       FetchChildrenState::Fetching,
                                                       FetchChildrenState::Fetched}));
    const auto log = service->Log();
    ASSERT_EQ(log.size(), 3u);
    for (int page = 1; page <= 3; ++page) {
        EXPECT_EQ(log[static_cast<std::size_t>(page - 1)].path,
                  "/v2/assets/" + id.AsString() + "/children");
        EXPECT_EQ(log[static_cast<std::size_t>(page - 1)].page, page);
    }
}

TEST_F(ConnectorNodesTest, AFolderSortsAssetsByTheirExactTypeAndDropsTheRest) {
    const auto id = service->AddFolderWithChildren(0);
    service->AddChild(id, "Cuts", "folder");
    service->AddChild(id, "Take 1.mov", "file");
    service->AddChild(id, "Rough Cut", "version_stack");
    service->AddChild(id, "Package", "bundle");
    service->AddChild(id, "Loud.mov", "FILE");
    service->AddChild(id, "Loud Folder", "Folder");
    const auto folder = FolderNode(id);

    folder->FetchChildren();
    time.RunUntilIdle();

    ASSERT_EQ(folder->GetFolders().size(), 1u);
    EXPECT_EQ(NameOf(folder->GetFolders()[0]), u"Cuts");
    EXPECT_TRUE(std::dynamic_pointer_cast<integration::VantroSdkFolder>(folder->GetFolders()[0]));
    ASSERT_EQ(folder->GetFiles().size(), 1u);
    EXPECT_EQ(NameOf(folder->GetFiles()[0]), u"Take 1.mov");
    EXPECT_TRUE(std::dynamic_pointer_cast<integration::VantroSdkFile>(folder->GetFiles()[0]));
    ASSERT_EQ(folder->GetVersionStacks().size(), 1u);
    EXPECT_EQ(NameOf(folder->GetVersionStacks()[0]), u"Rough Cut");
    EXPECT_TRUE(std::dynamic_pointer_cast<integration::VantroSdkVersionStack>(
        folder->GetVersionStacks()[0]));
    EXPECT_EQ(folder->GetFolders()[0]->GetParent(), folder);
    EXPECT_EQ(folder->GetFetchChildrenState(), FetchChildrenState::Fetched);
}

TEST_F(ConnectorNodesTest, APageOfUnknownTypesOnlyStillCountsAsDelivered) {
    const auto id = service->AddFolderWithChildren(0);
    service->AddChild(id, "A Package", "bundle");
    service->AddChild(id, "B Package", "bundle");
    service->AddChild(id, "C Take.mov", "file");
    service->SetPageSize(2);
    const auto folder = FolderNode(id);

    folder->FetchChildren();
    time.RunUntilIdle();
    EXPECT_EQ(folder->GetFetchChildrenState(), FetchChildrenState::Fetched);
    EXPECT_TRUE(folder->GetFiles().empty());
    time.AdvanceBy(5s);
    ASSERT_EQ(folder->GetFiles().size(), 1u) << "the listing went on to page 2";
    EXPECT_EQ(NameOf(folder->GetFiles()[0]), u"C Take.mov");
}

TEST_F(ConnectorNodesTest, AFetchEmptiesFoldersFilesAndVersionStacksFirstInThatOrder) {
    const auto id = service->AddFolderWithChildren(0);
    service->AddChild(id, "Cuts", "folder");
    service->AddChild(id, "Take 1.mov", "file");
    service->AddChild(id, "Rough Cut", "version_stack");
    const auto folder = FolderNode(id);
    folder->FetchChildren();
    time.AdvanceBy(70s);  // listed, and the queue idle again
    Pump();

    std::vector<std::string> events;
    using vantrokelui::utility::SharedPtrVector;
    const auto bindings = std::vector{
        folder->AddFoldersBinding([&](const SharedPtrVector<vantrokelui::VantroFolder>& list) {
            events.push_back("folders " + std::to_string(list.size()));
        }),
        folder->AddFilesBinding([&](const SharedPtrVector<vantrokelui::VantroFile>& list) {
            events.push_back("files " + std::to_string(list.size()));
        }),
        folder->AddVersionStacksBinding(
            [&](const SharedPtrVector<vantrokelui::VantroVersionStack>& list) {
                events.push_back("stacks " + std::to_string(list.size()));
            }),
        folder->AddFetchChildrenStateBinding([&](FetchChildrenState state) {
            events.push_back("state " + std::to_string(static_cast<int>(state)));
        })};
    Pump();
    events.clear();

    folder->FetchChildren();
    time.RunUntilIdle();
    Pump();
    EXPECT_EQ(events, (std::vector<std::string>{"folders 0", "files 0", "stacks 0", "state 1",
                                                "folders 1", "files 1", "stacks 1", "state 2"}));
}

TEST_F(ConnectorNodesTest, TwoFetchesWhileAListingRunsGiveTheChildrenOfBoth) {
    const auto id = service->AddFolderWithChildren(3);
    const auto folder = FolderNode(id);
    folder->FetchChildren();
    folder->FetchChildren();
    time.RunUntilIdle();
    EXPECT_EQ(folder->GetFiles().size(), 6u);
    EXPECT_EQ(service->CountEndingIn("/children"), 2u);
}

TEST_F(ConnectorNodesTest, AFolderThatDiesBeforeItsTurnIsAskedForNothing) {
    const auto id = service->AddFolderWithChildren(3);
    auto folder = FolderNode(id);
    const auto queue = integration::FetchFolderChildrenQueue::GetInstance();
    folder->FetchChildren();
    folder.reset();
    time.RunUntilIdle();
    EXPECT_EQ(service->Log().size(), 0u);
    EXPECT_EQ(queue->GetCounts().inFlight, 1u) << "its record still stands in the window";
}

TEST_F(ConnectorNodesTest, NodesOfAKindShareOneQueueThatDiesWithTheLastOfThem) {
    auto first = FolderNode(vantrocommon::Guid::CreateUnique());
    auto second = FolderNode(vantrocommon::Guid::CreateUnique());
    std::weak_ptr<integration::FetchFolderChildrenQueue> queue =
        integration::FetchFolderChildrenQueue::GetInstance();
    EXPECT_FALSE(queue.expired());
    first.reset();
    EXPECT_FALSE(queue.expired());
    second.reset();
    EXPECT_TRUE(queue.expired());
}

// Projects and workspaces

TEST_F(ConnectorNodesTest, AProjectsRootFolderBearsTheProjectsNameNeverTheAssets) {
    vantrosdk::Project record;
    record.id = vantrocommon::Guid::CreateUnique();
    record.name = "Alpha";
    record.rootAsset.id = vantrocommon::Guid::CreateUnique();
    record.rootAsset.name = "root";
    record.rootAsset.type = "folder";
    auto workspace = std::make_shared<vantrokelui::VantroWorkspace>(std::weak_ptr<VantroNode>());

    const auto project = integration::VantroSdkProject::MakeWithRootFolder(record, workspace);

    EXPECT_EQ(project->GetID(), PlatformId(record.id));
    EXPECT_EQ(NameOf(project), u"Alpha");
    EXPECT_EQ(project->GetParent(), workspace);
    const auto root = project->GetRootFolder();
    ASSERT_TRUE(root);
    EXPECT_TRUE(std::dynamic_pointer_cast<integration::VantroSdkFolder>(root));
    EXPECT_EQ(NameOf(root), u"Alpha");
    EXPECT_EQ(root->GetID(), PlatformId(*record.rootAsset.id));
    EXPECT_EQ(root->GetParent(), project);
}

TEST_F(ConnectorNodesTest, AProjectFetchesNothingAndStaysFetching) {
    vantrosdk::Project record;
    record.id = vantrocommon::Guid::CreateUnique();
    record.name = "Alpha";
    record.rootAsset.id = vantrocommon::Guid::CreateUnique();
    const auto project = integration::VantroSdkProject::MakeWithRootFolder(record, {});
    project->FetchChildren();
    time.AdvanceBy(70s);
    EXPECT_EQ(project->GetFetchChildrenState(), FetchChildrenState::Fetching);
    EXPECT_EQ(project->GetRootFolder()->GetFetchChildrenState(), FetchChildrenState::NotFetched);
    EXPECT_TRUE(service->Log().empty());
}

TEST_F(ConnectorNodesTest, AWorkspaceListsItsProjectsPageByPageWithTheirRootFolders) {
    const auto account = service->AddAccount("Studio");
    const auto team = service->AddTeam(account, "Editors");
    vantrocommon::Guid root;
    service->AddProject(team, "Alpha", &root);
    service->AddProject(team, "Beta");
    service->AddProject(team, "Gamma");
    service->SetPageSize(2);
    vantrosdk::Workspace record;
    record.id = team;
    record.name = "Editors";
    const auto workspace =
        std::make_shared<integration::VantroSdkWorkspace>(record, std::weak_ptr<VantroNode>());

    workspace->FetchChildren();
    time.RunUntilIdle();
    EXPECT_EQ(workspace->GetProjects().size(), 2u);
    EXPECT_EQ(workspace->GetFetchChildrenState(), FetchChildrenState::Fetched);
    time.AdvanceBy(5s);
    const auto projects = workspace->GetProjects();
    ASSERT_EQ(projects.size(), 3u);
    EXPECT_EQ(NameOf(projects[0]), u"Alpha");
    EXPECT_EQ(NameOf(projects[0]->GetRootFolder()), u"Alpha");
    EXPECT_EQ(projects[0]->GetRootFolder()->GetID(), PlatformId(root));
    for (const auto& project : projects) {
        EXPECT_EQ(project->GetParent(), workspace);
        EXPECT_EQ(project->GetFetchChildrenState(), FetchChildrenState::Fetching)
            << "the workspace's setter fetches each project, which fetches nothing";
    }
}

// Accounts and shared projects

TEST_F(ConnectorNodesTest, AnAccountWithoutWorkspacesShowsOneSharedProjectsWorkspace) {
    const auto id = service->AddAccount("Harbor");
    service->AddSharedProject(id, "Documentary");
    service->AddSharedProject(id, "Archive");
    const auto account = AccountNode(id);

    account->FetchChildren();
    time.RunUntilIdle();

    const auto workspaces = account->GetWorkspaces();
    ASSERT_EQ(workspaces.size(), 1u);
    const auto shared = workspaces[0];
    EXPECT_EQ(NameOf(shared), u"Shared Projects");
    EXPECT_EQ(shared->GetID(), kelcore::utility::Guid());
    EXPECT_FALSE(std::dynamic_pointer_cast<integration::VantroSdkWorkspace>(shared))
        << "a plain workspace, which fetches nothing of its own";
    EXPECT_EQ(shared->GetParent(), account);
    EXPECT_EQ(shared->GetFetchChildrenState(), FetchChildrenState::Fetching);
    const auto projects = shared->GetProjects();
    ASSERT_EQ(projects.size(), 2u);
    EXPECT_EQ(NameOf(projects[0]), u"Archive");
    EXPECT_EQ(NameOf(projects[1]), u"Documentary");
    EXPECT_EQ(NameOf(projects[1]->GetRootFolder()), u"Documentary");
    EXPECT_EQ(projects[1]->GetParent(), shared);
    EXPECT_EQ(account->GetFetchChildrenState(), FetchChildrenState::Fetched);
    EXPECT_EQ(service->CountEndingIn("/shared_projects"), 1u);
}

TEST_F(ConnectorNodesTest, AnAccountWithNoWorkspaceAndNoSharedProjectShowsOneEmptyWorkspace) {
    const auto id = service->AddAccount("Empty");
    const auto account = AccountNode(id);
    account->FetchChildren();
    time.RunUntilIdle();
    const auto workspaces = account->GetWorkspaces();
    ASSERT_EQ(workspaces.size(), 1u);
    EXPECT_EQ(NameOf(workspaces[0]), u"Shared Projects");
    EXPECT_TRUE(workspaces[0]->GetProjects().empty());
}

TEST_F(ConnectorNodesTest, ARefusedSharedProjectsAnswerStillAddsTheWorkspace) {
    const auto id = service->AddAccount("Harbor");
    service->AddSharedProject(id, "Documentary");
    service->SetIntercept(
        [](const std::string& path, int) -> std::optional<vantrocommon::http::Reply> {
            if (path.ends_with("/shared_projects")) {
                vantrocommon::http::Reply reply;
                reply.status = 503;
                reply.body = R"({"error":"server_error"})";
                return reply;
            }
            return std::nullopt;
        });
    const auto account = AccountNode(id);
    account->FetchChildren();
    time.RunUntilIdle();
    const auto workspaces = account->GetWorkspaces();
    ASSERT_EQ(workspaces.size(), 1u);
    EXPECT_TRUE(workspaces[0]->GetProjects().empty());
}

TEST_F(ConnectorNodesTest, AnAccountWithAWorkspaceNeverAsksForSharedProjects) {
    const auto id = service->AddAccount("Studio");
    service->AddTeam(id, "Editors");
    service->AddSharedProject(id, "Documentary");
    const auto account = AccountNode(id);
    account->FetchChildren();
    time.AdvanceBy(10s);
    const auto workspaces = account->GetWorkspaces();
    ASSERT_EQ(workspaces.size(), 1u);
    EXPECT_EQ(NameOf(workspaces[0]), u"Editors");
    EXPECT_TRUE(std::dynamic_pointer_cast<integration::VantroSdkWorkspace>(workspaces[0]));
    EXPECT_EQ(service->CountEndingIn("/shared_projects"), 0u);
}

// The user

TEST_F(ConnectorNodesTest, AUsersTreeFillsItselfDownToEachProjectsRootFolder) {
    const auto studio = service->AddAccount("Studio");
    const auto editors = service->AddTeam(studio, "Editors");
    const auto color = service->AddTeam(studio, "Color");
    service->AddProject(editors, "Feature");
    service->AddProject(editors, "Trailer");
    service->AddProject(color, "Grade");
    const auto harbor = service->AddAccount("Harbor");
    service->AddSharedProject(harbor, "Documentary");
    vantrosdk::User record;
    record.id = vantrocommon::Guid::CreateUnique();
    record.name = "Ann";
    const auto user = std::make_shared<integration::VantroSdkUser>(record);

    user->FetchChildren();
    EXPECT_EQ(user->GetFetchChildrenState(), FetchChildrenState::Fetching);
    time.AdvanceBy(10s);

    const auto accounts = user->GetAccounts();
    ASSERT_EQ(accounts.size(), 2u);
    EXPECT_EQ(user->GetFetchChildrenState(), FetchChildrenState::Fetched);
    EXPECT_EQ(NameOf(accounts[0]), u"Harbor");
    EXPECT_EQ(NameOf(accounts[1]), u"Studio");
    std::vector<std::u16string> roots;
    for (const auto& account : accounts) {
        EXPECT_EQ(account->GetFetchChildrenState(), FetchChildrenState::Fetched);
        EXPECT_EQ(account->GetParent(), user);
        for (const auto& workspace : account->GetWorkspaces()) {
            for (const auto& project : workspace->GetProjects()) {
                ASSERT_TRUE(project->GetRootFolder());
                EXPECT_EQ(NameOf(project->GetRootFolder()), NameOf(project));
                EXPECT_EQ(project->GetRootFolder()->GetFetchChildrenState(),
                          FetchChildrenState::NotFetched)
                    << "folders are fetched only when asked";
                roots.push_back(NameOf(project->GetRootFolder()));
            }
        }
    }
    EXPECT_EQ(roots,
              (std::vector<std::u16string>{u"Documentary", u"Grade", u"Feature", u"Trailer"}));
    for (const auto& workspace : accounts[1]->GetWorkspaces()) {
        EXPECT_EQ(workspace->GetFetchChildrenState(), FetchChildrenState::Fetched);
    }
    EXPECT_EQ(service->CountEndingIn("/children"), 0u);
}

TEST_F(ConnectorNodesTest, WithoutAClientAUserStaysFetching) {
    connectortest::DisconnectClient();
    vantrosdk::User record;
    record.id = vantrocommon::Guid::CreateUnique();
    const auto user = std::make_shared<integration::VantroSdkUser>(record);
    user->FetchChildren();
    time.AdvanceBy(70s);
    EXPECT_EQ(user->GetFetchChildrenState(), FetchChildrenState::Fetching);
    EXPECT_TRUE(user->GetAccounts().empty());
}

TEST_F(ConnectorNodesTest, ARefusedAccountListLeavesTheUserFetching) {
    service->AddAccount("Studio");
    service->SetIntercept(
        [](const std::string& path, int) -> std::optional<vantrocommon::http::Reply> {
            if (path == "/v2/accounts") {
                vantrocommon::http::Reply reply;
                reply.status = 500;
                reply.body = R"({"error":"server_error"})";
                return reply;
            }
            return std::nullopt;
        });
    vantrosdk::User record;
    const auto user = std::make_shared<integration::VantroSdkUser>(record);
    user->FetchChildren();
    time.RunUntilIdle();
    EXPECT_EQ(service->Log().size(), 1u);
    EXPECT_EQ(user->GetFetchChildrenState(), FetchChildrenState::Fetching);
    EXPECT_TRUE(user->GetAccounts().empty());
}

TEST_F(ConnectorNodesTest, GetCurrentUserAnswersAnSdkUserWithTheServicesIdAndName) {
    const auto id = vantrocommon::Guid::CreateUnique();
    service->SetUser(id, "Ann Example");
    std::vector<std::shared_ptr<vantrokelui::VantroUser>> answers;
    integration::GetCurrentUser(
        [&](const std::shared_ptr<vantrokelui::VantroUser>& user) { answers.push_back(user); });
    EXPECT_TRUE(answers.empty()) << "the answer comes on the SDK's executor";
    time.RunUntilIdle();
    ASSERT_EQ(answers.size(), 1u);
    ASSERT_TRUE(std::dynamic_pointer_cast<integration::VantroSdkUser>(answers[0]));
    EXPECT_EQ(answers[0]->GetID(), PlatformId(id));
    EXPECT_EQ(NameOf(answers[0]), Text("Ann Example"));
    EXPECT_FALSE(answers[0]->GetParent());
    EXPECT_EQ(answers[0]->GetFetchChildrenState(), FetchChildrenState::NotFetched);
}

TEST_F(ConnectorNodesTest, GetCurrentUserNeverAnswersARefusal) {
    service->SetIntercept([](const std::string&, int) -> std::optional<vantrocommon::http::Reply> {
        vantrocommon::http::Reply reply;
        reply.status = 401;
        reply.body = R"({"error":"invalid_token"})";
        return reply;
    });
    int answers = 0;
    integration::GetCurrentUser(
        [&](const std::shared_ptr<vantrokelui::VantroUser>&) { ++answers; });
    time.AdvanceBy(70s);
    EXPECT_EQ(service->Log().size(), 1u);
    EXPECT_EQ(answers, 0);
}

TEST_F(ConnectorNodesTest, GetCurrentUserAnswersNullWithoutAClient) {
    connectortest::DisconnectClient();
    std::vector<std::shared_ptr<vantrokelui::VantroUser>> answers;
    integration::GetCurrentUser(
        [&](const std::shared_ptr<vantrokelui::VantroUser>& user) { answers.push_back(user); });
    ASSERT_EQ(answers.size(), 1u);
    EXPECT_EQ(answers[0], nullptr);
}

// The storage check

struct StorageCase {
    const char* name;
    std::optional<std::uint64_t> used;
    std::optional<std::uint64_t> limit;
    bool overLimit;
};

void PrintTo(const StorageCase& value, std::ostream* out) {
    *out << value.name;
}

class StorageLimitTest : public ConnectorNodesTest,
                         public ::testing::WithParamInterface<StorageCase> {};

TEST_P(StorageLimitTest, AnswersWhetherTheStorageInUseIsAboveTheLimit) {
    const auto id = service->AddAccount("Studio", GetParam().used, GetParam().limit);
    std::vector<bool> answers;
    integration::CheckStorageLimitOnAccount(id, [&](bool over) { answers.push_back(over); });
    time.RunUntilIdle();
    ASSERT_EQ(answers.size(), 1u);
    EXPECT_EQ(answers[0], GetParam().overLimit);
}

INSTANTIATE_TEST_SUITE_P(
    CheckStorageLimitOnAccount, StorageLimitTest,
    ::testing::Values(StorageCase{"EqualIsNotAbove", 100, 100, false},
                      StorageCase{"OneByteAbove", 101, 100, true},
                      StorageCase{"Below", 99, 100, false},
                      StorageCase{"NoPlan", 101, std::nullopt, false},
                      StorageCase{"NoUsage", std::nullopt, 100, false},
                      StorageCase{"ComparedUnsigned", (std::uint64_t{1} << 63) + 1,
                                  std::uint64_t{1} << 63, true}),
    [](const ::testing::TestParamInfo<StorageCase>& param) { return param.param.name; });

TEST_F(ConnectorNodesTest, TheStorageCheckOfAnAccountTheServiceRefusesAnswersFalse) {
    std::vector<bool> answers;
    integration::CheckStorageLimitOnAccount(vantrocommon::Guid::CreateUnique(),
                                            [&](bool over) { answers.push_back(over); });
    time.RunUntilIdle();
    EXPECT_EQ(answers, std::vector<bool>{false});
}

TEST_F(ConnectorNodesTest, TheStorageCheckWithoutAClientNeverAnswers) {
    const auto id = service->AddAccount("Studio", 101, 100);
    connectortest::DisconnectClient();
    int answers = 0;
    integration::CheckStorageLimitOnAccount(id, [&](bool) { ++answers; });
    time.AdvanceBy(70s);
    EXPECT_EQ(answers, 0);
    EXPECT_TRUE(service->Log().empty());
}

}  // namespace
