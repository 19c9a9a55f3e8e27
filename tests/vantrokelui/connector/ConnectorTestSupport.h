// What the connector's tests share: a small in-memory stand-in for the service that answers the
// SDK's listing requests with the real paging and rate-limit headers, a transport that hands
// the SDK its answers on an executor (so a real VantroClient runs over it, under virtual time
// when the executor is a manual one), and helpers that make SDK responses and records.
// The test's thread, except where a method says "any thread".
//
//   auto service = std::make_shared<FakeService>();
//   const auto folder = service->AddFolderWithChildren("Dailies", 250);
//   ConnectFakeClient(service, time.GetExecutor());   // GetClient() now answers a client
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/value.hpp>

#include <kelcore/threads/AsyncExecutor.h>
#include <kelcore/threads/Clock.h>
#include <vantrocommon/Guid.h>
#include <vantrocommon/http/HeaderMap.h>
#include <vantrocommon/http/Reply.h>
#include <vantrocommon/http/Request.h>
#include <vantrocommon/http/Transport.h>
#include <vantrosdk/Asset.h>
#include <vantrosdk/GetChildAssetsResponse.h>
#include <vantrosdk/VantroClient.h>

namespace connectortest {

/// Paging headers as the service writes them.
vantrocommon::http::HeaderMap PagingHeaders(int page, int totalPages);
/// `count` assets of `type` named "<prefix> 1" ... with fresh ids.
std::vector<vantrosdk::Asset> MakeAssets(const std::string& prefix, int count,
                                         const std::string& type = "file");
/// A response of `status` with `header` and `assets`, as the SDK would make it.
std::shared_ptr<vantrosdk::GetChildAssetsResponse> ChildAssetsResponse(
    int status, vantrocommon::http::HeaderMap header, std::vector<vantrosdk::Asset> assets = {});

/// The service's listings in memory. Answers GET /v2/me, /v2/accounts, /v2/accounts/{id},
/// /v2/accounts/{id}/teams, /v2/accounts/{id}/shared_projects, /v2/teams/{id}/projects and
/// /v2/assets/{id}/children, paged by `pageSize` with PAGE-NUMBER, TOTAL-PAGES, PER-PAGE and
/// TOTAL, and the rate-limit headers when set. Every request is logged with kelcore's time.
/// Answer and the log: any thread.
class FakeService {
public:
    struct Logged {
        std::string path;                         ///< Without the query.
        std::optional<int> page;                  ///< From `page=N`.
        kelcore::threads::Clock::TimePoint time;  ///< kelcore's clock when it was asked.
    };

    /// Serves `request`: an interception first, else the in-memory data.
    vantrocommon::http::Reply Answer(const vantrocommon::http::Request& request);

    /// The user of /v2/me.
    void SetUser(const vantrocommon::Guid& id, const std::string& name);
    /// An account of the user; `storageLimit` nullopt sends it as null (no plan).
    vantrocommon::Guid AddAccount(const std::string& name,
                                  std::optional<std::uint64_t> storageUsed = std::nullopt,
                                  std::optional<std::uint64_t> storageLimit = std::nullopt);
    vantrocommon::Guid AddTeam(const vantrocommon::Guid& account, const std::string& name);
    /// A project of a team with a fresh root folder; answers the project's id and sets `root`.
    vantrocommon::Guid AddProject(const vantrocommon::Guid& team, const std::string& name,
                                  vantrocommon::Guid* root = nullptr);
    /// A project of `account` shared with the user (not in any of the user's teams).
    vantrocommon::Guid AddSharedProject(const vantrocommon::Guid& account, const std::string& name);
    /// A folder with `count` children of `type` ("Clip 1", ...); answers the folder's id.
    vantrocommon::Guid AddFolderWithChildren(int count, const std::string& type = "file");
    /// Adds one child of any type to a folder; answers its id.
    vantrocommon::Guid AddChild(const vantrocommon::Guid& folder, const std::string& name,
                                const std::string& type);

