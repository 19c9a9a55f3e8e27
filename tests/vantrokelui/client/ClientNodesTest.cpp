// The client back end's nodes against a scripted datastore: how each kind fills its lists from
// one whole answer, keeps the old lists while a fetch runs, gives up silently on a failed
// answer, joins the datastore's station once, and fetches again only on its own message. The
// fake completes its futures on the main thread, as the service's datastore does, so a fill
// runs when the test pumps the main-thread queue.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <typeinfo>
#include <vector>

#include <kelcore/config/ResultCode.h>
#include <kelcore/config/kel_exception.h>
#include <kelcore/string/String.h>
#include <kelcore/threads/ManualClock.h>
#include <kelcore/threads/ManualExecutor.h>
#include <vantrokelui/model/client/VantroClientAccount.h>
#include <vantrokelui/model/client/VantroClientFile.h>
#include <vantrokelui/model/client/VantroClientFolder.h>
#include <vantrokelui/model/client/VantroClientProject.h>
#include <vantrokelui/model/client/VantroClientUser.h>
#include <vantrokelui/model/client/VantroClientVersionStack.h>
#include <vantrokelui/model/client/VantroClientWorkspace.h>

#include "FakeDatastore.h"
#include "ScopedDatastore.h"
#include "support/MainThreadFixture.h"

namespace {

using clienttest::FakeDatastore;
using clienttest::MakeAccount;
using clienttest::MakeAsset;
using clienttest::MakeProject;
using clienttest::MakeTeam;
using kelcore::utility::Guid;
using vantro::VantroDatastore;
using vantrokelui::FetchChildrenState;
using vantrokelui::VantroNode;
using Kind = clienttest::FakeDatastore::Kind;
namespace client = vantrokelui::model::VantroClientIntegration;

template <class Node>
std::shared_ptr<Node> MakeNode(const Guid& id = Guid::CreateUnique()) {
    auto node = std::make_shared<Node>(std::weak_ptr<VantroNode>());
    node->SetID(id);
    return node;
}

std::u16string NameOf(const VantroNode& node) {
    const auto name = node.GetName();
    return {name.begin(), name.end()};
}

template <class Nodes>
std::vector<std::u16string> NamesOf(const Nodes& nodes) {
    std::vector<std::u16string> names;
    for (const auto& node : nodes) {
        names.push_back(NameOf(*node));
    }
    return names;
}

class ClientNodesTest : public testsupport::MainThreadFixture {
protected:
    /// A folder with `count` subfolders "Sub 1".. filled and subscribed.
    std::shared_ptr<client::VantroClientFolder> FilledFolder(int count = 2) {
        auto folder = MakeNode<client::VantroClientFolder>();
        std::vector<clienttest::InterfaceRef<vantro::VantroAsset>> items;
        for (int index = 1; index <= count; ++index) {
            items.push_back(MakeAsset("folder", "Sub " + std::to_string(index)));
        }
        fake->SetAssets(folder->GetID(), items);
        folder->FetchChildren();
        Pump();
        EXPECT_EQ(folder->GetFetchChildrenState(), FetchChildrenState::Fetched);
        return folder;
    }

