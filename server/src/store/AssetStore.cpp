#include "store/AssetStore.h"

#include "security/Random.h"
#include "store/AssetRows.h"
#include "store/StoreCore.h"
#include "store/StoreError.h"
#include "store/Transaction.h"
#include "store/Validation.h"

namespace vantroserver::store {

AssetStore::AssetStore(std::shared_ptr<StoreCore> core) : core(std::move(core)) {}

std::optional<Asset> AssetStore::Find(std::string_view id) const {
    auto lease = core->Acquire();
    return AssetRows::Find(*lease, id);
}

Page<Asset> AssetStore::Children(std::string_view parentId, PageRequest page) const {
    Page<Asset> result;
    if (!security::IsWellFormedId(parentId)) {
        return result;
    }
    auto lease = core->Acquire();
    Transaction transaction(*lease, Transaction::Mode::Read);
    {
        Statement count = lease->Prepare("SELECT COUNT(*) FROM assets WHERE parent_id = ?");
        count.Bind(1, parentId);
        count.Step();
        result.total = static_cast<std::uint64_t>(count.ColumnInt(0));
    }
    {
        Statement rows = lease->Prepare(std::string("SELECT ") + AssetRows::kColumns +
                                        " FROM assets WHERE parent_id = ?1 "
                                        "ORDER BY name, id LIMIT ?2 OFFSET ?3");
        rows.Bind(1, parentId).Bind(2, SqlLimit(page)).Bind(3, SqlOffset(page));
        while (rows.Step()) {
            result.items.push_back(AssetRows::Read(rows));
        }
    }
    transaction.Commit();
    return result;
}

Asset AssetStore::CreateFolder(std::string_view parentId, std::string_view name) {
    return CreateInFolder(parentId, name, AssetType::Folder, "folder");
}

Asset AssetStore::CreateVersionStack(std::string_view parentId, std::string_view name) {
    return CreateInFolder(parentId, name, AssetType::VersionStack, "version stack");
}

Asset AssetStore::CreateInFolder(std::string_view parentId, std::string_view name, AssetType type,
                                 const std::string& what) {
    auto lease = core->Acquire();
    Transaction transaction(*lease);
    Asset asset = AssetRows::InsertInFolder(*core, *lease, parentId, name, type, what);
    transaction.Commit();
    return asset;
}

Asset AssetStore::AddFile(std::string_view parentId, std::string_view name, std::int64_t size) {
    auto lease = core->Acquire();
    Transaction transaction(*lease);
    Asset file = AssetRows::InsertFile(*core, *lease, parentId, name, size);
    transaction.Commit();
    return file;
}

}  // namespace vantroserver::store
