#include "events/Event.h"

#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>

namespace vantroserver::events {

std::string Event::Frame() const {
    // Types and ids hold no line breaks (both come from our own tables), so one data line.
    return "event: " + type +
           "\ndata: " + boost::json::serialize(boost::json::object{{"parent_id", parentId}}) +
           "\n\n";
}

}  // namespace vantroserver::events