    std::shared_ptr<FakeDatastore> fake = std::make_shared<FakeDatastore>();
    clienttest::ScopedDatastore installed{fake};
};

TEST_F(ClientNodesTest, AFolderFillsFromTheDatastoreOnTheFuturesExecutor) {
    auto folder = MakeNode<client::VantroClientFolder>();
    fake->SetAssets(folder->GetID(), {MakeAsset("folder", "Cuts"), MakeAsset("file", "a.mp4")});

    folder->FetchChildren();
    // The answer is there already, yet the fill waits for the main thread's queue.
    EXPECT_EQ(folder->GetFetchChildrenState(), FetchChildrenState::Fetching);
    EXPECT_TRUE(folder->GetFolders().empty());
    EXPECT_EQ(fake->CountRequests(Kind::Assets, folder->GetID()), 1u);

    Pump();
    EXPECT_EQ(folder->GetFetchChildrenState(), FetchChildrenState::Fetched);
    EXPECT_EQ(NamesOf(folder->GetFolders()), std::vector<std::u16string>{u"Cuts"});
    EXPECT_EQ(NamesOf(folder->GetFiles()), std::vector<std::u16string>{u"a.mp4"});
}

TEST_F(ClientNodesTest, TheFillRunsOnTheExecutorThatTheListsFutureCarries) {
    auto executor = std::make_shared<kelcore::threads::ManualExecutor>(
        std::make_shared<kelcore::threads::ManualClock>());
    auto own = std::make_shared<FakeDatastore>(executor);
    clienttest::ScopedDatastore ownInstalled(own);
    auto account = MakeNode<client::VantroClientAccount>();
    own->SetTeams(account->GetID(), {MakeTeam("Editors")});

    account->FetchChildren();
    Pump();
    EXPECT_EQ(account->GetFetchChildrenState(), FetchChildrenState::Fetching)
        << "the fill ran somewhere else than on the future's executor";

    EXPECT_EQ(executor->RunUntilIdle(), 1u);
    EXPECT_EQ(account->GetFetchChildrenState(), FetchChildrenState::Fetched);
    EXPECT_EQ(account->GetWorkspaces().size(), 1u);
    executor->Shutdown();
}

TEST_F(ClientNodesTest, UserAccountAndWorkspaceKeepTheirListsWhileFetchingAndAfterAFailure) {
    auto user = std::make_shared<client::VantroClientUser>();
    auto account = MakeNode<client::VantroClientAccount>();
    auto workspace = MakeNode<client::VantroClientWorkspace>();
    fake->SetAccounts({MakeAccount("Studio")});
    fake->SetTeams(account->GetID(), {MakeTeam("Editors")});
    fake->SetProjects(workspace->GetID(), {MakeProject("Alpha")});
    user->FetchChildren();
    account->FetchChildren();
    workspace->FetchChildren();
    Pump();
    const auto accounts = user->GetAccounts();
    const auto workspaces = account->GetWorkspaces();
    const auto projects = workspace->GetProjects();
    ASSERT_EQ(accounts.size(), 1u);
    ASSERT_EQ(workspaces.size(), 1u);
    ASSERT_EQ(projects.size(), 1u);
    fake->HoldAnswers(true);

    user->FetchChildren();
    account->FetchChildren();
    workspace->FetchChildren();
    Pump();
    EXPECT_EQ(user->GetAccounts(), accounts);
    EXPECT_EQ(account->GetWorkspaces(), workspaces);
    EXPECT_EQ(workspace->GetProjects(), projects);
    // The three fetches of the nodes, and the eager ones that the first fills started below.
    ASSERT_GE(fake->FailWaiting(kelcore::config::kResultUnknownFailure), 3u);
    Pump();

    for (const VantroNode* node :
         std::vector<const VantroNode*>{user.get(), account.get(), workspace.get()}) {
        EXPECT_EQ(node->GetFetchChildrenState(), FetchChildrenState::Fetching);
    }
    EXPECT_EQ(user->GetAccounts(), accounts);
    EXPECT_EQ(account->GetWorkspaces(), workspaces);
    EXPECT_EQ(workspace->GetProjects(), projects);
}

TEST_F(ClientNodesTest, AListOfLengthZeroStoresEmptyListsSetsFetchedAndSubscribes) {
    auto folder = FilledFolder(2);
    ASSERT_EQ(folder->GetFolders().size(), 2u);
    fake->SetAssets(folder->GetID(), {});

    folder->FetchChildren();
    Pump();

    EXPECT_TRUE(folder->GetFolders().empty());
    EXPECT_TRUE(folder->GetFiles().empty());
    EXPECT_TRUE(folder->GetVersionStacks().empty());
    EXPECT_EQ(folder->GetFetchChildrenState(), FetchChildrenState::Fetched);
    EXPECT_EQ(folder->GetStationID(), fake->GetStationID());
    EXPECT_EQ(fake->CountListeners(), 1u);
}

TEST_F(ClientNodesTest, EveryKindWithAListOfLengthZeroIsFetchedAndSubscribed) {
    auto user = std::make_shared<client::VantroClientUser>();
    auto account = MakeNode<client::VantroClientAccount>();
    auto workspace = MakeNode<client::VantroClientWorkspace>();
    auto folder = MakeNode<client::VantroClientFolder>();
    fake->SetAccounts({});
    fake->SetTeams(account->GetID(), {});
    fake->SetProjects(workspace->GetID(), {});
    fake->SetAssets(folder->GetID(), {});

    user->FetchChildren();
    account->FetchChildren();
    workspace->FetchChildren();
    folder->FetchChildren();
    Pump();

    EXPECT_TRUE(user->GetAccounts().empty());
    EXPECT_TRUE(account->GetWorkspaces().empty());
    EXPECT_TRUE(workspace->GetProjects().empty());
    for (const VantroNode* node :
         std::vector<const VantroNode*>{user.get(), account.get(), workspace.get(), folder.get()}) {
        EXPECT_EQ(node->GetFetchChildrenState(), FetchChildrenState::Fetched)
            << node->GetTypeTag().size();
    }
    EXPECT_EQ(fake->CountListeners(), 4u);
}

TEST_F(ClientNodesTest, AMessageForAnotherFoldersGuidDoesNothing) {
    auto folder = FilledFolder();
    const auto before = folder->GetFolders();

    fake->Send(VantroDatastore::AssetListChanged{Guid::CreateUnique()});

    EXPECT_EQ(fake->CountRequests(Kind::Assets, folder->GetID()), 1u);
    EXPECT_EQ(fake->Requests().size(), 1u);
    EXPECT_EQ(folder->GetFetchChildrenState(), FetchChildrenState::Fetched);
    EXPECT_EQ(queue->Size(), 0u) << "the message queued a delivery";
    EXPECT_EQ(folder->GetFolders(), before);

    // Its own Guid does fetch: the message reached the folder and was turned away.
    fake->Send(VantroDatastore::AssetListChanged{folder->GetID()});
    EXPECT_EQ(fake->CountRequests(Kind::Assets, folder->GetID()), 2u);
    EXPECT_EQ(folder->GetFetchChildrenState(), FetchChildrenState::Fetching);
}

TEST_F(ClientNodesTest, AFolderIgnoresTheOtherKindsOfMessageForItsGuid) {
    auto folder = FilledFolder();

    fake->Send(VantroDatastore::AccountListChanged{folder->GetID()});
    fake->Send(VantroDatastore::TeamListChanged{folder->GetID()});
    fake->Send(VantroDatastore::ProjectListChanged{folder->GetID()});

    EXPECT_EQ(fake->Requests().size(), 1u);
    EXPECT_EQ(folder->GetFetchChildrenState(), FetchChildrenState::Fetched);
}

TEST_F(ClientNodesTest, AMessageForTheFolderFetchesAgainAndShowsTheNewChild) {
    auto folder = FilledFolder(1);
    fake->SetAssets(folder->GetID(),
                    {MakeAsset("folder", "Sub 1"), MakeAsset("folder", "Arrived")});

    fake->Send(VantroDatastore::AssetListChanged{folder->GetID()});
    EXPECT_EQ(folder->GetFetchChildrenState(), FetchChildrenState::Fetching);
    Pump();

    EXPECT_EQ(NamesOf(folder->GetFolders()), (std::vector<std::u16string>{u"Arrived", u"Sub 1"}));
    EXPECT_EQ(folder->GetFetchChildrenState(), FetchChildrenState::Fetched);
}

TEST_F(ClientNodesTest, TwoFillsInARowLeaveOneSubscription) {
    auto folder = MakeNode<client::VantroClientFolder>();
    fake->SetAssets(folder->GetID(), {MakeAsset("file", "a.mp4")});

    folder->FetchChildren();
    folder->FetchChildren();
    Pump();
    EXPECT_EQ(fake->CountRequests(Kind::Assets, folder->GetID()), 2u);
    EXPECT_EQ(fake->CountListeners(), 1u);

    fake->Send(VantroDatastore::AssetListChanged{folder->GetID()});
    Pump();
    EXPECT_EQ(fake->CountListeners(), 1u);
    // One subscription means one fetch per message.
    EXPECT_EQ(fake->CountRequests(Kind::Assets, folder->GetID()), 3u);
}

TEST_F(ClientNodesTest, ALaterFillKeepsTheStationOfTheFirst) {
    auto folder = FilledFolder();
    ASSERT_EQ(fake->CountListeners(), 1u);
    auto other = std::make_shared<FakeDatastore>();
    clienttest::ScopedDatastore otherInstalled(other);
    other->SetAssets(folder->GetID(), {});

    folder->FetchChildren();
    Pump();

    ASSERT_EQ(other->CountRequests(Kind::Assets, folder->GetID()), 1u);
    EXPECT_EQ(folder->GetFetchChildrenState(), FetchChildrenState::Fetched);
    EXPECT_EQ(folder->GetStationID(), fake->GetStationID());
    EXPECT_EQ(fake->CountListeners(), 1u);
    EXPECT_EQ(other->CountListeners(), 0u) << "a second fill subscribed again";
}

TEST_F(ClientNodesTest, ANodeLeavesTheStationWhenItDies) {
    auto folder = FilledFolder();
    ASSERT_EQ(fake->CountListeners(), 1u);

    folder.reset();
    Pump();

    EXPECT_EQ(fake->CountListeners(), 0u);
}

TEST_F(ClientNodesTest, NothingSubscribesBeforeTheFirstFill) {
    auto folder = MakeNode<client::VantroClientFolder>();
    fake->HoldAnswers(true);

    folder->FetchChildren();
    Pump();

    EXPECT_TRUE(folder->GetStationID().empty());
    EXPECT_EQ(fake->CountListeners(), 0u);
}

TEST_F(ClientNodesTest, TheListsAreKeptAtFetchStartAndReplacedAtOnce) {
    auto folder = FilledFolder(2);
    const auto old = folder->GetFolders();
    // Shared with the observer: a delivery already queued may still run in TearDown.
    const auto sizes = std::make_shared<std::vector<std::size_t>>();
    const auto binding = folder->AddFoldersBinding(
        [sizes](const auto& folders) { sizes->push_back(folders.size()); });
    auto& delivered = *sizes;
    Pump();
    delivered.clear();
    fake->HoldAnswers(true);

    folder->FetchChildren();
    Pump();
    EXPECT_EQ(folder->GetFetchChildrenState(), FetchChildrenState::Fetching);
    EXPECT_EQ(folder->GetFolders(), old) << "the old children left before the new ones came";
    EXPECT_TRUE(delivered.empty());

    fake->SetAssets(folder->GetID(),
                    {MakeAsset("folder", "A"), MakeAsset("folder", "B"), MakeAsset("folder", "C")});
    ASSERT_EQ(fake->AnswerWaiting(), 1u);
    Pump();

    EXPECT_EQ(delivered, std::vector<std::size_t>{3u}) << "the lists went through another value";
    EXPECT_EQ(NamesOf(folder->GetFolders()), (std::vector<std::u16string>{u"A", u"B", u"C"}));
    EXPECT_EQ(folder->GetFetchChildrenState(), FetchChildrenState::Fetched);
}

TEST_F(ClientNodesTest, AFailedListLeavesFetchingAndTheOldLists) {
    auto folder = FilledFolder(2);
    const auto old = folder->GetFolders();
    fake->HoldAnswers(true);

    folder->FetchChildren();
    ASSERT_EQ(fake->FailWaiting(static_cast<kelcore::config::ResultCode>(0xBB580011)), 1u);
    Pump();

    EXPECT_EQ(folder->GetFetchChildrenState(), FetchChildrenState::Fetching);
    EXPECT_EQ(folder->GetFolders(), old);
    EXPECT_EQ(fake->Requests().size(), 2u) << "a failed list is not retried";

    // The next message tries again.
    fake->HoldAnswers(false);
    fake->SetAssets(folder->GetID(), {});
    fake->Send(VantroDatastore::AssetListChanged{folder->GetID()});
    Pump();
    EXPECT_EQ(folder->GetFetchChildrenState(), FetchChildrenState::Fetched);
    EXPECT_TRUE(folder->GetFolders().empty());
}

TEST_F(ClientNodesTest, AFailedFirstListNeitherFillsNorSubscribes) {
    auto account = MakeNode<client::VantroClientAccount>();
    fake->HoldAnswers(true);

    account->FetchChildren();
    ASSERT_EQ(fake->FailWaiting(kelcore::config::kResultUnknownFailure), 1u);
    Pump();

    EXPECT_EQ(account->GetFetchChildrenState(), FetchChildrenState::Fetching);
    EXPECT_EQ(fake->CountListeners(), 0u);
}

TEST_F(ClientNodesTest, AssetsAreSortedByTypeIntoTheListsAndABundleIsSkipped) {
    auto folder = MakeNode<client::VantroClientFolder>();
    const Guid reel = Guid::CreateUnique();
    const Guid clip = Guid::CreateUnique();
    const Guid stack = Guid::CreateUnique();
    fake->SetAssets(folder->GetID(),
                    {MakeAsset("file", "clip 10"), MakeAsset("bundle", "Package"),
                     MakeAsset("folder", "Reel", reel), MakeAsset("version_stack", "Master", stack),
                     MakeAsset("Folder", "Upper-cased kind"), MakeAsset("file", "Clip 2", clip),
                     MakeAsset("folder", "cuts")});

    folder->FetchChildren();
    Pump();

    EXPECT_EQ(NamesOf(folder->GetFolders()), (std::vector<std::u16string>{u"cuts", u"Reel"}));
    EXPECT_EQ(NamesOf(folder->GetFiles()), (std::vector<std::u16string>{u"Clip 2", u"clip 10"}));
    EXPECT_EQ(NamesOf(folder->GetVersionStacks()), std::vector<std::u16string>{u"Master"});
    ASSERT_EQ(folder->GetChildren().size(), 5u);
    for (const auto& child : folder->GetFolders()) {
        EXPECT_NE(std::dynamic_pointer_cast<client::VantroClientFolder>(child), nullptr);
        EXPECT_EQ(child->GetParent(), folder);
        EXPECT_EQ(child->GetFetchChildrenState(), FetchChildrenState::NotFetched);
    }
    EXPECT_EQ(folder->GetFolders()[1]->GetID(), reel);
    EXPECT_EQ(folder->GetFiles()[0]->GetID(), clip);
    EXPECT_NE(std::dynamic_pointer_cast<client::VantroClientFile>(folder->GetFiles()[0]), nullptr);
    EXPECT_EQ(folder->GetVersionStacks()[0]->GetID(), stack);
    EXPECT_NE(
        std::dynamic_pointer_cast<client::VantroClientVersionStack>(folder->GetVersionStacks()[0]),
        nullptr);
    EXPECT_EQ(folder->GetVersionStacks()[0]->GetParent(), folder);
    // Folders are not fetched eagerly.
    EXPECT_EQ(fake->Requests().size(), 1u);
}

TEST_F(ClientNodesTest, TheListsAreStoredFoldersThenFilesThenVersionStacks) {
    auto folder = MakeNode<client::VantroClientFolder>();
    fake->SetAssets(folder->GetID(), {MakeAsset("version_stack", "v"), MakeAsset("file", "f"),
                                      MakeAsset("folder", "d")});
    const auto log = std::make_shared<std::vector<std::string>>();
    const auto folders =
        folder->AddFoldersBinding([log](const auto&) { log->push_back("Folders"); });
    const auto files = folder->AddFilesBinding([log](const auto&) { log->push_back("Files"); });
    const auto stacks =
        folder->AddVersionStacksBinding([log](const auto&) { log->push_back("VersionStacks"); });
    auto& order = *log;
    Pump();
    order.clear();

    folder->FetchChildren();
    Pump();

    EXPECT_EQ(order, (std::vector<std::string>{"Folders", "Files", "VersionStacks"}));
}

TEST_F(ClientNodesTest, NamesTurnFromUtf8IntoUtf16AndAMissingNameIsEmpty) {
    auto user = std::make_shared<client::VantroClientUser>();
    const Guid studio = Guid::CreateUnique();
    const Guid team = Guid::CreateUnique();
    const Guid project = Guid::CreateUnique();
    fake->SetAccounts({MakeAccount("Caf\xC3\xA9 \xE2\x9C\x82", studio), MakeAccount(std::nullopt)});
    fake->SetTeams(studio, {MakeTeam("\xC3\x89quipe", team), MakeTeam(std::nullopt)});
    fake->SetProjects(team, {MakeProject("Proj \xF0\x9F\x8E\xAC", Guid::CreateUnique(), project),
                             MakeProject(std::nullopt)});
    auto folder = MakeNode<client::VantroClientFolder>();
    fake->SetAssets(folder->GetID(), {MakeAsset("file", "\xE6\x98\xA0\xE5\x83\x8F.mov"),
                                      MakeAsset("file", std::nullopt)});

    user->FetchChildren();
    folder->FetchChildren();
    queue->PumpUntil(
        [&] {
            const auto accounts = user->GetAccounts();
            return accounts.size() == 2 && accounts[1]->GetWorkspaces().size() == 2 &&
                   accounts[1]->GetWorkspaces()[1]->GetProjects().size() == 2;
        },
        std::chrono::seconds(10));

    const auto accounts = user->GetAccounts();
    ASSERT_EQ(accounts.size(), 2u);
    EXPECT_EQ(NamesOf(accounts), (std::vector<std::u16string>{u"", u"Caf\u00E9 \u2702"}));
    const auto workspaces = accounts[1]->GetWorkspaces();
    ASSERT_EQ(workspaces.size(), 2u);
    EXPECT_EQ(NamesOf(workspaces), (std::vector<std::u16string>{u"", u"\u00C9quipe"}));
    const auto projects = workspaces[1]->GetProjects();
    ASSERT_EQ(projects.size(), 2u);
    EXPECT_EQ(NamesOf(projects), (std::vector<std::u16string>{u"", u"Proj \U0001F3AC"}));
    EXPECT_EQ(NamesOf(folder->GetFiles()), (std::vector<std::u16string>{u"", u"\u6620\u50CF.mov"}));
}

TEST_F(ClientNodesTest, ANameIsReadAsTheItemHoldsItWhenTheFillRuns) {
    auto workspace = MakeNode<client::VantroClientWorkspace>();
    const auto item = MakeProject("Old name");
    fake->SetProjects(workspace->GetID(), {item});

    workspace->FetchChildren();
    // The datastore refreshes its items in place; the fill reads the record under the lock.
    vantro::v2::Project newer;
    newer.name = "New name";
    item->Update(newer);
    Pump();

    ASSERT_EQ(workspace->GetProjects().size(), 1u);
    EXPECT_EQ(NameOf(*workspace->GetProjects()[0]), u"New name");
}

TEST_F(ClientNodesTest, EachProjectGetsANamelessRootFolderFromItsRootAssetId) {
    auto workspace = MakeNode<client::VantroClientWorkspace>();
    const Guid rootAsset = Guid::CreateUnique();
    const Guid projectId = Guid::CreateUnique();
    fake->SetProjects(workspace->GetID(), {MakeProject("Promo", rootAsset, projectId)});

    workspace->FetchChildren();
    Pump();

    const auto projects = workspace->GetProjects();
    ASSERT_EQ(projects.size(), 1u);
    const auto project = std::dynamic_pointer_cast<client::VantroClientProject>(projects[0]);
    ASSERT_NE(project, nullptr);
    EXPECT_EQ(project->GetID(), projectId);
    EXPECT_EQ(project->GetParent(), workspace);
    const auto root =
        std::dynamic_pointer_cast<client::VantroClientFolder>(project->GetRootFolder());
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->GetID(), rootAsset);
    EXPECT_TRUE(root->GetName().empty());
    EXPECT_EQ(root->GetParent(), project);
    // The Projects setter fetches each project, which only sets Fetching; root folders wait.
    EXPECT_EQ(project->GetFetchChildrenState(), FetchChildrenState::Fetching);
    EXPECT_EQ(root->GetFetchChildrenState(), FetchChildrenState::NotFetched);
    EXPECT_EQ(fake->CountRequests(Kind::Assets, rootAsset), 0u);
    EXPECT_EQ(workspace->FindNode(rootAsset), root);
}

