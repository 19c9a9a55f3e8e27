// Turns the service's JSON objects into the plain records of vantro::v2, leniently: a member that
// is missing or of another type leaves its field empty (a nil id, no name), so one odd item never
// costs the whole list. Any thread.
//
//   const v2::Asset asset = RecordReader::Asset(item.as_object());
#pragma once

#include <boost/json/object.hpp>

#include <vantroclient/v2/Account.h>
#include <vantroclient/v2/Asset.h>
#include <vantroclient/v2/Project.h>
#include <vantroclient/v2/Team.h>
#include <vantroclient/v2/User.h>

namespace vantro::detail {

class RecordReader {
public:
    static v2::Account Account(const boost::json::object& object);
    static v2::Team Team(const boost::json::object& object);
    static v2::Project Project(const boost::json::object& object);
    static v2::Asset Asset(const boost::json::object& object);
    static v2::User User(const boost::json::object& object);
};

}  // namespace vantro::detail
