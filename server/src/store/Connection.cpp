#include "store/Connection.h"

#include <sqlite3.h>

#include "store/StoreError.h"

namespace vantroserver::store {

void Connection::StatementFinalizer::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

void Connection::HandleCloser::operator()(sqlite3* database) const {
    sqlite3_close(database);
}

Connection::Connection(const std::filesystem::path& file, bool create,
                       std::chrono::milliseconds busyTimeout) {
    // Each connection is used by one thread at a time (the pool hands it out), so SQLite's own
    // per-connection mutex is not needed.
    int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX;
    if (create) {
        flags |= SQLITE_OPEN_CREATE;
    }
    sqlite3* raw = nullptr;
    const int code = sqlite3_open_v2(file.c_str(), &raw, flags, nullptr);
    handle.reset(raw);
    if (code != SQLITE_OK) {
        const std::string message = raw != nullptr ? sqlite3_errmsg(raw) : sqlite3_errstr(code);
        throw StoreError(StoreError::Kind::Database,
                         "cannot open the database " + file.string() + ": " + message);
    }
    sqlite3_extended_result_codes(raw, 1);
    sqlite3_busy_timeout(raw, static_cast<int>(busyTimeout.count()));
    // WAL lets readers run beside the writer; NORMAL sync is durable enough in WAL mode (a crash
    // may lose the last commits, never corrupt the file).
    Execute("PRAGMA foreign_keys = ON; PRAGMA synchronous = NORMAL;");
    // The mode is stored in the file: only a new file (or a foreign one) needs switching, which
    // keeps pooled connections from asking for the exclusive lock a switch takes.
    {
        Statement current = Prepare("PRAGMA journal_mode");
        if (current.Step() && current.ColumnText(0) == "wal") {
            return;
        }
    }
    Statement journal = Prepare("PRAGMA journal_mode = WAL");
    if (!journal.Step() || journal.ColumnText(0) != "wal") {
        throw StoreError(StoreError::Kind::Database,
                         "cannot switch " + file.string() + " to write-ahead logging");
    }
}

Connection::~Connection() {
    // Statements go before the handle, or sqlite3_close would refuse to close.
    statements.clear();
}

Statement Connection::Prepare(const std::string& sql) {
    auto found = statements.find(sql);
    if (found == statements.end()) {
        sqlite3_stmt* raw = nullptr;
        if (sqlite3_prepare_v3(handle.get(), sql.c_str(), static_cast<int>(sql.size() + 1),
                               SQLITE_PREPARE_PERSISTENT, &raw, nullptr) != SQLITE_OK) {
            throw StoreError(
                StoreError::Kind::Database,
                "cannot prepare a statement: " + std::string(sqlite3_errmsg(handle.get())));
        }
        found =
            statements.emplace(sql, std::unique_ptr<sqlite3_stmt, StatementFinalizer>(raw)).first;
    }
    return Statement(found->second.get());
}

void Connection::Execute(const std::string& sql) {
    char* error = nullptr;
    if (sqlite3_exec(handle.get(), sql.c_str(), nullptr, nullptr, &error) != SQLITE_OK) {
        std::string message = error != nullptr ? error : "unknown error";
        sqlite3_free(error);
        throw StoreError(StoreError::Kind::Database, "database error: " + message);
    }
}

int Connection::Changes() const {
    return sqlite3_changes(handle.get());
}

}  // namespace vantroserver::store
