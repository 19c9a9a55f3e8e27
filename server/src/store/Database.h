// The SQLite database file and a small pool of connections to it. Thread-safe: any thread
// leases a connection for the length of one store call and gives it back when the lease goes;
// the pool opens another connection when all are busy and keeps up to `maxIdleConnections`
// idle. WAL mode lets readers run beside the one writer. Shared (shared_ptr) by the store's
// parts; lives as long as the longest of them.
//
//   auto database = Database::Open(file, /*create=*/true);
//   auto lease = database->Lease();
//   lease->Prepare("SELECT 1").Step();
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <mutex>
#include <vector>

#include "store/Connection.h"

namespace vantroserver::store {

struct DatabaseOptions {
    std::chrono::milliseconds busyTimeout{5000};
    std::size_t maxIdleConnections = 8;
};

class Database : public std::enable_shared_from_this<Database> {
public:
    /// Returns the connection to the pool when destroyed.
    class Lease {
    public:
        Lease(std::shared_ptr<Database> database, std::unique_ptr<Connection> connection);
        ~Lease();
        Lease(Lease&&) noexcept = default;
        Lease& operator=(Lease&&) = delete;
        Lease(const Lease&) = delete;
        Lease& operator=(const Lease&) = delete;

        Connection& operator*() const { return *connection; }
        Connection* operator->() const { return connection.get(); }

    private:
        std::shared_ptr<Database> database;
        std::unique_ptr<Connection> connection;
    };

    /// Opens `file` (creating it when `create`), applies the schema when the file is new and
    /// checks its version otherwise. Throws StoreError(Kind::Database) with a clear message.
    static std::shared_ptr<Database> Open(const std::filesystem::path& file, bool create,
                                          DatabaseOptions options = {});

    /// Any thread.
    Lease Acquire();

    const std::filesystem::path& File() const { return file; }

    /// The schema version this build writes and reads.
    static constexpr int kSchemaVersion = 3;

private:
    struct PrivateTag {};

public:
    Database(PrivateTag, std::filesystem::path file, DatabaseOptions options);

private:
    void Release(std::unique_ptr<Connection> connection);
    void ApplySchema(Connection& connection, bool create);

    const std::filesystem::path file;
    const DatabaseOptions options;
    std::mutex mutex;
    std::vector<std::unique_ptr<Connection>> idle;
};

}  // namespace vantroserver::store
