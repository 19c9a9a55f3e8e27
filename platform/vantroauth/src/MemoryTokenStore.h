// Tokens kept in this process only: the store when no keyring answers and the user has not
// opted in to a token file. A sign-in does not survive the process (nor a restart of the
// manager, which makes a new one). Owned by the manager; any thread.
#pragma once

#include <map>
#include <mutex>

#include "TokenStoreBase.h"

namespace vantroauth {

class MemoryTokenStore final : public TokenStoreBase {
public:
    std::optional<StoredTokens> Load(const TokenKey& key) override;
    void Save(const TokenKey& key, const StoredTokens& tokens) override;
    void Erase(const TokenKey& key) override;
    std::string Describe() const override { return "memory"; }

private:
    std::mutex mutex;
    std::map<TokenKey, StoredTokens> entries;
};

}  // namespace vantroauth
