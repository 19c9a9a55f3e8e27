#include "store/ClientStore.h"

#include "store/StoreCore.h"
#include "store/StoreError.h"
#include "store/Transaction.h"

namespace vantroserver::store {

namespace {

void ValidateClientId(std::string_view clientId) {
    if (clientId.empty() || clientId.size() > 128) {
        throw StoreError(StoreError::Kind::Invalid, "a client id has 1 to 128 characters");
    }
    for (const char c : clientId) {
        const bool allowed = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                             (c >= '0' && c <= '9') || c == '.' || c == '_' || c == '-';
        if (!allowed) {
            throw StoreError(StoreError::Kind::Invalid,
                             "a client id may hold only letters, digits and . _ -");
        }
    }
}

}  // namespace

ClientStore::ClientStore(std::shared_ptr<StoreCore> core) : core(std::move(core)) {}

void ClientStore::Add(std::string_view clientId) {
    ValidateClientId(clientId);
    auto lease = core->Acquire();
    Transaction transaction(*lease);
    {
        Statement taken = lease->Prepare("SELECT 1 FROM clients WHERE id = ?");
        taken.Bind(1, clientId);
        if (taken.Step()) {
            throw StoreError(StoreError::Kind::Conflict,
                             "the client " + std::string(clientId) + " is already registered");
        }
    }
    lease->Prepare("INSERT INTO clients (id, created_at) VALUES (?, ?)")
        .Bind(1, clientId)
        .Bind(2, MillisecondsOf(core->Now()))
        .Run();
    transaction.Commit();
}

bool ClientStore::Exists(std::string_view clientId) const {
    auto lease = core->Acquire();
    Statement statement = lease->Prepare("SELECT 1 FROM clients WHERE id = ?");
    statement.Bind(1, clientId);
    return statement.Step();
}

std::vector<std::string> ClientStore::List() const {
    auto lease = core->Acquire();
    Statement statement = lease->Prepare("SELECT id FROM clients ORDER BY id");
    std::vector<std::string> ids;
    while (statement.Step()) {
        ids.push_back(statement.ColumnText(0));
    }
    return ids;
}

}  // namespace vantroserver::store