TEST_F(ClientNodesTest, TheUsersFillRunsEagerlyDownToTheProjects) {
    auto user = std::make_shared<client::VantroClientUser>();
    const Guid studio = Guid::CreateUnique();
    const Guid editors = Guid::CreateUnique();
    const Guid root = Guid::CreateUnique();
    fake->SetAccounts({MakeAccount("Studio", studio)});
    fake->SetTeams(studio, {MakeTeam("Editors", editors)});
    fake->SetProjects(editors, {MakeProject("Alpha", root)});

    user->FetchChildren();
    Pump();

    const auto requests = fake->Requests();
    ASSERT_EQ(requests.size(), 3u);
    EXPECT_EQ(requests[0].kind, Kind::Accounts);
    EXPECT_EQ(requests[1].kind, Kind::Teams);
    EXPECT_EQ(requests[1].id, studio);
    EXPECT_EQ(requests[2].kind, Kind::Projects);
    EXPECT_EQ(requests[2].id, editors);
    ASSERT_EQ(user->GetAccounts().size(), 1u);
    const auto account = user->GetAccounts()[0];
    EXPECT_NE(std::dynamic_pointer_cast<client::VantroClientAccount>(account), nullptr);
    EXPECT_EQ(account->GetParent(), user);
    EXPECT_EQ(account->GetFetchChildrenState(), FetchChildrenState::Fetched);
    ASSERT_EQ(account->GetWorkspaces().size(), 1u);
    const auto workspace = account->GetWorkspaces()[0];
    EXPECT_NE(std::dynamic_pointer_cast<client::VantroClientWorkspace>(workspace), nullptr);
    EXPECT_EQ(workspace->GetFetchChildrenState(), FetchChildrenState::Fetched);
    EXPECT_NE(user->FindNode(root), nullptr);
    EXPECT_EQ(fake->CountListeners(), 3u);
}

