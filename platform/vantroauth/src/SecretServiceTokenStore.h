// Tokens in the desktop's keyring through the Secret Service (libsecret): one item per key,
// schema "org.vantrokelui.Token" with the attributes service, client, profile and user, whose
// secret is the stored JSON (refresh token, access token, expiry). libsecret's calls run on a
// thread of this store and the caller waits for each at most a bound: a keyring that hangs
// (or a bus that swallows calls) is then a storage failure, not a frozen caller, and the call is
// cancelled. Without a bus the calls fail at once. Owned by the manager; any thread.
//
//   auto store = std::make_shared<SecretServiceTokenStore>(std::chrono::seconds(10));
//   store->Load(key);   // throws kel_exception (kResultStorageFailure) when no keyring answers
#pragma once

#include <chrono>
#include <memory>

#include "TokenStoreBase.h"

namespace vantroauth {

class SecretServiceTokenStore final : public TokenStoreBase {
public:
    explicit SecretServiceTokenStore(std::chrono::milliseconds bound);
    /// Cancels a call in flight and joins the store's thread.
    ~SecretServiceTokenStore() override;
    SecretServiceTokenStore(const SecretServiceTokenStore&) = delete;
    SecretServiceTokenStore& operator=(const SecretServiceTokenStore&) = delete;

    std::optional<StoredTokens> Load(const TokenKey& key) override;
    void Save(const TokenKey& key, const StoredTokens& tokens) override;
    void Erase(const TokenKey& key) override;
    std::string Describe() const override { return "the Secret Service"; }

private:
    class Worker;
    const std::chrono::milliseconds bound;
    std::shared_ptr<Worker> worker;
};

}  // namespace vantroauth
