// What the parts of a Store share: the database, the options and the clock, and the one place
// that writes the change journal. Owned jointly by the parts (shared_ptr); any thread.
#pragma once

#include <memory>
#include <string_view>

#include "store/Change.h"
#include "store/Connection.h"
#include "store/Database.h"
#include "store/StoreOptions.h"
#include "store/Timestamp.h"

namespace vantroserver::store {

class StoreCore {
public:
    StoreCore(std::shared_ptr<Database> database, StoreOptions options);

    Database::Lease Acquire() const { return database->Acquire(); }
    Timestamp Now() const;
    const StoreOptions& Options() const { return options; }

    /// Appends to the journal inside the caller's transaction on `connection`.
    void RecordChange(Connection& connection, ChangeKind kind, std::string_view parentId) const;

    /// Whether `table` (one of ours, never outside input) has a row with `id`.
    static bool RowExists(Connection& connection, const char* table, std::string_view id);

private:
    std::shared_ptr<Database> database;
    StoreOptions options;
};

}  // namespace vantroserver::store