TEST_F(ClientNodesTest, ANullListThrowsTheNullPointerExceptionNamingTheList) {
    auto folder = FilledFolder(2);
    const auto old = folder->GetFolders();

    try {
        folder->AddChildren(nullptr);
        FAIL() << "no exception";
    } catch (const kelcore::config::kel_exception& e) {
        EXPECT_EQ(e.GetCode(), kelcore::config::kResultNullPointer);
        EXPECT_NE(std::string(e.what()).find(typeid(vantro::VantroAssetList).name()),
                  std::string::npos)
            << e.what();
    }
    EXPECT_EQ(folder->GetFolders(), old);

    auto user = std::make_shared<client::VantroClientUser>();
    EXPECT_THROW(user->AddChildren(nullptr), kelcore::config::kel_exception);
    auto account = MakeNode<client::VantroClientAccount>();
    EXPECT_THROW(account->AddChildren(nullptr), kelcore::config::kel_exception);
    auto workspace = MakeNode<client::VantroClientWorkspace>();
    EXPECT_THROW(workspace->AddChildren(nullptr), kelcore::config::kel_exception);
}

TEST_F(ClientNodesTest, ANullListFromTheDatastoreLeavesTheNodeFetchingAndUnsubscribed) {
    auto workspace = MakeNode<client::VantroClientWorkspace>();
    fake->HoldAnswers(true);

    workspace->FetchChildren();
    ASSERT_EQ(fake->AnswerWaitingWithNull(), 1u);
    Pump();

    EXPECT_EQ(workspace->GetFetchChildrenState(), FetchChildrenState::Fetching);
    EXPECT_EQ(fake->CountListeners(), 0u);
}

