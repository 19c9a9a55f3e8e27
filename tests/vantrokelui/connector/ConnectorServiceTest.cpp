// The SDK back end against the real vantro-server on loopback: a signed-in user's tree fills
// itself, a large folder arrives page by page, a rate-limited service refuses requests with 429
// and the queue still completes every listing, the shared projects of an account without
// teams, and the storage check. Real time and real executors: the test's thread is the main
// thread and pumps the deliveries of the nodes' properties until what it waits for holds.
//
// The service offers no count of the requests it answered (no request log, no counting
// route), so requests are counted on the client: a transport that records each exchange
// around the real one.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <kelcore/string/String.h>
#include <kelcore/threads/MainThread.h>
#include <kelcore/threads/MainThreadQueue.h>
#include <kelcore/utility/Guid.h>
#include <vantroauth/jwt/AuthManager.h>
#include <vantrocommon/ServiceEndpoint.h>
#include <vantrocommon/http/CurlTransport.h>
#include <vantrokelui/model/connector/SdkClient.h>
#include <vantrokelui/model/connector/UserFunctions.h>
#include <vantrokelui/model/connector/VantroSdkFolder.h>
#include <vantrokelui/model/connector/VantroSdkUser.h>
#include <vantrokelui/model/connector/VantroSdkWorkspace.h>
#include <vantrokelui/nodes/VantroAccount.h>
#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrokelui/nodes/VantroProject.h>
#include <vantrokelui/nodes/VantroWorkspace.h>
#include <vantrosdk/VantroClient.h>
#include <vantrosdk/VantroConfig.h>

#include "ConnectorTestSupport.h"
#include "support/AwaitFuture.h"
#include "vantrokelui/support/CloudShareFixture.h"

namespace {

using namespace std::chrono_literals;
using vantrokelui::FetchChildrenState;
using vantrokelui::VantroNode;
using vantrokeluitest::Recorded;
namespace integration = vantrokelui::model::VantroConnectorIntegration;

std::u16string NameOf(const std::shared_ptr<VantroNode>& node) {
    const auto name = node->GetName();
    return {name.begin(), name.end()};
}

kelcore::utility::Guid PlatformId(const std::string& id) {
    return kelcore::utility::Guid(id);
}

class ConnectorServiceTest : public vantrokeluitest::CloudShareFixture {
protected:
    void SetUp() override {
        CloudShareFixture::SetUp();
        kelcore::threads::SetMainThread();
        mainThread = std::make_shared<kelcore::threads::MainThreadQueue>();
        kelcore::threads::SetMainThreadDispatcher(mainThread);
    }
    void TearDown() override {
        mainThread->RunUntilEmpty();
        kelcore::threads::SetMainThreadDispatcher(nullptr);
        CloudShareFixture::TearDown();
    }

    /// Runs the deliveries that the nodes' setters queue, waiting for more, until `done`.
    bool PumpUntil(const std::function<bool()>& done, std::chrono::seconds limit = 90s) {
        return mainThread->PumpUntil(done, limit);
    }

    /// Signs the host's user in with a stored token; the SDK client is then there.
    void SignIn() {
        StoreToken();
        ASSERT_TRUE(SignInAndWait());
        ASSERT_TRUE(integration::GetClient());
    }

    /// The access token the sign-in library holds for the user.
    static std::string AccessToken() {
        return testsupport::Await(vantroauth::jwt::GetAccessToken(false));
    }

    std::shared_ptr<vantrokelui::VantroUser> CurrentUser() {
        auto answers = std::make_shared<Recorded<std::shared_ptr<vantrokelui::VantroUser>>>();
        integration::GetCurrentUser(
            [answers](const std::shared_ptr<vantrokelui::VantroUser>& user) {
                answers->Add(user);
            });
        const auto values = answers->WaitFor(1);
        return values.empty() ? nullptr : values.front();
    }

