// The datastore over the service's REST API and event stream, as GetDatastore makes it.
//
// Lists: every page is fetched in turn (page_size = `pageSize`) and the list is answered when the
// last has come; asking again for a list being fetched joins that fetch. Rate limits: requests
// are paced so that no window of X-RATELIMIT-WINDOW ms holds more than X-RATELIMIT-LIMIT of them
// (as the latest answer advertised; nothing is paced before an answer has told); a 429 waits
// for its Retry-After (or a whole window when none is given) and asks again, up to
// `rateLimitBudget` of waiting per list. A 401 takes a fresh access token once.
//
// Events: the stream (GET /v2/events) opens with the first request after sign-in. Each event
// empties the list it names from memory and then sends the matching message. When the stream
// ends or fails it is opened again after a backoff (from `reconnectDelay`, doubling up to
// `maxReconnectDelay`, back to the start once a stream has opened); after a reconnect the
// store may have missed changes, so it forgets every list and announces each list it held.
//
// Tokens come from vantroauth (jwt::GetAccessToken), whose manager the host has initialised.
// Owned by shared pointer; any thread.
//
//   vantro::VantroDatastore::SetDatastore("", vantro::CreateServiceDatastore({.pageSize = 50}));
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include <kelcore/async/Future.h>
#include <kelcore/threads/AsyncExecutor.h>
#include <vantroclient/VantroDatastore.h>
#include <vantrocommon/http/Transport.h>

namespace vantro {

struct ServiceDatastoreOptions {
    /// Where futures complete and messages are sent; null for the main thread.
    std::shared_ptr<kelcore::threads::AsyncExecutor> executor{};
    /// The messages' station; empty for "vantro.datastore".
    std::string station{};
    /// Items asked for per page (1 to 1000).
    int pageSize = 100;
    std::chrono::milliseconds reconnectDelay{250};
    std::chrono::milliseconds maxReconnectDelay{8'000};
    /// Waiting for rate limits that one list may spend before it fails (kResultRetriesExhausted).
    std::chrono::milliseconds rateLimitBudget{120'000};

    /// The service's API base URL; empty for vantrocommon::ServiceEndpoint::Resolve().apiBase at
    /// creation.
    std::string apiBase{};
    /// The HTTP transport; null for a CurlTransport of the service's endpoint. Tests put a fake
    /// or a counting one here.
    std::shared_ptr<vantrocommon::http::Transport> transport{};
    /// Where bearer tokens come from; null for vantroauth::jwt::GetAccessToken.
    std::function<kelcore::async::Future<std::string>(bool forceRefresh)> accessToken{};
    /// What SignOutOAuth2 calls to end the sign-in; null for vantroauth::jwt::Logout.
    std::function<void()> logout{};
    /// Where the datastore's own timers and network continuations run; null for
    /// kelcore::threads::GetIOBoundExecutor() at creation (so virtual time, installed first,
    /// drives them).
    std::shared_ptr<kelcore::threads::AsyncExecutor> workExecutor{};
};

/// A datastore on the configured service (vantrocommon::ServiceEndpoint). Any thread.
std::shared_ptr<VantroDatastore> CreateServiceDatastore(ServiceDatastoreOptions options = {});

}  // namespace vantro