TEST_F(ClientNodesTest, ANullItemThrowsNamingTheItemAndStoresNothing) {
    auto folder = FilledFolder(2);
    const auto old = folder->GetFolders();
    const auto list = kelcore::classref::MakeInterfaceRef<vantro::VantroAssetList>(
        std::vector<clienttest::InterfaceRef<vantro::VantroAsset>>{MakeAsset("folder", "X"),
                                                                   nullptr});

    try {
        folder->AddChildren(list);
        FAIL() << "no exception";
    } catch (const kelcore::config::kel_exception& e) {
        EXPECT_EQ(e.GetCode(), kelcore::config::kResultNullPointer);
        EXPECT_NE(std::string(e.what()).find(typeid(vantro::VantroAsset).name()), std::string::npos)
            << e.what();
    }
    EXPECT_EQ(folder->GetFolders(), old);

    auto account = MakeNode<client::VantroClientAccount>();
    const auto teams = kelcore::classref::MakeInterfaceRef<vantro::VantroTeamList>(
        std::vector<clienttest::InterfaceRef<vantro::VantroTeam>>{nullptr});
    try {
        account->AddChildren(teams);
        FAIL() << "no exception";
    } catch (const kelcore::config::kel_exception& e) {
        EXPECT_NE(std::string(e.what()).find(typeid(vantro::VantroTeam).name()), std::string::npos)
            << e.what();
    }
    EXPECT_EQ(account->GetFetchChildrenState(), FetchChildrenState::NotFetched);
    EXPECT_EQ(fake->CountListeners(), 1u) << "only the folder filled earlier is subscribed";
}

