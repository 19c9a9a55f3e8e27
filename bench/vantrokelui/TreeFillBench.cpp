// A full fill of the demo user's location tree against the review server started in-process
// on loopback, filled with the demo seed (two accounts, one of them seen only through a shared
// project, three workspaces with the shared one, five projects). Measured from FetchChildren
// on the user until every account and every workspace of the SDK back end is Fetched and every
// project holds its root folder ("EagerFill", what the tree does by itself), and the same
// until every root folder has been listed as well, each asked for as soon as its project
// appears, as a picker that opens every project would ("WithRootFolders"; projects themselves
// stay Fetching by design: their one child comes with them).
//
// Baseline, in the same run: the same listings fetched by plain sequential SDK calls, each
// waited for before the next, without the queues and without nodes. "requests" is the number
// of requests per fill, counted on the client's transport.
//
// The queues send a new listing at once only when idle; while busy (and a request keeps its
// queue busy for the window of 60 s) a listing waits for the next five-second tick. Each
// iteration starts with fresh queues, since they die with the tree of the iteration before.
//
//   build/release/bin/TreeFillBench --benchmark_min_time=1x
#include <stdlib.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>
#include <curl/curl.h>

#include <kelcore/async/Future.h>
#include <kelcore/threads/MainThread.h>
#include <kelcore/threads/MainThreadQueue.h>
#include <vantrocommon/http/CurlTransport.h>
#include <vantrocommon/http/Transport.h>
#include <vantrokelui/model/connector/FetchAccountChildrenQueue.h>
#include <vantrokelui/model/connector/FetchFolderChildrenQueue.h>
#include <vantrokelui/model/connector/FetchWorkspaceChildrenQueue.h>
#include <vantrokelui/model/connector/SdkClient.h>
#include <vantrokelui/model/connector/VantroSdkUser.h>
#include <vantrokelui/model/connector/VantroSdkWorkspace.h>
#include <vantrokelui/nodes/VantroAccount.h>
#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrokelui/nodes/VantroProject.h>
#include <vantrokelui/nodes/VantroWorkspace.h>
#include <vantrosdk/Accounts.h>
#include <vantrosdk/Assets.h>
#include <vantrosdk/GetChildAssetsRequest.h>
#include <vantrosdk/GetCurrentUserAccountListRequest.h>
#include <vantrosdk/GetCurrentUserRequest.h>
#include <vantrosdk/GetProjectsByWorkspaceRequest.h>
#include <vantrosdk/GetSharedProjectsRequest.h>
#include <vantrosdk/GetWorkspacesByAccountRequest.h>
#include <vantrosdk/Projects.h>
#include <vantrosdk/VantroClient.h>
#include <vantrosdk/VantroConfig.h>
#include <vantrosdk/Workspaces.h>

#include "admin/DemoSeeder.h"
#include "api/AccessTokens.h"
#include "http/Server.h"
#include "store/DataDirectory.h"

namespace {

namespace integration = vantrokelui::model::VantroConnectorIntegration;
using vantrokelui::FetchChildrenState;

// The demo seed as the demo user sees it.
constexpr std::size_t kProjects = 5;

/// Counts the requests that pass through it to the real transport. Any thread.
class CountingTransport : public vantrocommon::http::Transport {
public:
    explicit CountingTransport(std::shared_ptr<vantrocommon::http::Transport> inner)
        : inner(std::move(inner)) {}

    kelcore::async::Future<vantrocommon::http::Reply> Send(
        vantrocommon::http::Request request,
        vantrocommon::http::CancellationToken cancel) override {
        count.fetch_add(1);
        return inner->Send(std::move(request), std::move(cancel));
    }

    std::size_t Count() const { return count.load(); }

private:
    std::shared_ptr<vantrocommon::http::Transport> inner;
    std::atomic<std::size_t> count{0};
};

/// The server with the demo seed, and the SDK client of the demo user pointed at it.
struct World {
    std::filesystem::path root;
    std::unique_ptr<vantroserver::http::Server> server;
    std::shared_ptr<CountingTransport> transport;
    std::shared_ptr<vantrosdk::VantroClient> client;
    vantrosdk::User user;
    std::shared_ptr<kelcore::threads::MainThreadQueue> mainThread;

