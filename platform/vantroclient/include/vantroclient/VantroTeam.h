// A team of the datastore's store; its name is read under its lock (see VantroItem). Held by
// InterfaceRef; any thread.
#pragma once

#include <vantroclient/VantroItem.h>
#include <vantroclient/v2/Team.h>

namespace vantro {

class VantroTeam final : public VantroItem<v2::Team> {
public:
    explicit VantroTeam(v2::Team record) : VantroItem(std::move(record)) {}
};

}  // namespace vantro
