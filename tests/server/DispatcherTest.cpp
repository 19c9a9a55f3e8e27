#include <gtest/gtest.h>

#include <boost/json/parse.hpp>

#include "http/Dispatcher.h"

namespace vantroserver::http {
namespace {

using boost::beast::http::field;
using boost::beast::http::status;
using boost::beast::http::verb;
using namespace std::chrono_literals;

class DispatcherTest : public ::testing::Test {
protected:
    DispatcherTest() {
        auto table = std::make_shared<Router>();
        table->Add(verb::get, "/v2/me", Router::Access::Bearer, [](RequestContext& context) {
            return Response::Json(status::ok, {{"id", context.User().userId}});
        });
        table->Add(verb::get, "/open", Router::Access::Public, [](RequestContext&) {
            return Response::Json(status::ok, {{"ok", true}});
        });
        table->Add(verb::get, "/boom", Router::Access::Public,
                   [](RequestContext&) -> Response { throw std::runtime_error("broken"); });
        faults = std::make_shared<hooks::FaultInjector>();
        dispatcher = std::make_unique<Dispatcher>(
            table, std::make_shared<RateLimiter>(RateLimit{2, 60000ms}),
            [](std::string_view token) -> std::optional<RequestContext::Principal> {
                if (token != "good") {
                    return std::nullopt;
                }
                return RequestContext::Principal{"user-1", "client", std::string(token)};
            },
            faults);
    }

    Response Send(verb method, const std::string& target, const std::string& token = {}) {
        RequestContext::Message request{method, target, 11};
        if (!token.empty()) {
            request.set(field::authorization, "Bearer " + token);
        }
        auto fault = dispatcher->TakeFault(request);
        return dispatcher->Dispatch(request, fault);
    }

    std::shared_ptr<hooks::FaultInjector> faults;
    std::unique_ptr<Dispatcher> dispatcher;
};

std::string ErrorCode(Response& response) {
    return std::string(boost::json::parse(response.AsString().body()).at("error").as_string());
}

TEST_F(DispatcherTest, UnknownPathIs404AndWrongMethodIs405WithAllow) {
    auto missing = Send(verb::get, "/nope");
    EXPECT_EQ(missing.Status(), status::not_found);
    EXPECT_EQ(ErrorCode(missing), "not_found");
    auto wrong = Send(verb::delete_, "/open");
    EXPECT_EQ(wrong.Status(), status::method_not_allowed);
    EXPECT_EQ(wrong.Head()["Allow"], "GET, HEAD");
}

TEST_F(DispatcherTest, BearerRoutesNeedAValidToken) {
    auto none = Send(verb::get, "/v2/me");
    EXPECT_EQ(none.Status(), status::unauthorized);
    EXPECT_EQ(none.Head()["WWW-Authenticate"], "Bearer");
    auto bad = Send(verb::get, "/v2/me", "forged");
    EXPECT_EQ(bad.Status(), status::unauthorized);
    EXPECT_EQ(ErrorCode(bad), "invalid_token");
    auto good = Send(verb::get, "/v2/me", "good");
    EXPECT_EQ(good.Status(), status::ok);
    EXPECT_EQ(good.AsString().body(), R"({"id":"user-1"})");
}

TEST_F(DispatcherTest, RateLimitHeadersOnEveryAuthenticatedAnswerAnd429PastTheLimit) {
    for (int i = 0; i < 2; ++i) {
        auto ok = Send(verb::get, "/v2/me", "good");
        EXPECT_EQ(ok.Status(), status::ok);
        EXPECT_EQ(ok.Head()["X-RATELIMIT-LIMIT"], "2");
        EXPECT_EQ(ok.Head()["X-RATELIMIT-WINDOW"], "60000");
    }
    auto refused = Send(verb::get, "/v2/me", "good");
    EXPECT_EQ(refused.Status(), status::too_many_requests);
    EXPECT_EQ(ErrorCode(refused), "rate_limited");
    EXPECT_EQ(refused.Head()["X-RATELIMIT-LIMIT"], "2");
    EXPECT_EQ(refused.Head()["Retry-After"], "60");
    auto open = Send(verb::get, "/open");
    EXPECT_EQ(open.Head().count("X-RATELIMIT-LIMIT"), 0u);
}

TEST_F(DispatcherTest, AnEscapingExceptionIs500) {
    auto response = Send(verb::get, "/boom");
    EXPECT_EQ(response.Status(), status::internal_server_error);
    EXPECT_EQ(ErrorCode(response), "server_error");
}

TEST_F(DispatcherTest, AMalformedTargetIs400) {
    auto response = Send(verb::get, "/a%zz");
    EXPECT_EQ(response.Status(), status::bad_request);
    auto absolute = Send(verb::get, "http://elsewhere/open");
    EXPECT_EQ(absolute.Status(), status::bad_request);
}

TEST_F(DispatcherTest, InjectedStatusAndSpoiledHeadersApplyToMatchingRequests) {
    hooks::FaultInjector::Fault fault;
    fault.route = PathPattern("/v2/me");
    fault.status = 503;
    fault.malformedRateLimitHeaders = true;
    faults->Add(fault);
    auto faulted = Send(verb::get, "/v2/me", "good");
    EXPECT_EQ(faulted.Status(), status::service_unavailable);
    EXPECT_EQ(faulted.Head()["X-RATELIMIT-LIMIT"], "lots");
    auto next = Send(verb::get, "/v2/me", "good");
    EXPECT_EQ(next.Status(), status::ok);
    EXPECT_EQ(next.Head()["X-RATELIMIT-LIMIT"], "2");
}

}  // namespace
}  // namespace vantroserver::http