    ~World() {
        integration::ClearClient();
        client.reset();
        vantrosdk::VantroClient::ResetForTesting();
        if (server) {
            server->Stop();
        }
        std::filesystem::remove_all(root);
    }
};

template <class T>
T Wait(const kelcore::async::Future<T>& future) {
    std::promise<void> done;
    future.Then([&done](const kelcore::async::Future<T>&) { done.set_value(); });
    done.get_future().wait();
    return future.Get();
}

void SetUp(World& made) {
    char pattern[] = "/tmp/vantro-treefill-XXXXXX";
    made.root = mkdtemp(pattern);
    vantroserver::store::StoreOptions storeOptions;
    storeOptions.passwordIterations = 1000;  // signing in is not what is measured
    auto directory =
        vantroserver::store::DataDirectory::Initialize(made.root / "data", storeOptions);
    const auto store = directory.GetStore();
    std::string demoId;
    for (const auto& [key, value] : vantroserver::admin::DemoSeeder::Seed(*store)) {
        if (key == "demo_user_id") {
            demoId = value;
        }
    }
    const vantroserver::api::AccessTokens tokens(store, directory.SigningKey(),
                                                 std::chrono::hours(24));
    const std::string token = tokens.Issue(demoId, "vantrokelui-desktop", "");

    vantroserver::http::ServeOptions options;
    options.dataDir = made.root / "data";
    options.listenAddress = "127.0.0.1";
    made.server = std::make_unique<vantroserver::http::Server>(options);
    const unsigned short port = made.server->Start();

    kelcore::threads::SetMainThread();
    made.mainThread = std::make_shared<kelcore::threads::MainThreadQueue>();
    kelcore::threads::SetMainThreadDispatcher(made.mainThread);

    vantrosdk::VantroConfig config("vantrokelui-desktop");
    config.SetEndpoint({.apiBase = "http://127.0.0.1:" + std::to_string(port)});
    made.transport =
        std::make_shared<CountingTransport>(vantrocommon::http::CurlTransport::Create({}));
    config.SetTransport(made.transport);
    if (!vantrosdk::VantroClient::Initialize(config, {}).IsSuccess()) {
        throw std::runtime_error("the SDK client was not made");
    }
    made.client = vantrosdk::VantroClient::Get();
    made.client->UpdateAccessToken(token);
    integration::SetClient(made.client);
    made.user = Wait(made.client->GetAccounts()->GetCurrentUser(vantrosdk::GetCurrentUserRequest()))
                    ->GetUserObject();
}

World& TheWorld() {
    static World world;
    static const bool ready = (SetUp(world), true);
    (void)ready;
    return world;
}

/// Every project below `user` once every account and SDK workspace is Fetched; empty before.
std::vector<std::shared_ptr<vantrokelui::VantroProject>> FilledProjects(
    const std::shared_ptr<vantrokelui::VantroUser>& user) {
    std::vector<std::shared_ptr<vantrokelui::VantroProject>> projects;
    if (user->GetFetchChildrenState() != FetchChildrenState::Fetched ||
        user->GetAccounts().empty()) {
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
                if (!project->GetRootFolder()) {
                    return {};
                }
                projects.push_back(project);
            }
        }
    }
    return projects;
}

/// Every project that has appeared so far, Fetched or not.
void ForEachProject(
    const std::shared_ptr<vantrokelui::VantroUser>& user,
    const std::function<void(const std::shared_ptr<vantrokelui::VantroProject>&)>& visit) {
    for (const auto& account : user->GetAccounts()) {
        for (const auto& workspace : account->GetWorkspaces()) {
            for (const auto& project : workspace->GetProjects()) {
                visit(project);
            }
        }
    }
}

/// One fill through the queues; `withRootFolders` also lists each root folder.
void FillThroughQueues(World& world, bool withRootFolders) {
    auto user = std::make_shared<integration::VantroSdkUser>(world.user);
    std::vector<std::shared_ptr<vantrokelui::VantroFolder>> asked;
    user->FetchChildren();
    const bool filled = world.mainThread->PumpUntil(
        [&] {
            if (withRootFolders) {
                ForEachProject(user, [&](const auto& project) {
                    const auto rootFolder = project->GetRootFolder();
                    if (rootFolder &&
                        rootFolder->GetFetchChildrenState() == FetchChildrenState::NotFetched) {
                        rootFolder->FetchChildren();
                        asked.push_back(rootFolder);
                    }
                });
            }
            const auto projects = FilledProjects(user);
            if (projects.size() != kProjects) {
                return false;
            }
            if (!withRootFolders) {
                return true;
            }
            for (const auto& project : projects) {
                if (project->GetRootFolder()->GetFetchChildrenState() !=
                    FetchChildrenState::Fetched) {
                    return false;
                }
            }
            return true;
        },
        std::chrono::minutes(5));
    if (!filled) {
        throw std::runtime_error("the tree did not fill");
    }
}