TEST_F(ClientNodesTest, TheUserFetchesAgainOnAccountListChangedWhateverItsGuid) {
    auto user = std::make_shared<client::VantroClientUser>();
    user->SetID(Guid::CreateUnique());
    fake->SetAccounts({});
    user->FetchChildren();
    Pump();
    ASSERT_EQ(fake->CountRequests(Kind::Accounts), 1u);
    fake->SetAccounts({MakeAccount("Studio")});

    fake->Send(VantroDatastore::AccountListChanged{Guid::CreateUnique()});
    Pump();

    EXPECT_EQ(fake->CountRequests(Kind::Accounts), 2u);
    ASSERT_EQ(user->GetAccounts().size(), 1u);
    EXPECT_EQ(NameOf(*user->GetAccounts()[0]), u"Studio");

    // Other kinds of message do not concern the user.
    fake->Send(VantroDatastore::AssetListChanged{user->GetID()});
    fake->Send(VantroDatastore::TeamListChanged{user->GetID()});
    EXPECT_EQ(fake->CountRequests(Kind::Accounts), 2u);
}

TEST_F(ClientNodesTest, AnAccountFetchesAgainOnlyOnTeamListChangedForItsOwnGuid) {
    auto account = MakeNode<client::VantroClientAccount>();
    fake->SetTeams(account->GetID(), {});
    account->FetchChildren();
    Pump();

    fake->Send(VantroDatastore::TeamListChanged{Guid::CreateUnique()});
    fake->Send(VantroDatastore::ProjectListChanged{account->GetID()});
    fake->Send(VantroDatastore::AccountListChanged{account->GetID()});
    EXPECT_EQ(fake->CountRequests(Kind::Teams, account->GetID()), 1u);

    fake->Send(VantroDatastore::TeamListChanged{account->GetID()});
    EXPECT_EQ(fake->CountRequests(Kind::Teams, account->GetID()), 2u);
}

