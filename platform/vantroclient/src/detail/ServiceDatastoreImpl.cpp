#include "detail/ServiceDatastoreImpl.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <sstream>
#include <utility>

#include <boost/json/parse.hpp>

#include <kelcore/async/Promise.h>
#include <kelcore/config/kel_exception.h>
#include <kelcore/debug/Trace.h>
#include <kelcore/messaging/Messaging.h>
#include <kelcore/threads/Clock.h>
#include <kelcore/threads/Executors.h>
#include <kelcore/threads/MainThreadExecutor.h>
#include <vantroauth/ResultCodes.h>
#include <vantroauth/jwt/AuthManager.h>
#include <vantrocommon/ResultCodes.h>
#include <vantrocommon/RetryPolicy.h>
#include <vantrocommon/ServiceEndpoint.h>
#include <vantrocommon/http/CurlTransport.h>

#include "detail/EventInbox.h"
#include "detail/RecordReader.h"

namespace vantro::detail {
namespace {

using kelcore::async::Future;
using kelcore::classref::InterfaceRef;
using kelcore::classref::MakeInterfaceRef;
using kelcore::utility::Guid;
using vantrocommon::http::Reply;
using vantrocommon::http::Request;

constexpr std::string_view kTraceCategory = "vantroclient";
constexpr int kTraceLevel = 5;
constexpr std::chrono::milliseconds kRequestTimeout{60'000};
// The service sends a keep-alive comment every 15 s; a stream silent for this long is dead.
constexpr std::chrono::milliseconds kStreamStallTimeout{45'000};
// A 429 without Retry-After, before any answer has told the window.
constexpr std::chrono::milliseconds kDefaultRateLimitWait{1'000};

void Trace(const std::string& text) {
    if (kelcore::debug::TraceEnabled(kTraceCategory, kTraceLevel)) {
        kelcore::debug::Trace(kTraceCategory, kTraceLevel, text);
    }
}

std::exception_ptr Failure(kelcore::config::ResultCode code, const std::string& text) {
    return std::make_exception_ptr(kelcore::config::kel_exception(text, code));
}

template <class T>
std::exception_ptr FailureOf(const Future<T>& future) {
    try {
        future.Get();
    } catch (...) {
        return std::current_exception();
    }
    return Failure(kelcore::config::kResultUnknownFailure, "no failure");
}

std::string_view PathOf(ListKind kind) {
    switch (kind) {
        case ListKind::Accounts:
            return "accounts";
        case ListKind::Teams:
            return "teams";
        case ListKind::Projects:
            return "projects";
        case ListKind::Assets:
            return "assets";
        case ListKind::User:
            return "user";
    }
    return "?";
}

std::optional<long> NumberHeader(const Reply& reply, std::string_view name) {
    const auto* text = reply.Header(name);
    if (text == nullptr) {
        return std::nullopt;
    }
    long value = 0;
    const auto* end = text->data() + text->size();
    const auto [rest, error] = std::from_chars(text->data(), end, value);
    if (error != std::errc() || rest != end) {
        return std::nullopt;
    }
    return value;
}

/// One item per id: an item still alive takes the newer record in place.
template <class Item, class Record>
InterfaceRef<Item> Intern(std::map<Guid, kelcore::utility::WeakPtr<Item>>& known, Record record) {
    if (record.id.IsNil()) {
        return MakeInterfaceRef<Item>(std::move(record));
    }
    auto& weak = known[record.id];
    if (auto item = weak.Lock()) {
        item->Update(std::move(record));
        return item;
    }
    auto item = MakeInterfaceRef<Item>(std::move(record));
    weak = kelcore::utility::WeakPtr<Item>(item);
    return item;
}

template <class Item>
void ForgetDead(std::map<Guid, kelcore::utility::WeakPtr<Item>>& known) {
    std::erase_if(known, [](const auto& entry) { return entry.second.Expired(); });
}

/// The objects of a list, each id once (a page boundary may repeat an item while the list
/// changes under the fetch).
template <class Item, class Read>
std::vector<InterfaceRef<Item>> InternAll(std::map<Guid, kelcore::utility::WeakPtr<Item>>& known,
                                          const std::vector<boost::json::object>& objects,
                                          Read read) {
    ForgetDead(known);
    std::vector<InterfaceRef<Item>> items;
    std::set<Guid> seen;
    items.reserve(objects.size());
    for (const auto& object : objects) {
        auto record = read(object);
        if (!record.id.IsNil() && !seen.insert(record.id).second) {
            continue;
        }
        items.push_back(Intern(known, std::move(record)));
    }
    return items;
}

}  // namespace

// One fetch of a list (or of the user). The waiters and the flag are guarded by the
// datastore's mutex; the progress fields are touched by one continuation at a time, each
// posted by the one before.
struct ServiceDatastoreImpl::Fetch {
    Fetch(ListKey key, std::uint64_t session) : key(key), session(session) {}

    const ListKey key;
    const std::uint64_t session;
    std::vector<Waiter> waiters;
    bool invalidated = false;  // an event named this list while it was being fetched

    std::string token;
    long page = 1;
    bool tokenRefreshed = false;
    std::chrono::milliseconds rateLimitWaited{0};
    // Network failures and passing server errors are tried again; a 429 is paced instead.
    vantrocommon::RetrySchedule retries{vantrocommon::RetryPolicy{.retryTooManyRequests = false}};
    std::vector<boost::json::object> objects;
};

std::shared_ptr<ServiceDatastoreImpl> ServiceDatastoreImpl::Create(
    ServiceDatastoreOptions options) {
    return std::shared_ptr<ServiceDatastoreImpl>(new ServiceDatastoreImpl(std::move(options)));
}

ServiceDatastoreImpl::ServiceDatastoreImpl(ServiceDatastoreOptions given)
    : options(std::move(given)),
      station(options.station.empty() ? std::string("vantro.datastore") : options.station),
      executor(options.executor ? options.executor : kelcore::threads::GetMainThreadExecutor()),
      workExecutor(options.workExecutor ? options.workExecutor
                                        : kelcore::threads::GetIOBoundExecutor()),
      transport(options.transport ? options.transport
                                  : vantrocommon::http::CurlTransport::Create(
                                        {.caFile = vantrocommon::ServiceEndpoint::Resolve().caFile,
                                         .executor = workExecutor})),
      accessToken(options.accessToken
                      ? options.accessToken
                      : [](bool force) { return vantroauth::jwt::GetAccessToken(force); }),
      apiBase(options.apiBase.empty() ? vantrocommon::ServiceEndpoint::Resolve().apiBase
                                      : options.apiBase),
      nextReconnectDelay(options.reconnectDelay) {
    if (options.pageSize < 1 || options.pageSize > 1000) {
        kelcore::config::ThrowError("the datastore's page size must be from 1 to 1000");
    }
}

ServiceDatastoreImpl::~ServiceDatastoreImpl() {
    EndSession();
}

Future<InterfaceRef<VantroAccountList>> ServiceDatastoreImpl::GetAccountList() {
    return Ask<VantroAccountList>({ListKind::Accounts, Guid()});
}

Future<InterfaceRef<VantroTeamList>> ServiceDatastoreImpl::GetTeamList(const Guid& accountID) {
    return Ask<VantroTeamList>({ListKind::Teams, accountID});
}

Future<InterfaceRef<VantroProjectList>> ServiceDatastoreImpl::GetProjectList(const Guid& teamID) {
    return Ask<VantroProjectList>({ListKind::Projects, teamID});
}

Future<InterfaceRef<VantroAssetList>> ServiceDatastoreImpl::GetAssetList(const Guid& folderID) {
    return Ask<VantroAssetList>({ListKind::Assets, folderID});
}

Future<InterfaceRef<VantroUser>> ServiceDatastoreImpl::GetCurrentUser() {
    return Ask<VantroUser>({ListKind::User, Guid()});
}

void ServiceDatastoreImpl::SignOutJwt() {
    Trace("datastore: signed out, store emptied");
    EndSession();
}

void ServiceDatastoreImpl::SignOutOAuth2() {
    EndSession();
    Trace("datastore: signed out of the service");
    if (options.logout) {
        options.logout();
    } else {
        vantroauth::jwt::Logout();
    }
}

template <class Result>
Future<InterfaceRef<Result>> ServiceDatastoreImpl::Ask(ListKey key) {
    auto promise = std::make_shared<kelcore::async::Promise<InterfaceRef<Result>>>(executor);
    auto future = promise->GetFuture();
    Waiter waiter = [promise](const AnyRef& result, const std::exception_ptr& error) {
        if (error) {
            promise->SetException(error);
        } else {
            // Every result stored under a key of this kind was made as a Result.
            promise->SetValue(InterfaceRef<Result>(static_cast<Result*>(result.get())));
        }
    };
    AnyRef hit;
    std::shared_ptr<Fetch> started;
    bool openStream = false;
    std::uint64_t forSession = 0;
    {
        std::lock_guard lock(mutex);
        forSession = session;
        // The stream opens with the first request of a session and then keeps itself open.
        openStream = !std::exchange(streamWanted, true);
        if (const auto found = cached.find(key); found != cached.end()) {
            hit = found->second;
        } else if (const auto running = fetching.find(key); running != fetching.end()) {
            running->second->waiters.push_back(std::move(waiter));
        } else {
            started = std::make_shared<Fetch>(key, session);
            started->waiters.push_back(std::move(waiter));
            fetching.emplace(key, started);
        }
    }
    if (openStream) {
        OpenStream(forSession);
    }
    if (hit) {
        Deliver({std::move(waiter)}, hit, nullptr);
    }
    if (started) {
        RequestToken(started, false);
    }
    return future;
}

void ServiceDatastoreImpl::RequestToken(const std::shared_ptr<Fetch>& fetch, bool forceRefresh) {
    accessToken(forceRefresh)
        .Then(workExecutor, [weak = weak_from_this(), fetch](const Future<std::string>& token) {
            auto self = weak.lock();
            if (!self) {
                return;
            }
            if (kelcore::async::ResultOf(token) != 0) {
                self->Fail(fetch, FailureOf(token));
                return;
            }
            fetch->token = token.Get();
            self->SendPage(fetch);
        });
}

void ServiceDatastoreImpl::SendPage(const std::shared_ptr<Fetch>& fetch) {
    const auto delay = pacer.Reserve(kelcore::threads::Now());
    if (delay.count() <= 0) {
        SendPageNow(fetch);
        return;
    }
    workExecutor->PostAfterDelay(
        [weak = weak_from_this(), fetch] {
            if (auto self = weak.lock()) {
                self->SendPageNow(fetch);
            }
        },
        static_cast<std::uint64_t>(delay.count()));
}

void ServiceDatastoreImpl::SendPageNow(const std::shared_ptr<Fetch>& fetch) {
    vantrocommon::http::CancellationToken cancel;
    {
        std::lock_guard lock(mutex);
        if (fetch->session != session) {
            return;  // signed out meanwhile: its waiters have been told
        }
        cancel = sessionCancel;
    }
    std::string path;
    const std::string parent = fetch->key.parent.AsStdString();
    switch (fetch->key.kind) {
        case ListKind::Accounts:
            path = "/v2/accounts";
            break;
        case ListKind::Teams:
            path = "/v2/accounts/" + parent + "/teams";
            break;
        case ListKind::Projects:
            path = "/v2/teams/" + parent + "/projects";
            break;
        case ListKind::Assets:
            path = "/v2/assets/" + parent + "/children";
            break;
        case ListKind::User:
            path = "/v2/me";
            break;
    }
    if (fetch->key.kind != ListKind::User) {
        path += "?page=" + std::to_string(fetch->page) +
                "&page_size=" + std::to_string(options.pageSize);
    }
    transport->Send(MakeRequest(path, fetch->token), cancel)
        .Then(workExecutor, [weak = weak_from_this(), fetch](const Future<Reply>& answer) {
            if (auto self = weak.lock()) {
                self->OnPage(fetch, answer);
            }
        });
}

void ServiceDatastoreImpl::OnPage(const std::shared_ptr<Fetch>& fetch,
                                  const Future<Reply>& answer) {
    const std::string what = std::string(PathOf(fetch->key.kind)) + " of " +
                             fetch->key.parent.AsStdString() + ", page " +
                             std::to_string(fetch->page);
    const auto tryAgainAfter = [&](std::chrono::milliseconds delay) {
        Trace("datastore: trying " + what + " again in " + std::to_string(delay.count()) + " ms");
        workExecutor->PostAfterDelay(
            [weak = weak_from_this(), fetch] {
                if (auto self = weak.lock()) {
                    self->SendPage(fetch);
                }
            },
            static_cast<std::uint64_t>(delay.count()));
    };
    if (const auto result = kelcore::async::ResultOf(answer); result != 0) {
        if (const auto delay = fetch->retries.NextDelay(result)) {
            tryAgainAfter(*delay);
            return;
        }
        Fail(fetch, FailureOf(answer));
        return;
    }
    const Reply& reply = answer.Get();
    pacer.Learn(reply);
    if (reply.status == 401 && !fetch->tokenRefreshed) {
        // The token may have expired or been replaced under us: one fresh one, then give up.
        Trace("datastore: 401 for " + what + "; asking for a fresh token");
        fetch->tokenRefreshed = true;
        RequestToken(fetch, true);
        return;
    }
    if (reply.status == 429) {
        std::optional<std::chrono::milliseconds> wait;
        if (const auto* retryAfter = reply.Header("RETRY-AFTER")) {
            wait = vantrocommon::ParseRetryAfter(*retryAfter);
        }
        if (!wait) {
            wait = pacer.Window().value_or(kDefaultRateLimitWait);
        }
        if (fetch->rateLimitWaited + *wait > options.rateLimitBudget) {
            Fail(fetch, Failure(vantrocommon::kResultRetriesExhausted,
                                "the rate limit budget is spent for " + what));
            return;
        }
        Trace("datastore: 429 for " + what + "; waiting " + std::to_string(wait->count()) + " ms");
        fetch->rateLimitWaited += *wait;
        tryAgainAfter(*wait);
        return;
    }
    if (!reply.IsSuccessStatus()) {
        if (const auto delay = fetch->retries.NextDelay(reply)) {
            tryAgainAfter(*delay);
            return;
        }
        Fail(fetch,
             Failure(vantrocommon::kResultHttpError,
                     "the service answered " + std::to_string(reply.status) + " for " + what));
        return;
    }
    boost::system::error_code error;
    const auto body = boost::json::parse(reply.body, error);
    if (fetch->key.kind == ListKind::User) {
        if (error || !body.is_object()) {
            Fail(fetch, Failure(vantrocommon::kResultBadResponse, "the user is not an object"));
            return;
        }
        fetch->objects.push_back(body.as_object());
        Complete(fetch);
        return;
    }
    if (error || !body.is_array()) {
        Fail(fetch, Failure(vantrocommon::kResultBadResponse, "not a list: " + what));
        return;
    }
    for (const auto& item : body.as_array()) {
        if (item.is_object()) {
            fetch->objects.push_back(item.as_object());
        }
    }
    const auto totalPages = NumberHeader(reply, "TOTAL-PAGES");
    if (totalPages && fetch->page < *totalPages) {
        ++fetch->page;
        SendPage(fetch);
        return;
    }
    Complete(fetch);
}

ServiceDatastoreImpl::AnyRef ServiceDatastoreImpl::Build(
    ListKind kind, const std::vector<boost::json::object>& objects) {
    switch (kind) {
        case ListKind::Accounts:
            return MakeInterfaceRef<VantroAccountList>(
                InternAll(accounts, objects, &RecordReader::Account));
        case ListKind::Teams:
            return MakeInterfaceRef<VantroTeamList>(InternAll(teams, objects, &RecordReader::Team));
        case ListKind::Projects:
            return MakeInterfaceRef<VantroProjectList>(
                InternAll(projects, objects, &RecordReader::Project));
        case ListKind::Assets:
            return MakeInterfaceRef<VantroAssetList>(
                InternAll(assets, objects, &RecordReader::Asset));
        case ListKind::User: {
            ForgetDead(users);
            auto user = Intern(users, RecordReader::User(objects.front()));
            userID = user->GetID();
            return user;
        }
    }
    return nullptr;
}

void ServiceDatastoreImpl::Complete(const std::shared_ptr<Fetch>& fetch) {
    std::vector<Waiter> waiters;
    AnyRef result;
    {
        std::lock_guard lock(mutex);
        if (fetch->session != session) {
            return;
        }
        result = Build(fetch->key.kind, fetch->objects);
        if (const auto found = fetching.find(fetch->key);
            found != fetching.end() && found->second == fetch) {
            fetching.erase(found);
        }
        // A list that changed while it was fetched may be stale: its waiters get it, and the
        // message already sent makes them ask again.
        if (!fetch->invalidated) {
            cached[fetch->key] = result;
        }
        waiters = std::move(fetch->waiters);
    }
    Trace("datastore: fetched " + std::string(PathOf(fetch->key.kind)) + " of " +
          fetch->key.parent.AsStdString() + " (" + std::to_string(fetch->objects.size()) +
          " items, " + std::to_string(fetch->page) + " pages)");
    Deliver(std::move(waiters), result, nullptr);
}

void ServiceDatastoreImpl::Fail(const std::shared_ptr<Fetch>& fetch,
                                const std::exception_ptr& error) {
    std::vector<Waiter> waiters;
    {
        std::lock_guard lock(mutex);
        if (fetch->session != session) {
            return;
        }
        if (const auto found = fetching.find(fetch->key);
            found != fetching.end() && found->second == fetch) {
            fetching.erase(found);
        }
        waiters = std::move(fetch->waiters);
    }
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& e) {
        Trace(std::string("datastore: a fetch failed: ") + e.what());
    } catch (...) {
        Trace("datastore: a fetch failed");
    }
    Deliver(std::move(waiters), nullptr, error);
}

void ServiceDatastoreImpl::OpenStream(std::uint64_t forSession) {
    bool force = false;
    {
        std::lock_guard lock(mutex);
        if (forSession != session || !streamWanted) {
            return;
        }
        force = std::exchange(streamForceRefresh, false);
    }
    accessToken(force).Then(workExecutor, [weak = weak_from_this(),
                                           forSession](const Future<std::string>& token) {
        auto self = weak.lock();
        if (!self) {
            return;
        }
        const auto result = kelcore::async::ResultOf(token);
        if (result == 0) {
            self->SendStream(forSession, token.Get());
            return;
        }
        if (result == vantroauth::kResultNotSignedIn || result == vantroauth::kResultSessionEnded ||
            result == vantroauth::kResultLoginFailed ||
            result == vantroauth::kResultNotInitialized) {
            // Nobody to listen for: the next request after a sign-in opens it again.
            Trace("datastore: no token for the event stream; it stays closed");
            std::lock_guard lock(self->mutex);
            if (forSession == self->session) {
                self->streamWanted = false;
            }
            return;
        }
        self->ScheduleReconnect(forSession);
    });
}

void ServiceDatastoreImpl::SendStream(std::uint64_t forSession, const std::string& token) {
    const auto delay = pacer.Reserve(kelcore::threads::Now());
    if (delay.count() <= 0) {
        SendStreamNow(forSession, token);
        return;
    }
    workExecutor->PostAfterDelay(
        [weak = weak_from_this(), forSession, token] {
            if (auto self = weak.lock()) {
                self->SendStreamNow(forSession, token);
            }
        },
        static_cast<std::uint64_t>(delay.count()));
}

void ServiceDatastoreImpl::SendStreamNow(std::uint64_t forSession, const std::string& token) {
    vantrocommon::http::CancellationToken cancel;
    std::uint64_t id = 0;
    {
        std::lock_guard lock(mutex);
        if (forSession != session || !streamWanted) {
            return;
        }
        cancel = sessionCancel;
        id = ++streamId;
        streamOpen = false;
    }
    auto inbox = std::make_shared<EventInbox>(
        workExecutor, [weak = weak_from_this(), forSession, id](const EventInbox::Frames& frames) {
            if (auto self = weak.lock()) {
                self->OnStreamFrames(forSession, id, frames);
            }
        });
    auto parser = std::make_shared<EventStreamParser>();
    Request request = MakeRequest("/v2/events", token);
    request.headers = {{"Authorization", "Bearer " + token}, {"Accept", "text/event-stream"}};
    request.timeout = std::chrono::milliseconds(0);
    request.stallTimeout = kStreamStallTimeout;
    // The I/O thread parses and queues; the inbox hands the frames over in order.
    request.onBodyData = [parser, inbox](std::string_view bytes) {
        auto frames = parser->Feed(bytes);
        if (!frames.empty()) {
            inbox->Push(std::move(frames));
        }
    };
    Trace("datastore: opening the event stream");
    transport->Send(std::move(request), cancel)
        .Then(workExecutor, [weak = weak_from_this(), forSession, id](const Future<Reply>& ended) {
            if (auto self = weak.lock()) {
                self->OnStreamEnded(forSession, id, ended);
            }
        });
}

void ServiceDatastoreImpl::OnStreamFrames(std::uint64_t forSession, std::uint64_t id,
                                          const std::vector<EventStreamParser::Frame>& frames) {
    for (const auto& frame : frames) {
        bool reconnected = false;
        {
            std::lock_guard lock(mutex);
            if (forSession != session || id != streamId) {
                return;
            }
            if (!std::exchange(streamOpen, true)) {
                // The first frame shows the stream is live: the backoff starts over, and what
                // happened while no stream was open may have been missed.
                nextReconnectDelay = options.reconnectDelay;
                reconnected = std::exchange(streamEverOpened, true);
            }
        }
        if (reconnected) {
            ForgetEverything(forSession);
        }
        if (!frame.comment) {
            HandleEvent(frame);
        }
    }
}

void ServiceDatastoreImpl::HandleEvent(const EventStreamParser::Frame& frame) {
    std::optional<ListKind> kind;
    if (frame.type == "account-list") {
        kind = ListKind::Accounts;
    } else if (frame.type == "team-list") {
        kind = ListKind::Teams;
    } else if (frame.type == "project-list") {
        kind = ListKind::Projects;
    } else if (frame.type == "asset-list") {
        kind = ListKind::Assets;
    }
    Guid parent;
    boost::system::error_code error;
    const auto data = boost::json::parse(frame.data, error);
    if (!error && data.is_object()) {
        if (const auto* id = data.as_object().if_contains("parent_id"); id && id->is_string()) {
            parent = Guid(std::string_view(id->as_string()));
        }
    }
    if (!kind || parent.IsNil()) {
        Trace("datastore: skipped a malformed event of type '" + frame.type + "'");
        return;
    }
    {
        std::lock_guard lock(mutex);
        // The accounts are kept under a nil parent: they are the signed-in user's.
        const ListKey key{*kind, *kind == ListKind::Accounts ? Guid() : parent};
        if (*kind == ListKind::Accounts) {
            userID = parent;
        }
        cached.erase(key);
        if (const auto running = fetching.find(key); running != fetching.end()) {
            running->second->invalidated = true;
        }
    }
    Announce(*kind, parent);
}

void ServiceDatastoreImpl::ForgetEverything(std::uint64_t forSession) {
    std::vector<ListKey> held;
    Guid user;
    {
        std::lock_guard lock(mutex);
        if (forSession != session) {
            return;
        }
        for (auto entry = cached.begin(); entry != cached.end();) {
            if (entry->first.kind == ListKind::User) {
                ++entry;  // the user does not change with the lists
                continue;
            }
            held.push_back(entry->first);
            entry = cached.erase(entry);
        }
        for (auto& [key, fetch] : fetching) {
            if (key.kind != ListKind::User) {
                fetch->invalidated = true;
                held.push_back(key);
            }
        }
        user = userID;
    }
    Trace("datastore: the event stream reconnected; " + std::to_string(held.size()) +
          " lists forgotten");
    for (const auto& key : held) {
        Announce(key.kind, key.kind == ListKind::Accounts ? user : key.parent);
    }
}

void ServiceDatastoreImpl::OnStreamEnded(std::uint64_t forSession, std::uint64_t id,
                                         const Future<Reply>& ended) {
    {
        std::lock_guard lock(mutex);
        if (forSession != session || id != streamId) {
            return;
        }
        if (kelcore::async::ResultOf(ended) == 0 && ended.Get().status == 401) {
            streamForceRefresh = true;
        }
    }
    if (kelcore::async::ResultOf(ended) == 0) {
        Trace("datastore: the event stream ended with " + std::to_string(ended.Get().status));
    } else {
        Trace("datastore: the event stream failed");
    }
    ScheduleReconnect(forSession);
}

void ServiceDatastoreImpl::ScheduleReconnect(std::uint64_t forSession) {
    std::chrono::milliseconds delay{0};
    {
        std::lock_guard lock(mutex);
        if (forSession != session || !streamWanted) {
            return;
        }
        delay = nextReconnectDelay;
        nextReconnectDelay = std::min(nextReconnectDelay * 2, options.maxReconnectDelay);
    }
    Trace("datastore: reopening the event stream in " + std::to_string(delay.count()) + " ms");
    workExecutor->PostAfterDelay(
        [weak = weak_from_this(), forSession] {
            if (auto self = weak.lock()) {
                self->OpenStream(forSession);
            }
        },
        static_cast<std::uint64_t>(delay.count()));
}

void ServiceDatastoreImpl::Announce(ListKind kind, const Guid& parent) const {
    const auto send = [this](auto message) {
        executor->Post(
            [station = station, message] { kelcore::messaging::SendMessage(station, message); });
    };
    switch (kind) {
        case ListKind::Accounts:
            send(AccountListChanged{parent});
            break;
        case ListKind::Teams:
            send(TeamListChanged{parent});
            break;
        case ListKind::Projects:
            send(ProjectListChanged{parent});
            break;
        case ListKind::Assets:
            send(AssetListChanged{parent});
            break;
        case ListKind::User:
            break;
    }
}

void ServiceDatastoreImpl::EndSession() {
    std::vector<Waiter> waiters;
    vantrocommon::http::CancellationToken ending;
    {
        std::lock_guard lock(mutex);
        ++session;
        ending = std::exchange(sessionCancel, vantrocommon::http::CancellationToken());
        for (auto& [key, fetch] : fetching) {
            for (auto& waiter : fetch->waiters) {
                waiters.push_back(std::move(waiter));
            }
            fetch->waiters.clear();
        }
        fetching.clear();
        cached.clear();
        accounts.clear();
        teams.clear();
        projects.clear();
        assets.clear();
        users.clear();
        userID = Guid();
        streamWanted = false;
        streamEverOpened = false;
        streamOpen = false;
        streamForceRefresh = false;
        ++streamId;
        nextReconnectDelay = options.reconnectDelay;
    }
    pacer.Reset();
    // Outside the lock: cancelling calls the transport's callbacks on this thread.
    ending.Cancel();
    Deliver(std::move(waiters), nullptr,
            Failure(vantrocommon::kResultCancelled, "the datastore's session ended"));
}

void ServiceDatastoreImpl::Deliver(std::vector<Waiter> waiters, const AnyRef& result,
                                   const std::exception_ptr& error) const {
    for (auto& waiter : waiters) {
        executor->Post([waiter = std::move(waiter), result, error] { waiter(result, error); });
    }
}

Request ServiceDatastoreImpl::MakeRequest(const std::string& pathAndQuery,
                                          const std::string& token) const {
    Request request;
    request.url = apiBase + pathAndQuery;
    request.headers = {{"Authorization", "Bearer " + token}, {"Accept", "application/json"}};
    request.timeout = kRequestTimeout;
    return request;
}

}  // namespace vantro::detail
