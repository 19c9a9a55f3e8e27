// An account of the datastore's store. Held by InterfaceRef; any thread.
#pragma once

#include <string>

#include <vantroclient/VantroItem.h>
#include <vantroclient/v2/Account.h>

namespace vantro {

class VantroAccount final : public VantroItem<v2::Account> {
public:
    explicit VantroAccount(v2::Account record) : VantroItem(std::move(record)) {}

    using VantroItem::GetName;
    /// The name, empty when the service gave none; takes the lock itself. Any thread.
    std::string GetName() const { return GetName(Lock()).value_or(std::string()); }
};

}  // namespace vantro
