#include "ConnectorTestSupport.h"

#include <algorithm>
#include <utility>

#include <boost/json/serialize.hpp>

#include <kelcore/async/Promise.h>
#include <vantrokelui/model/connector/SdkClient.h>
#include <vantrosdk/VantroConfig.h>

namespace connectortest {

namespace integration = vantrokelui::model::VantroConnectorIntegration;

vantrocommon::http::HeaderMap PagingHeaders(int page, int totalPages) {
    return {{"PAGE-NUMBER", std::to_string(page)}, {"TOTAL-PAGES", std::to_string(totalPages)}};
}

std::vector<vantrosdk::Asset> MakeAssets(const std::string& prefix, int count,
                                         const std::string& type) {
    std::vector<vantrosdk::Asset> assets;
    for (int index = 1; index <= count; ++index) {
        vantrosdk::Asset asset;
        asset.id = vantrocommon::Guid::CreateUnique();
        asset.name = prefix + " " + std::to_string(index);
        asset.type = type;
        assets.push_back(asset);
    }
    return assets;
}

std::shared_ptr<vantrosdk::GetChildAssetsResponse> ChildAssetsResponse(
    int status, vantrocommon::http::HeaderMap header, std::vector<vantrosdk::Asset> assets) {
    return std::make_shared<vantrosdk::GetChildAssetsResponse>(status, std::move(header),
                                                               std::move(assets));
}

// FakeService

namespace {

std::string Id(const vantrocommon::Guid& id) {
    return id.AsString();
}

// "/v2/accounts/ID/teams" -> {"v2", "accounts", "ID", "teams"}
std::vector<std::string> Segments(const std::string& path) {
    std::vector<std::string> segments;
    std::size_t start = 1;
    while (start <= path.size()) {
        const std::size_t end = path.find('/', start);
        segments.push_back(path.substr(start, end == std::string::npos ? end : end - start));
        if (end == std::string::npos) {
            break;
        }
        start = end + 1;
    }
    return segments;
}

vantrocommon::http::Reply NotFound() {
    vantrocommon::http::Reply reply;
    reply.status = 404;
    reply.body = R"({"error":"not_found","error_description":"no such resource"})";
    return reply;
}

}  // namespace

vantrocommon::http::Reply FakeService::Answer(const vantrocommon::http::Request& request) {
    // The SDK asks for apiBase + path (+ "?page=N").
    const std::size_t pathStart = request.url.find("/v2/");
    std::string path = pathStart == std::string::npos ? request.url : request.url.substr(pathStart);
    std::optional<int> page;
    if (const std::size_t query = path.find('?'); query != std::string::npos) {
        const std::string parameters = path.substr(query + 1);
        path.resize(query);
        if (parameters.rfind("page=", 0) == 0) {
            page = std::stoi(parameters.substr(5));
        }
    }
    std::function<std::optional<vantrocommon::http::Reply>(const std::string&, int)> interceptor;
    {
        const std::lock_guard lock(mutex);
        log.push_back(Logged{path, page, kelcore::threads::Now()});
        interceptor = intercept;
    }
    if (interceptor) {
        if (auto reply = interceptor(path, page.value_or(1))) {
            return *reply;
        }
    }

    const std::lock_guard lock(mutex);
    const std::vector<std::string> segments = Segments(path);
    const int wanted = page.value_or(1);
    if (segments.size() == 2 && segments[1] == "me") {
        return Object(user);
    }
    if (segments.size() == 2 && segments[1] == "accounts") {
        return Listing(accounts, wanted);
    }
    if (segments.size() == 3 && segments[1] == "accounts") {
        for (const auto& account : accounts) {
            if (account.as_object().at("id").as_string() == segments[2]) {
                return Object(account.as_object());
            }
        }
        return NotFound();
    }
    if (segments.size() == 4 && segments[1] == "accounts" && segments[3] == "teams") {
        return Listing(teamsByAccount[segments[2]], wanted);
    }
    if (segments.size() == 4 && segments[1] == "accounts" && segments[3] == "shared_projects") {
        return Listing(sharedByAccount[segments[2]], wanted);
    }
    if (segments.size() == 4 && segments[1] == "teams" && segments[3] == "projects") {
        return Listing(projectsByTeam[segments[2]], wanted);
    }
    if (segments.size() == 4 && segments[1] == "assets" && segments[3] == "children") {
        return Listing(childrenByFolder[segments[2]], wanted);
    }
    return NotFound();
}

vantrocommon::http::Reply FakeService::Listing(const boost::json::array& items, int page) const {
    const int total = static_cast<int>(items.size());
    const int totalPages = std::max(1, (total + pageSize - 1) / pageSize);
    boost::json::array slice;
    for (int index = (page - 1) * pageSize; index >= 0 && index < total && index < page * pageSize;
         ++index) {
        slice.push_back(items[static_cast<std::size_t>(index)]);
    }
    vantrocommon::http::Reply reply;
    reply.status = 200;
    reply.body = boost::json::serialize(slice);
    reply.headers = PagingHeaders(page, totalPages);
    reply.headers["PER-PAGE"] = std::to_string(pageSize);
    reply.headers["TOTAL"] = std::to_string(total);
    for (const std::string& name : droppedHeaders) {
        reply.headers.erase(name);
    }
    AddLimitHeaders(reply);
    return reply;
}

vantrocommon::http::Reply FakeService::Object(const boost::json::object& item) const {
    vantrocommon::http::Reply reply;
    reply.status = 200;
    reply.body = boost::json::serialize(item);
    AddLimitHeaders(reply);
    return reply;
}

void FakeService::AddLimitHeaders(vantrocommon::http::Reply& reply) const {
    if (limitHeader) {
        reply.headers["X-RATELIMIT-LIMIT"] = *limitHeader;
    }
    if (windowHeader) {
        reply.headers["X-RATELIMIT-WINDOW"] = *windowHeader;
    }
}

void FakeService::SetUser(const vantrocommon::Guid& id, const std::string& name) {
    const std::lock_guard lock(mutex);
    user = {{"id", Id(id)}, {"name", name}, {"username", name}, {"email", ""}};
}

vantrocommon::Guid FakeService::AddAccount(const std::string& name,
                                           std::optional<std::uint64_t> storageUsed,
                                           std::optional<std::uint64_t> storageLimit) {
    const auto id = vantrocommon::Guid::CreateUnique();
    boost::json::object account{{"id", Id(id)}, {"name", name}, {"member", true}};
    if (storageUsed) {
        account["storage_used"] = *storageUsed;
    }
    if (storageLimit) {
        account["storage_limit"] = *storageLimit;
    }
    const std::lock_guard lock(mutex);
    accounts.push_back(std::move(account));
    return id;
}

vantrocommon::Guid FakeService::AddTeam(const vantrocommon::Guid& account,
                                        const std::string& name) {
    const auto id = vantrocommon::Guid::CreateUnique();
    const std::lock_guard lock(mutex);
    teamsByAccount[Id(account)].push_back(
        boost::json::object{{"id", Id(id)}, {"account_id", Id(account)}, {"name", name}});
    return id;
}

vantrocommon::Guid FakeService::AddProject(const vantrocommon::Guid& team, const std::string& name,
                                           vantrocommon::Guid* root) {
    const auto id = vantrocommon::Guid::CreateUnique();
    const auto rootId = vantrocommon::Guid::CreateUnique();
    if (root) {
        *root = rootId;
    }
    const std::lock_guard lock(mutex);
    projectsByTeam[Id(team)].push_back(boost::json::object{
        {"id", Id(id)}, {"team_id", Id(team)}, {"name", name}, {"root_asset_id", Id(rootId)}});
    return id;
}

vantrocommon::Guid FakeService::AddSharedProject(const vantrocommon::Guid& account,
                                                 const std::string& name) {
    const auto id = vantrocommon::Guid::CreateUnique();
    const std::lock_guard lock(mutex);
    sharedByAccount[Id(account)].push_back(
        boost::json::object{{"id", Id(id)},
                            {"account_id", Id(account)},
                            {"name", name},
                            {"root_asset_id", Id(vantrocommon::Guid::CreateUnique())}});
    return id;
}

vantrocommon::Guid FakeService::AddFolderWithChildren(int count, const std::string& type) {
    const auto folder = vantrocommon::Guid::CreateUnique();
    for (int index = 1; index <= count; ++index) {
        AddChild(folder, "Clip " + std::to_string(index), type);
    }
    const std::lock_guard lock(mutex);
    childrenByFolder[Id(folder)];  // an empty folder is a folder too
    return folder;
}

vantrocommon::Guid FakeService::AddChild(const vantrocommon::Guid& folder, const std::string& name,
                                         const std::string& type) {
    const auto id = vantrocommon::Guid::CreateUnique();
    const std::lock_guard lock(mutex);
    childrenByFolder[Id(folder)].push_back(boost::json::object{
        {"id", Id(id)}, {"name", name}, {"type", type}, {"parent_id", Id(folder)}});
    return id;
}

void FakeService::SetRateLimitHeaders(std::optional<std::string> limit,
                                      std::optional<std::string> window) {
    const std::lock_guard lock(mutex);
    limitHeader = std::move(limit);
    windowHeader = std::move(window);
}

void FakeService::DropHeader(const std::string& name) {
    const std::lock_guard lock(mutex);
    droppedHeaders.push_back(name);
}

void FakeService::SetIntercept(
    std::function<std::optional<vantrocommon::http::Reply>(const std::string&, int)> function) {
    const std::lock_guard lock(mutex);
    intercept = std::move(function);
}

std::vector<FakeService::Logged> FakeService::Log() const {
    const std::lock_guard lock(mutex);
    return log;
}

std::size_t FakeService::CountEndingIn(const std::string& suffix) const {
    const std::lock_guard lock(mutex);
    return static_cast<std::size_t>(std::count_if(log.begin(), log.end(), [&](const Logged& l) {
        return l.path.size() >= suffix.size() &&
               l.path.compare(l.path.size() - suffix.size(), suffix.size(), suffix) == 0;
    }));
}

// FakeServiceTransport

kelcore::async::Future<vantrocommon::http::Reply> FakeServiceTransport::Send(
    vantrocommon::http::Request request, vantrocommon::http::CancellationToken /*cancel*/) {
    auto promise = std::make_shared<kelcore::async::Promise<vantrocommon::http::Reply>>(executor);
    auto future = promise->GetFuture();
    executor->Post([promise, service = service, request = std::move(request)] {
        promise->SetValue(service->Answer(request));
    });
    return future;
}

// RecordingTransport

kelcore::async::Future<vantrocommon::http::Reply> RecordingTransport::Send(
    vantrocommon::http::Request request, vantrocommon::http::CancellationToken cancel) {
    const std::size_t pathStart = request.url.find("/v2/");
    std::size_t index = 0;
    {
        const std::lock_guard lock(log->mutex);
        index = log->exchanges.size();
        log->exchanges.push_back(
            Exchange{pathStart == std::string::npos ? request.url : request.url.substr(pathStart),
                     kelcore::threads::Now(), std::nullopt, 0});
    }
    auto answer = inner->Send(std::move(request), std::move(cancel));
    // Recorded inline where the inner transport completes, before any continuation of the
    // caller's runs on the future that is returned.
    return answer.Then(
        [log = log, index](const kelcore::async::Future<vantrocommon::http::Reply>& reply) {
            {
                const std::lock_guard lock(log->mutex);
                log->exchanges[index].answered = kelcore::threads::Now();
                if (kelcore::async::ResultOf(reply) == 0) {
                    log->exchanges[index].status = reply.Get().status;
                }
            }
            return reply.Get();
        });
}

std::vector<RecordingTransport::Exchange> RecordingTransport::Exchanges() const {
    const std::lock_guard lock(log->mutex);
    return log->exchanges;
}

std::shared_ptr<vantrosdk::VantroClient> ConnectFakeClient(
    std::shared_ptr<FakeService> service,
    std::shared_ptr<kelcore::threads::AsyncExecutor> executor) {
    vantrosdk::VantroConfig config("vantrokelui-desktop");
    config.SetEndpoint({.apiBase = "http://service.invalid"});
    config.SetTransport(std::make_shared<FakeServiceTransport>(executor, std::move(service)));
    config.SetExecutor(executor);
    vantrocommon::RetryPolicy once;
    once.maxAttempts = 1;
    config.SetRetryPolicy(once);
    const auto made = vantrosdk::VantroClient::Initialize(config, {});
    if (!made.IsSuccess()) {
        return nullptr;
    }
    auto client = vantrosdk::VantroClient::Get();
    if (!client || !client->UpdateAccessToken("test-token").IsSuccess()) {
        return nullptr;
    }
    integration::SetClient(client);
    return client;
}

void DisconnectClient() {
    integration::ClearClient();
    vantrosdk::VantroClient::ResetForTesting();
}

}  // namespace connectortest