TEST_F(ClientNodesTest, AWorkspaceFetchesAgainOnlyOnProjectListChangedForItsOwnGuid) {
    auto workspace = MakeNode<client::VantroClientWorkspace>();
    fake->SetProjects(workspace->GetID(), {});
    workspace->FetchChildren();
    Pump();

    fake->Send(VantroDatastore::ProjectListChanged{Guid::CreateUnique()});
    fake->Send(VantroDatastore::TeamListChanged{workspace->GetID()});
    fake->Send(VantroDatastore::AssetListChanged{workspace->GetID()});
    EXPECT_EQ(fake->CountRequests(Kind::Projects, workspace->GetID()), 1u);

    fake->Send(VantroDatastore::ProjectListChanged{workspace->GetID()});
    EXPECT_EQ(fake->CountRequests(Kind::Projects, workspace->GetID()), 2u);
}

TEST_F(ClientNodesTest, ProjectsFilesAndVersionStacksIgnoreEveryMessage) {
    auto project = MakeNode<client::VantroClientProject>();
    auto file = MakeNode<client::VantroClientFile>();
    auto stack = MakeNode<client::VantroClientVersionStack>();
    // None of them fills, so none subscribes by itself; the test puts them on the station.
    project->Subscribe();
    file->Subscribe();
    stack->Subscribe();
    ASSERT_EQ(fake->CountListeners(), 3u);
    Pump();

    for (const Guid& id : {project->GetID(), file->GetID(), stack->GetID()}) {
        fake->Send(VantroDatastore::AccountListChanged{id});
        fake->Send(VantroDatastore::TeamListChanged{id});
        fake->Send(VantroDatastore::ProjectListChanged{id});
        fake->Send(VantroDatastore::AssetListChanged{id});
    }

    EXPECT_TRUE(fake->Requests().empty());
    EXPECT_EQ(project->GetFetchChildrenState(), FetchChildrenState::NotFetched);
    EXPECT_EQ(file->GetFetchChildrenState(), FetchChildrenState::Fetched);
    EXPECT_EQ(stack->GetFetchChildrenState(), FetchChildrenState::Fetched);
    EXPECT_EQ(queue->Size(), 0u);
}

TEST_F(ClientNodesTest, AProjectsFetchOnlySetsFetchingAndAsksNothing) {
    auto project = MakeNode<client::VantroClientProject>();

    project->FetchChildren();
    Pump();

    EXPECT_EQ(project->GetFetchChildrenState(), FetchChildrenState::Fetching);
    EXPECT_TRUE(fake->Requests().empty());
}

TEST_F(ClientNodesTest, AFillThatArrivesAfterTheNodeDiedDoesNothing) {
    auto folder = MakeNode<client::VantroClientFolder>();
    const std::weak_ptr<client::VantroClientFolder> weak = folder;
    fake->HoldAnswers(true);
    folder->FetchChildren();

    folder.reset();
    Pump();
    ASSERT_TRUE(weak.expired()) << "the request held the node";
    fake->SetAssets(Guid(), {});
    ASSERT_EQ(fake->AnswerWaiting(), 1u);
    Pump();

    EXPECT_EQ(fake->CountListeners(), 0u);
}

}  // namespace
