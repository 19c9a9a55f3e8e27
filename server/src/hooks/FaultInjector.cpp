#include "hooks/FaultInjector.h"

#include <algorithm>
#include <stdexcept>

#include "http/JsonBody.h"

namespace vantroserver::hooks {

namespace {

constexpr std::int64_t kMaxCount = 1'000'000;
constexpr std::int64_t kMaxDelayMs = 60'000;

std::optional<std::int64_t> IntegerMember(const boost::json::value& value) {
    if (value.is_int64()) {
        return value.as_int64();
    }
    if (value.is_uint64() && value.as_uint64() <= kMaxCount) {
        return static_cast<std::int64_t>(value.as_uint64());
    }
    return std::nullopt;
}

}  // namespace

void FaultInjector::Add(Fault fault) {
    std::lock_guard lock(mutex);
    pending.push_back(std::move(fault));
}

void FaultInjector::Clear() {
    std::lock_guard lock(mutex);
    pending.clear();
}

std::optional<FaultInjector::Fault> FaultInjector::Take(const std::vector<std::string>& segments) {
    std::lock_guard lock(mutex);
    const auto found = std::find_if(pending.begin(), pending.end(), [&](const Fault& fault) {
        return fault.route.Match(segments).has_value();
    });
    if (found == pending.end()) {
        return std::nullopt;
    }
    Fault taken = *found;
    if (--found->count == 0) {
        pending.erase(found);
    }
    return taken;
}

std::optional<FaultInjector::Fault> FaultInjector::Parse(const boost::json::object& body,
                                                         std::string& error) {
    Fault fault;
    bool hasRoute = false;
    for (const auto& [key, value] : body) {
        if (key == "route") {
            if (!value.is_string()) {
                error = "route must be a string";
                return std::nullopt;
            }
            try {
                fault.route = http::PathPattern(std::string_view(value.as_string()));
            } catch (const std::invalid_argument& bad) {
                error = bad.what();
                return std::nullopt;
            }
            hasRoute = true;
        } else if (key == "count") {
            const auto count = IntegerMember(value);
            if (!count || *count < 1 || *count > kMaxCount) {
                error = "count must be a whole number from 1 to " + std::to_string(kMaxCount);
                return std::nullopt;
            }
            fault.count = static_cast<unsigned>(*count);
        } else if (key == "delay_ms") {
            const auto delay = IntegerMember(value);
            if (!delay || *delay < 0 || *delay > kMaxDelayMs) {
                error = "delay_ms must be a whole number from 0 to " + std::to_string(kMaxDelayMs);
                return std::nullopt;
            }
            fault.delay = std::chrono::milliseconds(*delay);
        } else if (key == "status") {
            const auto status = IntegerMember(value);
            if (!status || *status < 200 || *status > 599) {
                error = "status must be a whole number from 200 to 599";
                return std::nullopt;
            }
            fault.status = static_cast<unsigned>(*status);
        } else if (key == "drop") {
            if (!value.is_bool()) {
                error = "drop must be true or false";
                return std::nullopt;
            }
            fault.drop = value.as_bool();
        } else if (key == "drop_answer") {
            if (!value.is_bool()) {
                error = "drop_answer must be true or false";
                return std::nullopt;
            }
            fault.dropAnswer = value.as_bool();
        } else if (key == "malformed_rate_limit_headers") {
            if (!value.is_bool()) {
                error = "malformed_rate_limit_headers must be true or false";
                return std::nullopt;
            }
            fault.malformedRateLimitHeaders = value.as_bool();
        } else {
            error = "unknown member " + std::string(key);
            return std::nullopt;
        }
    }
    if (!hasRoute) {
        error = "route is required";
        return std::nullopt;
    }
    return fault;
}

void FaultInjector::AddRoutes(http::Router& router) {
    using boost::beast::http::status;
    using boost::beast::http::verb;
    // The router lives inside the server, which owns this injector for longer: `this` is safe.
    router.Add(verb::post, "/test/faults", http::Router::Access::Public,
               [this](http::RequestContext& context) {
                   std::string error;
                   const auto body = http::JsonBody::ParseObject(context, error);
                   const auto fault = body ? Parse(*body, error) : std::nullopt;
                   if (!fault) {
                       return http::Response::Error(status::bad_request, "invalid_request", error);
                   }
                   Add(*fault);
                   return http::Response::Json(status::created,
                                               boost::json::object{{"route", fault->route.Text()},
                                                                   {"count", fault->count}});
               });
    router.Add(verb::delete_, "/test/faults", http::Router::Access::Public,
               [this](http::RequestContext&) {
                   Clear();
                   return http::Response::NoContent();
               });
}

}  // namespace vantroserver::hooks
