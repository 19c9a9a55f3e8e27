// A change to one list: which list (`account-list`, `team-list`, `project-list`, `asset-list`)
// and the id of its parent (the user, account, team or folder). A value; any thread.
#pragma once

#include <string>

namespace vantroserver::events {

struct Event {
    std::string type;
    std::string parentId;

    /// The server-sent-events frame: `event:` and `data: {"parent_id": ...}` lines.
    std::string Frame() const;
};

}  // namespace vantroserver::events
