#include "MemoryTokenStore.h"

namespace vantroauth {

std::optional<StoredTokens> MemoryTokenStore::Load(const TokenKey& key) {
    std::lock_guard lock(mutex);
    const auto found = entries.find(key);
    if (found == entries.end()) {
        return std::nullopt;
    }
    return found->second;
}

void MemoryTokenStore::Save(const TokenKey& key, const StoredTokens& tokens) {
    std::lock_guard lock(mutex);
    entries[key] = tokens;
}

void MemoryTokenStore::Erase(const TokenKey& key) {
    std::lock_guard lock(mutex);
    entries.erase(key);
}

}  // namespace vantroauth
