// Everything the server and the admin commands keep: one SQLite database and its parts, per
// entity. Open once and share (shared_ptr) between threads: every part is thread-safe and
// leases a pooled connection per call (see Database).
//
//   auto store = Store::Open(dataDir / Store::kDatabaseFileName, false, options);
//   auto user = store->Users().Authenticate("demo", "demo");
//   auto page = store->Assets().Children(folderId, {0, 100});
#pragma once

#include <filesystem>
#include <memory>

#include "store/AccessPolicy.h"
#include "store/AccountStore.h"
#include "store/AssetStore.h"
#include "store/ChangeJournal.h"
#include "store/ClientStore.h"
#include "store/ProjectStore.h"
#include "store/ReviewLinkStore.h"
#include "store/StoreOptions.h"
#include "store/TeamStore.h"
#include "store/TokenStore.h"
#include "store/UploadStore.h"
#include "store/UserStore.h"

namespace vantroserver::store {

class StoreCore;

class Store {
public:
    static constexpr const char* kDatabaseFileName = "vantro.db";

    /// Opens (or creates, when `create`) the database file. Throws StoreError.
    static std::shared_ptr<Store> Open(const std::filesystem::path& databaseFile, bool create,
                                       StoreOptions options = {});

    explicit Store(std::shared_ptr<StoreCore> core);

    UserStore& Users() { return users; }
    ClientStore& Clients() { return clients; }
    AccountStore& Accounts() { return accounts; }
    TeamStore& Teams() { return teams; }
    ProjectStore& Projects() { return projects; }
    AssetStore& Assets() { return assets; }
    AccessPolicy& Access() { return access; }
    TokenStore& Tokens() { return tokens; }
    ChangeJournal& Changes() { return changes; }
    UploadStore& Uploads() { return uploads; }
    ReviewLinkStore& ReviewLinks() { return reviewLinks; }

    /// Now, by the store's clock.
    Timestamp Now() const;

private:
    std::shared_ptr<StoreCore> core;
    UserStore users;
    ClientStore clients;
    AccountStore accounts;
    TeamStore teams;
    ProjectStore projects;
    AssetStore assets;
    AccessPolicy access;
    TokenStore tokens;
    ChangeJournal changes;
    UploadStore uploads;
    ReviewLinkStore reviewLinks;
};

}  // namespace vantroserver::store
