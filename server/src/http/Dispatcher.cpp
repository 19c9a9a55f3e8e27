#include "http/Dispatcher.h"

#include <boost/beast/http/field.hpp>
#include <boost/url/parse.hpp>
#include <functional>
#include <iostream>
#include <span>

#include "http/FormFields.h"

namespace vantroserver::http {

namespace {

using beasthttp::field;
using beasthttp::status;

struct ParsedTarget {
    std::vector<std::string> segments;
    FormFields::Fields query;
};

std::optional<ParsedTarget> ParseTarget(std::string_view target) {
    const auto url = boost::urls::parse_origin_form(target);
    if (!url) {
        return std::nullopt;
    }
    ParsedTarget parsed;
    for (const auto& segment : url->segments()) {
        parsed.segments.emplace_back(segment);
    }
    const auto query = FormFields::Parse(url->encoded_query());
    if (!query) {
        return std::nullopt;
    }
    parsed.query = std::move(*query);
    return parsed;
}

std::optional<std::string_view> BearerToken(const RequestContext::Header& request) {
    const auto found = request.find(field::authorization);
    if (found == request.end()) {
        return std::nullopt;
    }
    const std::string_view value = found->value();
    constexpr std::string_view kScheme = "Bearer ";
    if (value.size() <= kScheme.size()) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < kScheme.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(value[i])) !=
            std::tolower(static_cast<unsigned char>(kScheme[i]))) {
            return std::nullopt;
        }
    }
    return value.substr(kScheme.size());
}

Response ServerError() {
    return Response::Error(status::internal_server_error, "server_error",
                           "the server could not answer this request");
}

/// Puts the dispatcher's headers on a sink's answers and turns what escapes it into a 500.
class GuardedSink final : public BodySink {
public:
    GuardedSink(std::shared_ptr<BodySink> inner, std::string target,
                std::function<void(Response&)> decorate)
        : inner(std::move(inner)), target(std::move(target)), decorate(std::move(decorate)) {}

    std::optional<Response> Write(std::span<const char> piece) override {
        std::optional<Response> refusal;
        try {
            refusal = inner->Write(piece);
        } catch (const std::exception& error) {
            Fail(error);
            refusal = ServerError();
        }
        if (refusal) {
            decorate(*refusal);
        }
        return refusal;
    }

    Response Finish() override {
        Response response;
        try {
            response = inner->Finish();
        } catch (const std::exception& error) {
            Fail(error);
            response = ServerError();
        }
        decorate(response);
        return response;
    }

    void Abort() override { inner->Abort(); }

private:
    void Fail(const std::exception& error) {
        std::cerr << "vantro-server: " << target << " failed: " << error.what() << std::endl;
        inner->Abort();
    }

    std::shared_ptr<BodySink> inner;
    std::string target;
    std::function<void(Response&)> decorate;
};

}  // namespace

Dispatcher::Dispatcher(std::shared_ptr<const Router> router, std::shared_ptr<RateLimiter> limiter,
                       TokenVerifier verifier, std::shared_ptr<hooks::FaultInjector> faults)
    : router(std::move(router)),
      limiter(std::move(limiter)),
      verifier(std::move(verifier)),
      faults(std::move(faults)) {}

std::optional<hooks::FaultInjector::Fault> Dispatcher::TakeFault(
    const RequestContext::Header& request) {
    if (!faults) {
        return std::nullopt;
    }
    const auto parsed = ParseTarget(request.target());
    // The hook's own routes are never faulted, so a test can always clear what it set.
    if (!parsed || (!parsed->segments.empty() && parsed->segments.front() == "test")) {
        return std::nullopt;
    }
    return faults->Take(parsed->segments);
}

bool Dispatcher::Streams(const RequestContext::Header& request) const {
    const auto parsed = ParseTarget(request.target());
    if (!parsed) {
        return false;
    }
    const auto match = router->Find(request.method(), parsed->segments);
    const auto* found = std::get_if<Router::Found>(&match);
    return found && found->route->streamHandler;
}

Router::StreamStart Dispatcher::DispatchTarget(
    const RequestContext::Message& request,
    const std::optional<hooks::FaultInjector::Fault>& fault) {
    auto parsed = ParseTarget(request.target());
    if (!parsed) {
        return Response::Error(status::bad_request, "invalid_request",
                               "the request target is not a valid path and query");
    }
    RequestContext context(request, std::move(parsed->segments), std::move(parsed->query));
    return DispatchParsed(context, fault);
}

