#include "store/Transaction.h"

namespace vantroserver::store {

Transaction::Transaction(Connection& connection, Mode mode) : connection(connection) {
    connection.Execute(mode == Mode::Write ? "BEGIN IMMEDIATE" : "BEGIN DEFERRED");
}

Transaction::~Transaction() {
    if (!done) {
        try {
            connection.Execute("ROLLBACK");
        } catch (...) {
            // Nothing more to do: SQLite rolls back by itself when a statement fails badly.
        }
    }
}

void Transaction::Commit() {
    connection.Execute("COMMIT");
    done = true;
}

}  // namespace vantroserver::store