    /// Items per page (100 by default, as the service's default).
    void SetPageSize(int size) { pageSize = size; }
    /// Adds X-RATELIMIT-LIMIT and X-RATELIMIT-WINDOW with these texts to every answer; nullopt
    /// for either leaves that header out.
    void SetRateLimitHeaders(std::optional<std::string> limit, std::optional<std::string> window);
    /// Drops the paging header `name` ("PAGE-NUMBER" or "TOTAL-PAGES") from every answer.
    void DropHeader(const std::string& name);
    /// Answers with `intercept` when it gives a reply; otherwise from the data.
    void SetIntercept(
        std::function<std::optional<vantrocommon::http::Reply>(const std::string& path, int page)>
            intercept);

    /// Requests asked so far. Any thread.
    std::vector<Logged> Log() const;
    /// How many requests went to paths ending in `suffix`. Any thread.
    std::size_t CountEndingIn(const std::string& suffix) const;

private:
    vantrocommon::http::Reply Listing(const boost::json::array& items, int page) const;
    vantrocommon::http::Reply Object(const boost::json::object& item) const;
    void AddLimitHeaders(vantrocommon::http::Reply& reply) const;

    mutable std::mutex mutex;
    boost::json::object user;
    boost::json::array accounts;
    std::map<std::string, boost::json::array> teamsByAccount;
    std::map<std::string, boost::json::array> projectsByTeam;
    std::map<std::string, boost::json::array> sharedByAccount;
    std::map<std::string, boost::json::array> childrenByFolder;
    int pageSize = 100;
    std::optional<std::string> limitHeader;
    std::optional<std::string> windowHeader;
    std::vector<std::string> droppedHeaders;
    std::function<std::optional<vantrocommon::http::Reply>(const std::string&, int)> intercept;
    std::vector<Logged> log;
};

/// A transport without a network: FakeService answers each request, posted to `executor`.
class FakeServiceTransport : public vantrocommon::http::Transport {
public:
    FakeServiceTransport(std::shared_ptr<kelcore::threads::AsyncExecutor> executor,
                         std::shared_ptr<FakeService> service)
        : executor(std::move(executor)), service(std::move(service)) {}

    kelcore::async::Future<vantrocommon::http::Reply> Send(
        vantrocommon::http::Request request, vantrocommon::http::CancellationToken cancel) override;

private:
    std::shared_ptr<kelcore::threads::AsyncExecutor> executor;
    std::shared_ptr<FakeService> service;
};

/// A transport that sends through another (the real one) and records each exchange: the path,
/// when it was sent and answered on kelcore's clock, and the status (0 for a failed exchange).
/// The client-side count of requests, for a service that offers no count of its own. Any
/// thread.
class RecordingTransport : public vantrocommon::http::Transport {
public:
    struct Exchange {
        std::string path;  ///< The URL from "/v2/" on, query included.
        kelcore::threads::Clock::TimePoint sent;
        std::optional<kelcore::threads::Clock::TimePoint> answered;
        int status = 0;
    };

    explicit RecordingTransport(std::shared_ptr<vantrocommon::http::Transport> inner)
        : inner(std::move(inner)) {}

    kelcore::async::Future<vantrocommon::http::Reply> Send(
        vantrocommon::http::Request request, vantrocommon::http::CancellationToken cancel) override;

    std::vector<Exchange> Exchanges() const;

private:
    struct Log {
        mutable std::mutex mutex;
        std::vector<Exchange> exchanges;
    };
    std::shared_ptr<vantrocommon::http::Transport> inner;
    std::shared_ptr<Log> log = std::make_shared<Log>();
};

/// Makes the process's SDK client over `service` with every future completing on `executor`
/// (one try per request, no retries), gives it a token and hands it to the connector
/// (SetClient). Undo with DisconnectClient.
std::shared_ptr<vantrosdk::VantroClient> ConnectFakeClient(
    std::shared_ptr<FakeService> service,
    std::shared_ptr<kelcore::threads::AsyncExecutor> executor);
/// Drops the connector's client and the SDK's.
void DisconnectClient();

}  // namespace connectortest
