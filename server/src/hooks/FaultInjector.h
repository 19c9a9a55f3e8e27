// Faults a test asks for through `POST /test/faults`: for the next N requests whose path fits a
// pattern, wait, answer a chosen status, drop the connection (before or after the route has
// run) or spoil the rate-limit headers.
// Exists only when the server runs with --enable-test-hooks. Owned by the server; any thread.
//
//   injector.Add(fault);                            // from the /test/faults route
//   if (auto fault = injector.Take(segments)) ...   // once per incoming request
#pragma once

#include <chrono>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "http/PathPattern.h"
#include "http/Router.h"

namespace vantroserver::hooks {

class FaultInjector {
public:
    struct Fault {
        http::PathPattern route{"/"};
        unsigned count = 1;
        std::chrono::milliseconds delay{0};
        std::optional<unsigned> status;
        bool drop = false;
        bool dropAnswer = false;  ///< run the route, then close without answering
        bool malformedRateLimitHeaders = false;
    };

    void Add(Fault fault);
    void Clear();
    /// The first pending fault whose route fits `segments`, counting one use of it.
    std::optional<Fault> Take(const std::vector<std::string>& segments);

    /// Adds `POST /test/faults` and `DELETE /test/faults`. The injector must outlive the router.
    void AddRoutes(http::Router& router);

    /// Reads a fault from the JSON body of `POST /test/faults`; nothing, with `error` set,
    /// when a member is missing, of the wrong type, out of range or unknown.
    static std::optional<Fault> Parse(const boost::json::object& body, std::string& error);

private:
    std::mutex mutex;
    std::vector<Fault> pending;
};

}  // namespace vantroserver::hooks
