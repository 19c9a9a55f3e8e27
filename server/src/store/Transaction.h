// A write transaction on a leased connection: BEGIN IMMEDIATE on construction (so two writers
// queue on the busy timeout instead of failing on upgrade), ROLLBACK on destruction unless
// Commit() was called. Lives on the stack of the thread holding the lease.
#pragma once

#include "store/Connection.h"

namespace vantroserver::store {

class Transaction {
public:
    explicit Transaction(Connection& connection);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    void Commit();

private:
    Connection& connection;
    bool done = false;
};

}  // namespace vantroserver::store
