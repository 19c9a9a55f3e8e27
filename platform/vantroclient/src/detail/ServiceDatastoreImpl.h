// The datastore over the service's REST API and event stream (see ServiceDatastore.h for what it
// promises). It keeps whole lists per (kind, parent), one item object per id while anyone holds
// it, the fetches under way with their waiters, and one event stream per session.
//
// Threads: callers on any thread; network continuations and timers on the work executor;
// futures complete and messages are sent on the options' executor. One mutex guards the store
// and is never held while calling out (transport, token source, executors, promises). Every
// callback holds the datastore weakly and carries the session it was made for, so a callback
// that arrives after a sign-out, or after the datastore is gone, does nothing.
// Owned by shared pointer (CreateServiceDatastore).
#pragma once

#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <boost/json/object.hpp>

#include <kelcore/async/Future.h>
#include <kelcore/utility/RefCountedObjectWithWeakPtr.h>
#include <kelcore/utility/WeakPtr.h>
#include <vantroclient/ServiceDatastore.h>
#include <vantroclient/VantroDatastore.h>
#include <vantrocommon/http/CancellationToken.h>
#include <vantrocommon/http/Reply.h>

#include "detail/EventStreamParser.h"
#include "detail/ListKey.h"
#include "detail/RatePacer.h"

namespace vantro::detail {

class ServiceDatastoreImpl final : public VantroDatastore,
                                   public std::enable_shared_from_this<ServiceDatastoreImpl> {
public:
    /// Any thread.
    static std::shared_ptr<ServiceDatastoreImpl> Create(ServiceDatastoreOptions options);
    /// Fails every waiting future with kResultCancelled and cancels the requests under way.
    ~ServiceDatastoreImpl() override;

    kelcore::utility::ImmutableString GetStationID() const override { return station; }
    kelcore::async::Future<kelcore::classref::InterfaceRef<VantroAccountList>> GetAccountList()
        override;
    kelcore::async::Future<kelcore::classref::InterfaceRef<VantroTeamList>> GetTeamList(
        const kelcore::utility::Guid& accountID) override;
    kelcore::async::Future<kelcore::classref::InterfaceRef<VantroProjectList>> GetProjectList(
        const kelcore::utility::Guid& teamID) override;
    kelcore::async::Future<kelcore::classref::InterfaceRef<VantroAssetList>> GetAssetList(
        const kelcore::utility::Guid& folderID) override;
    kelcore::async::Future<kelcore::classref::InterfaceRef<VantroUser>> GetCurrentUser() override;
    void SignOutJwt() override;
    void SignOutOAuth2() override;

private:
    using AnyRef = kelcore::classref::InterfaceRef<kelcore::utility::RefCountedObjectWithWeakPtr>;
    /// Completes one caller's future; runs on the options' executor.
    using Waiter = std::function<void(const AnyRef& result, const std::exception_ptr& error)>;
    struct Fetch;

    explicit ServiceDatastoreImpl(ServiceDatastoreOptions options);

    template <class Result>
    kelcore::async::Future<kelcore::classref::InterfaceRef<Result>> Ask(ListKey key);

    // A list's fetch, page after page (the work executor).
    void RequestToken(const std::shared_ptr<Fetch>& fetch, bool forceRefresh);
    void SendPage(const std::shared_ptr<Fetch>& fetch);
    void SendPageNow(const std::shared_ptr<Fetch>& fetch);
    void OnPage(const std::shared_ptr<Fetch>& fetch,
                const kelcore::async::Future<vantrocommon::http::Reply>& answer);
    void Complete(const std::shared_ptr<Fetch>& fetch);
    void Fail(const std::shared_ptr<Fetch>& fetch, const std::exception_ptr& error);
    /// Makes the result of a finished fetch, keeping one item per id. Under the mutex.
    AnyRef Build(ListKind kind, const std::vector<boost::json::object>& objects);

    // The event stream (the work executor).
    void OpenStream(std::uint64_t forSession);
    void SendStream(std::uint64_t forSession, const std::string& token);
    void SendStreamNow(std::uint64_t forSession, const std::string& token);
    void OnStreamFrames(std::uint64_t forSession, std::uint64_t streamId,
                        const std::vector<EventStreamParser::Frame>& frames);
    void OnStreamEnded(std::uint64_t forSession, std::uint64_t streamId,
                       const kelcore::async::Future<vantrocommon::http::Reply>& ended);
    void ScheduleReconnect(std::uint64_t forSession);
    void HandleEvent(const EventStreamParser::Frame& frame);
    /// Drops what the stream may have missed and announces every list that was held.
    void ForgetEverything(std::uint64_t forSession);
    /// Sends the message for a changed list on the options' executor.
    void Announce(ListKind kind, const kelcore::utility::Guid& parent) const;

    /// Ends the session: fails the waiters, cancels the requests, empties the store.
    void EndSession();
    /// Posts each waiter's completion to the options' executor.
    void Deliver(std::vector<Waiter> waiters, const AnyRef& result,
                 const std::exception_ptr& error) const;
    /// A request's URL and bearer.
    vantrocommon::http::Request MakeRequest(const std::string& pathAndQuery,
                                            const std::string& token) const;

    const ServiceDatastoreOptions options;
    const kelcore::utility::ImmutableString station;
    const std::shared_ptr<kelcore::threads::AsyncExecutor> executor;      // futures, messages
    const std::shared_ptr<kelcore::threads::AsyncExecutor> workExecutor;  // timers, replies
    const std::shared_ptr<vantrocommon::http::Transport> transport;
    const std::function<kelcore::async::Future<std::string>(bool)> accessToken;
    const std::string apiBase;
    RatePacer pacer;

    mutable std::mutex mutex;
    // Everything below is guarded by `mutex`.
    std::uint64_t session = 1;
    vantrocommon::http::CancellationToken sessionCancel;
    std::map<ListKey, AnyRef> cached;
    std::map<ListKey, std::shared_ptr<Fetch>> fetching;
    std::map<kelcore::utility::Guid, kelcore::utility::WeakPtr<VantroAccount>> accounts;
    std::map<kelcore::utility::Guid, kelcore::utility::WeakPtr<VantroTeam>> teams;
    std::map<kelcore::utility::Guid, kelcore::utility::WeakPtr<VantroProject>> projects;
    std::map<kelcore::utility::Guid, kelcore::utility::WeakPtr<VantroAsset>> assets;
    std::map<kelcore::utility::Guid, kelcore::utility::WeakPtr<VantroUser>> users;
    kelcore::utility::Guid userID;  // from /v2/me or an account-list event; nil until known
    bool streamWanted = false;      // a stream is open, being opened, or waiting to reopen
    bool streamEverOpened = false;  // in this session: the next open is a reconnect
    bool streamOpen = false;        // the current stream has sent its first frame
    bool streamForceRefresh = false;
    std::uint64_t streamId = 0;
    std::chrono::milliseconds nextReconnectDelay;
};

}  // namespace vantro::detail
