#include "store/Statement.h"

#include <sqlite3.h>

#include <string>

#include "store/StoreError.h"

namespace vantroserver::store {

namespace {

[[noreturn]] void ThrowStepError(sqlite3_stmt* statement, int code) {
    sqlite3* handle = sqlite3_db_handle(statement);
    const std::string message = sqlite3_errmsg(handle);
    switch (code) {
        case SQLITE_CONSTRAINT_UNIQUE:
        case SQLITE_CONSTRAINT_PRIMARYKEY:
            throw StoreError(StoreError::Kind::Conflict, "already exists (" + message + ")");
        case SQLITE_CONSTRAINT_FOREIGNKEY:
            throw StoreError(StoreError::Kind::NotFound, "refers to nothing (" + message + ")");
        case SQLITE_CONSTRAINT_CHECK:
        case SQLITE_CONSTRAINT_NOTNULL:
            throw StoreError(StoreError::Kind::Invalid, "invalid value (" + message + ")");
        default:
            throw StoreError(StoreError::Kind::Database, "database error: " + message);
    }
}

}  // namespace

Statement::Statement(sqlite3_stmt* statement) : statement(statement) {}

Statement::Statement(Statement&& other) noexcept : statement(other.statement) {
    other.statement = nullptr;
}

Statement::~Statement() {
    if (statement != nullptr) {
        sqlite3_reset(statement);
        sqlite3_clear_bindings(statement);
    }
}

Statement& Statement::Bind(int index, std::string_view text) {
    // A null data pointer would bind NULL; an empty name must stay an empty string.
    static const char kEmpty[] = "";
    const char* data = text.empty() ? kEmpty : text.data();
    if (sqlite3_bind_text64(statement, index, data, text.size(), SQLITE_TRANSIENT, SQLITE_UTF8) !=
        SQLITE_OK) {
        ThrowStepError(statement, sqlite3_extended_errcode(sqlite3_db_handle(statement)));
    }
    return *this;
}

Statement& Statement::Bind(int index, std::int64_t value) {
    if (sqlite3_bind_int64(statement, index, value) != SQLITE_OK) {
        ThrowStepError(statement, sqlite3_extended_errcode(sqlite3_db_handle(statement)));
    }
    return *this;
}

Statement& Statement::BindNull(int index) {
    if (sqlite3_bind_null(statement, index) != SQLITE_OK) {
        ThrowStepError(statement, sqlite3_extended_errcode(sqlite3_db_handle(statement)));
    }
    return *this;
}

bool Statement::Step() {
    const int code = sqlite3_step(statement);
    if (code == SQLITE_ROW) {
        return true;
    }
    if (code == SQLITE_DONE) {
        return false;
    }
    ThrowStepError(statement, sqlite3_extended_errcode(sqlite3_db_handle(statement)));
}

void Statement::Run() {
    while (Step()) {
    }
}

std::string Statement::ColumnText(int column) const {
    const auto* text = sqlite3_column_text(statement, column);
    if (text == nullptr) {
        return {};
    }
    return std::string(reinterpret_cast<const char*>(text),
                       static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
}

std::int64_t Statement::ColumnInt(int column) const {
    return sqlite3_column_int64(statement, column);
}

bool Statement::ColumnIsNull(int column) const {
    return sqlite3_column_type(statement, column) == SQLITE_NULL;
}

}  // namespace vantroserver::store
