// `DELETE /test/events`: ends every open event stream at once, as a server restart or a
// network change would, so that clients can be tested reconnecting. Answers 200
// `{"closed": N}`. Exists only with --enable-test-hooks; held by the router's handler, which
// keeps the hub alive with it; any thread.
#pragma once

#include <memory>

#include "events/EventHub.h"
#include "http/Router.h"

namespace vantroserver::hooks {

class EventStreamCloser {
public:
    explicit EventStreamCloser(std::shared_ptr<events::EventHub> hub);

    /// Adds `DELETE /test/events`.
    void AddRoutes(http::Router& router) const;

private:
    std::shared_ptr<events::EventHub> hub;
};

}  // namespace vantroserver::hooks
