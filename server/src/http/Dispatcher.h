// Turns one parsed request into a response: parses the target, finds the route (404, 405),
// checks the bearer token (401) and the per-token rate limit (429, with the limit headers on
// every authenticated answer), applies an injected fault and calls the handler, turning an
// escaping exception into a 500. Network-free, so the fuzzer drives it directly. Owned by the
// server; any worker thread.
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
    std::optional<hooks::FaultInjector::Fault> TakeFault(const RequestContext::Message& request);

    /// Answers `request`; never throws for anything the client sent.
    Response Dispatch(const RequestContext::Message& request,
                      const std::optional<hooks::FaultInjector::Fault>& fault);

private:
    Response DispatchParsed(RequestContext& context,
                            const std::optional<hooks::FaultInjector::Fault>& fault);
    void AddRateLimitHeaders(Response& response) const;

    std::shared_ptr<const Router> router;
    std::shared_ptr<RateLimiter> limiter;
    TokenVerifier verifier;
    std::shared_ptr<hooks::FaultInjector> faults;
};

}  // namespace vantroserver::http
