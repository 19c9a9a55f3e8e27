#include "store/StoreCore.h"

namespace vantroserver::store {

StoreCore::StoreCore(std::shared_ptr<Database> database, StoreOptions options)
    : database(std::move(database)), options(std::move(options)) {}

Timestamp StoreCore::Now() const {
    if (options.clock) {
        return options.clock();
    }
    return std::chrono::time_point_cast<std::chrono::milliseconds>(Clock::now());
}

void StoreCore::RecordChange(Connection& connection, ChangeKind kind,
                             std::string_view parentId) const {
    connection.Prepare("INSERT INTO changes (kind, parent_id, created_at) VALUES (?, ?, ?)")
        .Bind(1, ChangeKindName(kind))
        .Bind(2, parentId)
        .Bind(3, MillisecondsOf(Now()))
        .Run();
}

bool StoreCore::RowExists(Connection& connection, const char* table, std::string_view id) {
    Statement statement =
        connection.Prepare(std::string("SELECT 1 FROM ") + table + " WHERE id = ?");
    statement.Bind(1, id);
    return statement.Step();
}

}  // namespace vantroserver::store
