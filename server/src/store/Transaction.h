// A transaction on a leased connection, rolled back on destruction unless Commit() was called.
// Writes begin IMMEDIATE, so two writers queue on the busy timeout instead of failing when a
// reader upgrades; reads begin DEFERRED and see one snapshot (a page and its total agree).
// Lives on the stack of the thread holding the lease.
#pragma once

#include "store/Connection.h"

namespace vantroserver::store {

class Transaction {
public:
    enum class Mode { Read, Write };

    explicit Transaction(Connection& connection, Mode mode = Mode::Write);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    void Commit();

private:
    Connection& connection;
    bool done = false;
};

}  // namespace vantroserver::store
