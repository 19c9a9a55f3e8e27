// The registered public OAuth clients (ids only: public clients hold no secret and redirect to
// loopback addresses). Part of a Store; any thread.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vantroserver::store {

class StoreCore;

class ClientStore {
public:
    explicit ClientStore(std::shared_ptr<StoreCore> core);

    /// `clientId`: 1 to 128 characters of [A-Za-z0-9._-]. Throws StoreError: Invalid, or
    /// Conflict when already registered.
    void Add(std::string_view clientId);
    bool Exists(std::string_view clientId) const;
    std::vector<std::string> List() const;

private:
    std::shared_ptr<StoreCore> core;
};

}  // namespace vantroserver::store
