// The signed-in user, as the datastore's GetCurrentUser answers. Held by InterfaceRef; any
// thread.
#pragma once

#include <string>

#include <vantroclient/VantroItem.h>
#include <vantroclient/v2/User.h>

namespace vantro {

class VantroUser final : public VantroItem<v2::User> {
public:
    explicit VantroUser(v2::User record) : VantroItem(std::move(record)) {}

    /// The user's name, UTF-8; takes the lock itself. Any thread.
    std::string GetName() const { return GetRecord(Lock()).name; }
};

}  // namespace vantro