    static std::shared_ptr<integration::VantroSdkFolder> FolderNode(const std::string& id,
                                                                    const std::string& name) {
        vantrosdk::Asset asset;
        asset.id = vantrocommon::Guid(id);
        asset.name = name;
        asset.type = "folder";
        return std::make_shared<integration::VantroSdkFolder>(asset, std::weak_ptr<VantroNode>());
    }

    /// Every project below `user`, once every account and SDK workspace is Fetched.
    static std::vector<std::shared_ptr<vantrokelui::VantroProject>> FilledProjects(
        const std::shared_ptr<vantrokelui::VantroUser>& user) {
        std::vector<std::shared_ptr<vantrokelui::VantroProject>> projects;
        if (user->GetFetchChildrenState() != FetchChildrenState::Fetched) {
            return {};
        }
        for (const auto& account : user->GetAccounts()) {
            if (account->GetFetchChildrenState() != FetchChildrenState::Fetched ||
                account->GetWorkspaces().empty()) {
                return {};
            }
            for (const auto& workspace : account->GetWorkspaces()) {
                if (std::dynamic_pointer_cast<integration::VantroSdkWorkspace>(workspace) &&
                    workspace->GetFetchChildrenState() != FetchChildrenState::Fetched) {
                    return {};
                }
                for (const auto& project : workspace->GetProjects()) {
                    projects.push_back(project);
                }
            }
        }
        return projects;
    }

