// One SQLite connection with its cache of prepared statements. Used by one thread at a time:
// the Database pool lends it out and takes it back. Opening sets WAL mode, foreign keys on and
// the busy timeout.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <unordered_map>

#include "store/Statement.h"

struct sqlite3;

namespace vantroserver::store {

class Connection {
public:
    /// Opens `file` read-write, creating it when `create`. Throws StoreError(Kind::Database)
    /// with SQLite's message when that fails.
    Connection(const std::filesystem::path& file, bool create,
               std::chrono::milliseconds busyTimeout);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// A cached prepared statement for `sql` (prepared on first use).
    Statement Prepare(const std::string& sql);
    /// Runs one or more statements that take no parameters and return no rows.
    void Execute(const std::string& sql);
    /// The number of rows the last INSERT, UPDATE or DELETE touched.
    int Changes() const;

private:
    struct StatementFinalizer {
        void operator()(sqlite3_stmt* statement) const;
    };

    struct HandleCloser {
        void operator()(sqlite3* database) const;
    };

    std::unique_ptr<sqlite3, HandleCloser> handle;
    std::unordered_map<std::string, std::unique_ptr<sqlite3_stmt, StatementFinalizer>> statements;
};

}  // namespace vantroserver::store
