#include "store/Store.h"

#include "store/StoreCore.h"

namespace vantroserver::store {

std::shared_ptr<Store> Store::Open(const std::filesystem::path& databaseFile, bool create,
                                   StoreOptions options) {
    auto database = Database::Open(databaseFile, create, options.database);
    return std::make_shared<Store>(
        std::make_shared<StoreCore>(std::move(database), std::move(options)));
}

Store::Store(std::shared_ptr<StoreCore> core)
    : core(core),
      users(core),
      clients(core),
      accounts(core),
      teams(core),
      projects(core),
      assets(core),
      access(core),
      tokens(core),
      changes(core),
      uploads(core),
      reviewLinks(core) {}

Timestamp Store::Now() const {
    return core->Now();
}

}  // namespace vantroserver::store
