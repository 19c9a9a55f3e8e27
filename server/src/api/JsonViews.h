// How the API shows the store's records as JSON: snake_case members, ISO 8601 UTC times, sizes
// in bytes. Stateless; any thread.
#pragma once

#include <boost/json/object.hpp>

#include "store/Account.h"
#include "store/Asset.h"
#include "store/Project.h"
#include "store/Team.h"
#include "store/User.h"

namespace vantroserver::api {

class JsonViews {
public:
    static boost::json::object Of(const store::User& user);
    /// `member` is false when the user only sees the account through projects shared with them.
    static boost::json::object Of(const store::Account& account, bool member);
    static boost::json::object Of(const store::Team& team);
    static boost::json::object Of(const store::Project& project);
    static boost::json::object Of(const store::Asset& asset);
};

}  // namespace vantroserver::api
