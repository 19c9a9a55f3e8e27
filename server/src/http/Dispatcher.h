// Turns one parsed request into a response: parses the target, finds the route (404, 405),
// checks the bearer token (401) and the per-token rate limit (429, with the limit headers on
// every authenticated answer), applies an injected fault and calls the handler, turning an
// escaping exception into a 500. A streamed route is dispatched on its header alone and gives
// the sink for its body (DispatchHeader); Dispatch also serves it from a body in memory.
// Network-free, so the fuzzer drives it directly. Owned by the server; any worker thread.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "hooks/FaultInjector.h"
#include "http/RateLimiter.h"
#include "http/RequestContext.h"
#include "http/Response.h"
#include "http/Router.h"

namespace vantroserver::http {

class Dispatcher {
public:
    /// Checks a bearer token; the signed-in user, or nothing for a bad or expired token.
    using TokenVerifier =
        std::function<std::optional<RequestContext::Principal>(std::string_view token)>;

    /// `faults` may be null (no test hooks).
    Dispatcher(std::shared_ptr<const Router> router, std::shared_ptr<RateLimiter> limiter,
               TokenVerifier verifier, std::shared_ptr<hooks::FaultInjector> faults);

    /// The injected fault for this request, if a test asked for one. Counts one use of it.
    std::optional<hooks::FaultInjector::Fault> TakeFault(const RequestContext::Header& request);

    /// Whether `request` goes to a streamed route: its body is read by DispatchHeader's sink.
    bool Streams(const RequestContext::Header& request) const;

    /// Answers `request`; never throws for anything the client sent.
    Response Dispatch(const RequestContext::Message& request,
                      const std::optional<hooks::FaultInjector::Fault>& fault);

    /// For a streamed route: the answer given without reading the body (a refusal, a fault) or
    /// the sink for the body. The sink's answers carry the rate-limit headers and an exception
    /// escaping it becomes a 500 (after which it was aborted). `head`'s body is ignored.
    Router::StreamStart DispatchHeader(const RequestContext::Message& head,
                                       const std::optional<hooks::FaultInjector::Fault>& fault);

private:
    Router::StreamStart DispatchParsed(RequestContext& context,
                                       const std::optional<hooks::FaultInjector::Fault>& fault);
    Router::StreamStart DispatchTarget(const RequestContext::Message& request,
                                       const std::optional<hooks::FaultInjector::Fault>& fault);
    void AddRateLimitHeaders(Response& response) const;

    std::shared_ptr<const Router> router;
    std::shared_ptr<RateLimiter> limiter;
    TokenVerifier verifier;
    std::shared_ptr<hooks::FaultInjector> faults;
};

}  // namespace vantroserver::http
