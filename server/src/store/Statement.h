// A prepared statement borrowed from its connection's cache for one use: bind, step, read
// columns. Going out of scope resets it and clears its bindings so the next user starts clean.
// Lives on the thread that holds the connection lease.
//
//   Statement statement = connection.Prepare("SELECT name FROM users WHERE id = ?");
//   statement.Bind(1, id);
//   if (statement.Step()) name = statement.ColumnText(0);
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

struct sqlite3_stmt;

namespace vantroserver::store {

class Statement {
public:
    /// Borrows `statement`, which stays owned by the connection's cache.
    explicit Statement(sqlite3_stmt* statement);
    ~Statement();
    Statement(Statement&& other) noexcept;
    Statement& operator=(Statement&&) = delete;
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    /// Indices are 1-based, as in SQL. Text is copied by SQLite.
    Statement& Bind(int index, std::string_view text);
    Statement& Bind(int index, std::int64_t value);
    Statement& BindNull(int index);

    /// Advances; true while a row is available, false when done. Throws StoreError
    /// (Kind::Conflict for a constraint, Kind::Database otherwise).
    bool Step();
    /// Steps to the end, for statements that return no rows.
    void Run();

    std::string ColumnText(int column) const;  ///< 0-based; empty for NULL.
    std::int64_t ColumnInt(int column) const;  ///< 0-based; 0 for NULL.
    bool ColumnIsNull(int column) const;

private:
    sqlite3_stmt* statement;  // Not owned: the connection's cache finalizes it.
};

}  // namespace vantroserver::store
