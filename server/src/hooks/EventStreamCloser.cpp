#include "hooks/EventStreamCloser.h"

#include <boost/json/object.hpp>

#include "http/Response.h"

namespace vantroserver::hooks {

EventStreamCloser::EventStreamCloser(std::shared_ptr<events::EventHub> hub) : hub(std::move(hub)) {}

void EventStreamCloser::AddRoutes(http::Router& router) const {
    using boost::beast::http::status;
    using boost::beast::http::verb;
    router.Add(verb::delete_, "/test/events", http::Router::Access::Public,
               [hub = hub](http::RequestContext&) {
                   const auto closed = hub->CloseAll();
                   return http::Response::Json(status::ok, boost::json::object{{"closed", closed}});
               });
}

}  // namespace vantroserver::hooks
