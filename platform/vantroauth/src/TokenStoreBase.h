// Where tokens are kept between calls (and, for the keyring and the opted-in file, between
// runs). The manager picks one implementation at InitializeAuthManager and owns it by shared
// pointer; the manager orders its calls, but each implementation is safe on any thread.
//
//   if (auto tokens = store->Load(key)) Use(*tokens);
//   store->Save(key, refreshed);
#pragma once

#include <optional>
#include <string>

#include "StoredTokens.h"
#include "TokenKey.h"

namespace vantroauth {

class TokenStoreBase {
public:
    virtual ~TokenStoreBase() = default;

    /// The tokens kept for `key`, or nothing. Throws kel_exception (kResultStorageFailure) when
    /// the store cannot be read. May block for a bounded time.
    virtual std::optional<StoredTokens> Load(const TokenKey& key) = 0;
    /// Keeps `tokens` for `key`, replacing what was there. Throws kel_exception
    /// (kResultStorageFailure) when it cannot.
    virtual void Save(const TokenKey& key, const StoredTokens& tokens) = 0;
    /// Forgets `key`'s tokens; nothing kept is not a failure. Throws kel_exception
    /// (kResultStorageFailure) when they stay.
    virtual void Erase(const TokenKey& key) = 0;

    /// For the log: "the Secret Service", "the token file <path>", "memory".
    virtual std::string Describe() const = 0;
};

}  // namespace vantroauth