Response Dispatcher::Dispatch(const RequestContext::Message& request,
                              const std::optional<hooks::FaultInjector::Fault>& fault) {
    auto start = DispatchTarget(request, fault);
    Response response;
    if (auto* sink = std::get_if<std::shared_ptr<BodySink>>(&start)) {
        // A streamed route served from a body already in memory: one piece, then the end.
        auto refusal =
            request.body().empty()
                ? std::nullopt
                : (*sink)->Write(std::span(request.body().data(), request.body().size()));
        response = refusal ? std::move(*refusal) : (*sink)->Finish();
    } else {
        response = std::move(std::get<Response>(start));
    }
    if (fault && fault->malformedRateLimitHeaders) {
        response.Set("X-RATELIMIT-LIMIT", "lots");
        response.Set("X-RATELIMIT-WINDOW", "-1.5e3ms");
    }
    return response;
}

Router::StreamStart Dispatcher::DispatchHeader(
    const RequestContext::Message& head, const std::optional<hooks::FaultInjector::Fault>& fault) {
    return DispatchTarget(head, fault);
}

Router::StreamStart Dispatcher::DispatchParsed(
    RequestContext& context, const std::optional<hooks::FaultInjector::Fault>& fault) {
    auto match = router->Find(context.Request().method(), context.PathSegments());
    if (std::holds_alternative<Router::NotFound>(match)) {
        return Response::Error(status::not_found, "not_found", "no such resource");
    }
    if (const auto* wrong = std::get_if<Router::WrongMethod>(&match)) {
        auto response = Response::Error(status::method_not_allowed, "method_not_allowed",
                                        "the resource does not answer this method");
        response.Set("Allow", wrong->allowed);
        return response;
    }
    auto& found = std::get<Router::Found>(match);
    context.SetCaptures(std::move(found.captures));

    const bool authenticated = found.route->access == Router::Access::Bearer;
    if (authenticated) {
        const auto token = BearerToken(context.Request());
        auto principal = token ? verifier(*token) : std::nullopt;
        if (!principal) {
            auto response = Response::Error(status::unauthorized, "invalid_token",
                                            token ? "the access token is invalid or expired"
                                                  : "a bearer access token is required");
            response.Set("WWW-Authenticate", token ? "Bearer error=\"invalid_token\"" : "Bearer");
            return response;
        }
        const auto wait = limiter->Acquire(principal->token);
        context.SetPrincipal(std::move(*principal));
        if (wait) {
            auto response = Response::Error(status::too_many_requests, "rate_limited",
                                            "too many requests for this access token");
            const auto seconds = std::chrono::ceil<std::chrono::seconds>(*wait).count();
            response.Set("Retry-After", std::to_string(std::max<long long>(1, seconds)));
            AddRateLimitHeaders(response);
            return response;
        }
    }

    Response response;
    if (fault && fault->status) {
        response = Response::Error(static_cast<status>(*fault->status), "injected_fault",
                                   "status injected by a test hook");
    } else {
        try {
            if (found.route->streamHandler) {
                auto start = found.route->streamHandler(context);
                if (auto* sink = std::get_if<std::shared_ptr<BodySink>>(&start)) {
                    return std::make_shared<GuardedSink>(
                        std::move(*sink), std::string(context.Request().target()),
                        [limits = limiter->Limit(), authenticated](Response& answer) {
                            if (authenticated) {
                                answer.Set("X-RATELIMIT-LIMIT", std::to_string(limits.requests));
                                answer.Set("X-RATELIMIT-WINDOW",
                                           std::to_string(limits.window.count()));
                            }
                        });
                }
                response = std::move(std::get<Response>(start));
            } else {
                response = found.route->handler(context);
            }
        } catch (const std::exception& error) {
            std::cerr << "vantro-server: " << context.Request().method_string() << " "
                      << context.Request().target() << " failed: " << error.what() << std::endl;
            response = Response::Error(status::internal_server_error, "server_error",
                                       "the server could not answer this request");
        }
    }
    if (authenticated) {
        AddRateLimitHeaders(response);
    }
    return response;
}

void Dispatcher::AddRateLimitHeaders(Response& response) const {
    response.Set("X-RATELIMIT-LIMIT", std::to_string(limiter->Limit().requests));
    response.Set("X-RATELIMIT-WINDOW", std::to_string(limiter->Limit().window.count()));
}

}  // namespace vantroserver::http
