// The admin commands of `vantro-server` over one data directory: each makes something and
// prints its id on `out` (the main id first, one per line) so scripts can capture it. Failures
// throw (store::StoreError or std::runtime_error) with a message for the terminal; main turns
// them into exit code 1. Used once per process by main, on the main thread.
//
//   AdminCommands admin(dataDir, std::cout);
//   admin.AddUser({"ann", "secret", "Ann", ""});    // prints ann's id
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "store/DataDirectory.h"
#include "store/StoreOptions.h"
#include "store/UserStore.h"

namespace vantroserver::admin {

class AdminCommands {
public:
    AdminCommands(std::filesystem::path dataDir, std::ostream& out,
                  store::StoreOptions options = {});

    /// Creates the data directory, prints its path.
    void Init();
    void AddUser(const store::NewUser& user);
    void AddClient(const std::string& clientId);
    /// `owner` and every user argument below: a username or a user id.
    void AddAccount(const std::string& name, const std::string& owner, std::int64_t storageLimit);
    void AddAccountMember(const std::string& accountId, const std::string& user);
    void AddTeam(const std::string& accountId, const std::string& name,
                 const std::vector<std::string>& members);
    /// Prints the project id, then its root folder's id.
    void AddProject(const std::string& teamId, const std::string& name);
    void AddFolder(const std::string& parentId, const std::string& name);
    void AddFile(const std::string& parentId, const std::string& name, std::int64_t size);
    void ShareProject(const std::string& projectId, const std::string& user);
    /// Signs `user` in for `clientId` (a registered client) without a browser: prints the token
    /// endpoint's JSON answer (access token of `accessTokenTtl`, refresh token) on one line.
    void IssueToken(const std::string& user, const std::string& clientId,
                    std::chrono::seconds accessTokenTtl);
    /// Prints `key=value` lines: credentials and the ids of what was made.
    void SeedDemo();

private:
    store::Store& OpenStore();
    std::string ResolveUser(const std::string& user);

    std::filesystem::path dataDir;
    std::ostream& out;
    store::StoreOptions options;
    std::shared_ptr<store::Store> store;
};

}  // namespace vantroserver::admin