    std::shared_ptr<kelcore::threads::MainThreadQueue> mainThread;
};

TEST_F(ConnectorServiceTest, ASignedInUsersTreeFillsItselfDownToTheRootFolders) {
    StartWorld();
    const auto betaIds = IdsIn(Admin({"project", "add", "--team", editors, "--name", "Beta"}));
    const auto color =
        AdminId({"team", "add", "--account", studio, "--name", "Color", "--member", kUser});
    const auto gradeIds = IdsIn(Admin({"project", "add", "--team", color, "--name", "Grade"}));
    ASSERT_EQ(betaIds.size(), 2u);
    ASSERT_EQ(gradeIds.size(), 2u);
    SignIn();
    const auto user = CurrentUser();
    ASSERT_TRUE(user);

    user->FetchChildren();
    ASSERT_TRUE(PumpUntil([&] { return FilledProjects(user).size() == 3; }))
        << "the tree did not fill";

    const auto accounts = user->GetAccounts();
    ASSERT_EQ(accounts.size(), 1u);
    EXPECT_EQ(accounts[0]->GetID(), PlatformId(studio));
    EXPECT_EQ(NameOf(accounts[0]), u"Studio");
    const auto workspaces = accounts[0]->GetWorkspaces();
    ASSERT_EQ(workspaces.size(), 2u);
    EXPECT_EQ(NameOf(workspaces[0]), u"Color");
    EXPECT_EQ(NameOf(workspaces[1]), u"Editors");
    EXPECT_EQ(workspaces[1]->GetID(), PlatformId(editors));
    const auto editorsProjects = workspaces[1]->GetProjects();
    ASSERT_EQ(editorsProjects.size(), 2u);
    EXPECT_EQ(NameOf(editorsProjects[0]), u"Alpha");
    EXPECT_EQ(editorsProjects[0]->GetID(), PlatformId(alpha));
    EXPECT_EQ(editorsProjects[1]->GetID(), PlatformId(betaIds[0]));
    const auto alphaRoot = editorsProjects[0]->GetRootFolder();
    ASSERT_TRUE(alphaRoot);
    EXPECT_EQ(alphaRoot->GetID(), PlatformId(root));
    EXPECT_EQ(workspaces[0]->GetProjects().at(0)->GetRootFolder()->GetID(),
              PlatformId(gradeIds[1]));
    for (const auto& project : FilledProjects(user)) {
        EXPECT_EQ(NameOf(project->GetRootFolder()), NameOf(project));
        EXPECT_EQ(project->GetRootFolder()->GetParent(), project);
    }
}

TEST_F(ConnectorServiceTest, AnAccountWithoutTeamsShowsOneSharedProjectsWorkspace) {
    StartWorld();
    AddUser("bob");
    const auto harbor = AdminId(
        {"account", "add", "--name", "Harbor", "--owner", "bob", "--storage-limit", "1000000"});
    const auto production =
        AdminId({"team", "add", "--account", harbor, "--name", "Production", "--member", "bob"});
    const auto documentary =
        IdsIn(Admin({"project", "add", "--team", production, "--name", "Documentary"}));
    ASSERT_EQ(documentary.size(), 2u);
    Admin({"project", "add", "--team", production, "--name", "Music Video"});
    Admin({"share", "project", "--project", documentary[0], "--user", kUser});
    // An account of ann's own with neither a team nor a shared project.
    const auto solo =
        AdminId({"account", "add", "--name", "Solo", "--owner", kUser, "--storage-limit", "1000"});
    SignIn();
    const auto user = CurrentUser();
    ASSERT_TRUE(user);

    user->FetchChildren();
    const auto sharedWorkspacesFilled = [&] {
        // Alpha in Studio's Editors, Documentary shared from Harbor.
        if (FilledProjects(user).size() != 2) {
            return false;
        }
        for (const auto& account : user->GetAccounts()) {
            if (NameOf(account) != u"Studio" &&
                NameOf(account->GetWorkspaces().front()) != u"Shared Projects") {
                return false;
            }
        }
        return true;
    };
    ASSERT_TRUE(PumpUntil(sharedWorkspacesFilled)) << "the shared projects did not arrive";

    const auto accounts = user->GetAccounts();
    ASSERT_EQ(accounts.size(), 3u);
    EXPECT_EQ(NameOf(accounts[0]), u"Harbor");
    EXPECT_EQ(NameOf(accounts[1]), u"Solo");
    EXPECT_EQ(accounts[1]->GetID(), PlatformId(solo));

    const auto harborWorkspaces = accounts[0]->GetWorkspaces();
    ASSERT_EQ(harborWorkspaces.size(), 1u);
    EXPECT_EQ(NameOf(harborWorkspaces[0]), u"Shared Projects");
    EXPECT_FALSE(std::dynamic_pointer_cast<integration::VantroSdkWorkspace>(harborWorkspaces[0]));
    const auto shared = harborWorkspaces[0]->GetProjects();
    ASSERT_EQ(shared.size(), 1u) << "only the project shared with ann";
    EXPECT_EQ(shared[0]->GetID(), PlatformId(documentary[0]));
    EXPECT_EQ(NameOf(shared[0]->GetRootFolder()), u"Documentary");
    EXPECT_EQ(shared[0]->GetRootFolder()->GetID(), PlatformId(documentary[1]));

    const auto soloWorkspaces = accounts[1]->GetWorkspaces();
    ASSERT_EQ(soloWorkspaces.size(), 1u);
    EXPECT_EQ(NameOf(soloWorkspaces[0]), u"Shared Projects");
    EXPECT_TRUE(soloWorkspaces[0]->GetProjects().empty());

    // An account with a workspace shows no shared projects.
    ASSERT_EQ(accounts[2]->GetWorkspaces().size(), 1u);
    EXPECT_EQ(NameOf(accounts[2]->GetWorkspaces()[0]), u"Editors");
}

TEST_F(ConnectorServiceTest, AFolderOf250ChildrenArrivesInThreePagesFetchedFromTheFirst) {
    StartWorld();
    SignIn();
    const auto bearer = testsupport::Bearer(AccessToken());
    for (int index = 1; index <= 250; ++index) {
        const auto reply = client.PostJson(
            Url("/v2/assets/" + root + "/children"),
            boost::json::object{{"name", "Shot " + std::to_string(index)}, {"type", "folder"}},
            bearer);
        ASSERT_EQ(reply.status, 201) << reply.body;
    }
    const auto folder = FolderNode(root, "Alpha");
    std::vector<std::string> events;
    using vantrokelui::utility::SharedPtrVector;
    const auto foldersBinding =
        folder->AddFoldersBinding([&](const SharedPtrVector<vantrokelui::VantroFolder>& list) {
            events.push_back("folders " + std::to_string(list.size()));
        });
    const auto stateBinding = folder->AddFetchChildrenStateBinding([&](FetchChildrenState state) {
        events.push_back("state " + std::to_string(static_cast<int>(state)));
    });

    folder->FetchChildren();
    ASSERT_TRUE(PumpUntil([&] { return !events.empty() && events.back() == "folders 250"; }))
        << "the listing did not finish";

    EXPECT_EQ(events, (std::vector<std::string>{"folders 0", "state 0", "state 1", "folders 100",
                                                "state 2", "folders 200", "folders 250"}));
    const auto folders = folder->GetFolders();
    EXPECT_EQ(NameOf(folders.front()), u"Shot 1");
    EXPECT_EQ(NameOf(folders.back()), u"Shot 250");
}

TEST_F(ConnectorServiceTest, ARateLimitedServiceRefusesWith429AndEveryListingStillCompletes) {
    StartWorld({"--rate-limit", "5/2000", "--page-size", "1"});
    std::vector<std::string> folderIds;
    for (int index = 1; index <= 6; ++index) {
        folderIds.push_back(AdminId(
            {"folder", "add", "--parent", root, "--name", "Reel " + std::to_string(index)}));
        for (const char* child : {"A", "B"}) {
            Admin({"folder", "add", "--parent", folderIds.back(), "--name", child});
        }
    }
    // The SDK client, made here with a transport that records what it sends; the sign-in then
    // gives this client the token.
    vantrosdk::VantroConfig config(kClientId);
    const auto endpoint = vantrocommon::ServiceEndpoint::Resolve();
    config.SetEndpoint(endpoint);
    const auto recorder = std::make_shared<connectortest::RecordingTransport>(
        vantrocommon::http::CurlTransport::Create({.caFile = endpoint.caFile}));
    config.SetTransport(recorder);
    ASSERT_TRUE(vantrosdk::VantroClient::Initialize(config, {}).IsSuccess());
    SignIn();
    ASSERT_EQ(integration::GetClient(), vantrosdk::VantroClient::Get());

    // The token's budget is spent by others just before the listings start, so their first
    // requests are refused.
    const auto bearer = testsupport::Bearer(AccessToken());
    for (int request = 0; request < 5; ++request) {
        ASSERT_EQ(client.Get(Url("/v2/me"), bearer).status, 200);
    }
    std::vector<std::shared_ptr<integration::VantroSdkFolder>> folders;
    for (const auto& id : folderIds) {
        folders.push_back(FolderNode(id, "Reel"));
        folders.back()->FetchChildren();
    }
    const auto allListed = [&] {
        return std::all_of(folders.begin(), folders.end(),
                           [](const auto& folder) { return folder->GetFolders().size() == 2; });
    };
    ASSERT_TRUE(PumpUntil(allListed, 120s)) << "not every listing completed";

    for (const auto& folder : folders) {
        EXPECT_EQ(folder->GetFetchChildrenState(), FetchChildrenState::Fetched);
        EXPECT_EQ(NameOf(folder->GetFolders()[0]), u"A");
        EXPECT_EQ(NameOf(folder->GetFolders()[1]), u"B");
    }
    std::vector<connectortest::RecordingTransport::Exchange> listings;
    for (const auto& exchange : recorder->Exchanges()) {
        if (exchange.path.find("/children") != std::string::npos) {
            listings.push_back(exchange);
        }
    }
    const auto refused = std::count_if(listings.begin(), listings.end(),
                                       [](const auto& exchange) { return exchange.status == 429; });
    EXPECT_GE(refused, 1) << "the service refused nothing; the test proves nothing";
    EXPECT_EQ(static_cast<long>(listings.size()) - refused, 12) << "two pages for each folder";

    // From the first answer on, the queue knows the limit: no 2-second window holds more than
    // five of its requests.
    const auto firstAnswer =
        std::min_element(listings.begin(), listings.end(), [](const auto& a, const auto& b) {
            return a.answered.value_or(kelcore::threads::Clock::TimePoint::max()) <
                   b.answered.value_or(kelcore::threads::Clock::TimePoint::max());
        });
    ASSERT_TRUE(firstAnswer != listings.end() && firstAnswer->answered);
    std::vector<kelcore::threads::Clock::TimePoint> sent;
    for (const auto& exchange : listings) {
        if (exchange.sent > *firstAnswer->answered) {
            sent.push_back(exchange.sent);
        }
    }
    std::sort(sent.begin(), sent.end());
    ASSERT_GE(sent.size(), 6u);
    std::size_t busiest = 0;
    for (std::size_t first = 0; first < sent.size(); ++first) {
        std::size_t last = first;
        while (last < sent.size() && sent[last] - sent[first] < 2000ms) {
            ++last;
        }
        busiest = std::max(busiest, last - first);
    }
    EXPECT_LE(busiest, 5u);
    EXPECT_GE(busiest, 1u);
}

TEST_F(ConnectorServiceTest, TheStorageCheckAtTheLimitIsFalse) {
    StartWorld();
    const auto tight =
        AdminId({"account", "add", "--name", "Tight", "--owner", kUser, "--storage-limit", "100"});
    const auto team =
        AdminId({"team", "add", "--account", tight, "--name", "Crew", "--member", kUser});
    const auto ids = IdsIn(Admin({"project", "add", "--team", team, "--name", "Promo"}));
    ASSERT_EQ(ids.size(), 2u);
    Admin({"file", "add", "--parent", ids[1], "--name", "full.mov", "--size", "100"});
    // The service refuses to go past a limit, so one byte more is refused at the source.
    const auto oneMore =
        server.Run({"file", "add", "--parent", ids[1], "--name", "more.mov", "--size", "1"});
    EXPECT_NE(oneMore.exitCode, 0);
    SignIn();

    auto atLimit = std::make_shared<Recorded<bool>>();
    integration::CheckStorageLimitOnAccount(vantrocommon::Guid(tight),
                                            [atLimit](bool over) { atLimit->Add(over); });
    EXPECT_EQ(atLimit->WaitFor(1), std::vector<bool>{false});

    auto roomy = std::make_shared<Recorded<bool>>();
    integration::CheckStorageLimitOnAccount(vantrocommon::Guid(studio),
                                            [roomy](bool over) { roomy->Add(over); });
    EXPECT_EQ(roomy->WaitFor(1), std::vector<bool>{false});
}

TEST_F(ConnectorServiceTest, WithoutAClientTheUserStaysFetchingAndGetCurrentUserAnswersNull) {
    StartWorld();
    ASSERT_FALSE(integration::GetClient());
    std::vector<std::shared_ptr<vantrokelui::VantroUser>> answers;
    integration::GetCurrentUser(
        [&](const std::shared_ptr<vantrokelui::VantroUser>& user) { answers.push_back(user); });
    ASSERT_EQ(answers.size(), 1u) << "answered at once";
    EXPECT_EQ(answers[0], nullptr);

    vantrosdk::User record;
    record.id = vantrocommon::Guid(alpha);
    const auto user = std::make_shared<integration::VantroSdkUser>(record);
    user->FetchChildren();
    mainThread->RunUntilEmpty();
    EXPECT_EQ(user->GetFetchChildrenState(), FetchChildrenState::Fetching);
    EXPECT_TRUE(user->GetAccounts().empty());
}

}  // namespace