/// Lets the tree of an iteration die, with its queues, before the next one starts.
void ForgetTree(World& world) {
    const std::weak_ptr<integration::FetchAccountChildrenQueue> accounts =
        integration::FetchAccountChildrenQueue::GetInstance();
    const std::weak_ptr<integration::FetchWorkspaceChildrenQueue> workspaces =
        integration::FetchWorkspaceChildrenQueue::GetInstance();
    const std::weak_ptr<integration::FetchFolderChildrenQueue> folders =
        integration::FetchFolderChildrenQueue::GetInstance();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!(accounts.expired() && workspaces.expired() && folders.expired())) {
        world.mainThread->RunUntilEmpty();
        if (std::chrono::steady_clock::now() > deadline) {
            throw std::runtime_error("a queue outlived its tree");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

/// The same listings with one plain SDK call after the other.
void FillSequentially(World& world, bool withRootFolders) {
    const auto& client = world.client;
    std::vector<vantrosdk::Project> projects;
    const auto accounts = Wait(client->GetAccounts()->GetCurrentUserAccountList(
                                   vantrosdk::GetCurrentUserAccountListRequest()))
                              ->GetCurrentUserAccountListObject();
    for (const auto& account : accounts) {
        std::vector<vantrosdk::Workspace> workspaces;
        for (int page = 1;; ++page) {
            vantrosdk::GetWorkspacesByAccountRequest request(account.id);
            request.SetPageNumber(page);
            const auto answer = Wait(client->GetWorkspaces()->GetWorkspacesByAccount(request));
            const auto& list = answer->GetWorkspaceList();
            workspaces.insert(workspaces.end(), list.begin(), list.end());
            if (page >= answer->GetTotalPages().value_or(1)) {
                break;
            }
        }
        if (workspaces.empty()) {
            vantrosdk::GetSharedProjectsRequest request;
            request.SetAccountId(account.id);
            const auto list = Wait(client->GetProjects()->GetSharedProjects(request))
                                  ->GetSharedProjectListObject();
            projects.insert(projects.end(), list.begin(), list.end());
        }
        for (const auto& workspace : workspaces) {
            for (int page = 1;; ++page) {
                vantrosdk::GetProjectsByWorkspaceRequest request(workspace.id);
                request.SetPageNumber(page);
                const auto answer = Wait(client->GetProjects()->GetProjectsByWorkspace(request));
                const auto& list = answer->GetProjectList();
                projects.insert(projects.end(), list.begin(), list.end());
                if (page >= answer->GetTotalPages().value_or(1)) {
                    break;
                }
            }
        }
    }
    if (projects.size() != kProjects) {
        throw std::runtime_error("the sequential fill found " + std::to_string(projects.size()) +
                                 " projects");
    }
    if (!withRootFolders) {
        return;
    }
    for (const auto& project : projects) {
        for (int page = 1;; ++page) {
            vantrosdk::GetChildAssetsRequest request(project.rootAsset.id.value());
            request.SetPageNumber(page);
            const auto answer = Wait(client->GetAssets()->GetChildAssets(request));
            if (!answer->IsSuccessful()) {
                throw std::runtime_error("a root folder listing was refused");
            }
            if (page >= answer->GetTotalPages().value_or(1)) {
                break;
            }
        }
    }
}

void Run(benchmark::State& state, const std::function<void(World&)>& fill, bool forget) {
    World& world = TheWorld();
    std::size_t requests = 0;
    for (auto _ : state) {
        const std::size_t before = world.transport->Count();
        fill(world);
        requests += world.transport->Count() - before;
        if (forget) {
            state.PauseTiming();
            ForgetTree(world);
            state.ResumeTiming();
        }
    }
    state.counters["requests"] =
        benchmark::Counter(static_cast<double>(requests), benchmark::Counter::kAvgIterations);
}

void BM_EagerFill_Queues(benchmark::State& state) {
    Run(
        state, [](World& world) { FillThroughQueues(world, false); }, true);
}
void BM_EagerFill_SequentialBaseline(benchmark::State& state) {
    Run(
        state, [](World& world) { FillSequentially(world, false); }, false);
}
void BM_WithRootFolders_Queues(benchmark::State& state) {
    Run(
        state, [](World& world) { FillThroughQueues(world, true); }, true);
}
void BM_WithRootFolders_SequentialBaseline(benchmark::State& state) {
    Run(
        state, [](World& world) { FillSequentially(world, true); }, false);
}

// The queues' fills take seconds (five-second ticks): a few iterations say enough.
BENCHMARK(BM_EagerFill_Queues)->Iterations(5)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EagerFill_SequentialBaseline)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WithRootFolders_Queues)->Iterations(5)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WithRootFolders_SequentialBaseline)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
