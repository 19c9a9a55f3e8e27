#include "admin/AdminCommands.h"

#include <boost/json/serialize.hpp>
#include <stdexcept>

#include "admin/DemoSeeder.h"
#include "api/AccessTokens.h"
#include "security/Random.h"
#include "store/StoreError.h"

namespace vantroserver::admin {

AdminCommands::AdminCommands(std::filesystem::path dataDir, std::ostream& out,
                             store::StoreOptions options)
    : dataDir(std::move(dataDir)), out(out), options(std::move(options)) {}

store::Store& AdminCommands::OpenStore() {
    if (!store) {
        store = store::DataDirectory::Open(dataDir, options).GetStore();
    }
    return *store;
}

std::string AdminCommands::ResolveUser(const std::string& user) {
    auto& users = OpenStore().Users();
    if (security::IsWellFormedId(user)) {
        if (auto found = users.Find(user)) {
            return found->id;
        }
    }
    if (auto found = users.FindByUsername(user)) {
        return found->id;
    }
    throw store::StoreError(store::StoreError::Kind::NotFound, "no user " + user);
}

void AdminCommands::Init() {
    auto directory = store::DataDirectory::Initialize(dataDir, options);
    out << directory.Path().string() << "\n";
}

void AdminCommands::AddUser(const store::NewUser& user) {
    out << OpenStore().Users().Add(user).id << "\n";
}

void AdminCommands::AddClient(const std::string& clientId) {
    OpenStore().Clients().Add(clientId);
    out << clientId << "\n";
}

void AdminCommands::AddAccount(const std::string& name, const std::string& owner,
                               std::int64_t storageLimit) {
    const std::string ownerId = ResolveUser(owner);
    out << OpenStore().Accounts().Add(name, ownerId, storageLimit).id << "\n";
}

void AdminCommands::AddAccountMember(const std::string& accountId, const std::string& user) {
    const std::string userId = ResolveUser(user);
    OpenStore().Accounts().AddMember(accountId, userId);
    out << userId << "\n";
}

void AdminCommands::AddTeam(const std::string& accountId, const std::string& name,
                            const std::vector<std::string>& members) {
    std::vector<std::string> memberIds;
    memberIds.reserve(members.size());
    for (const std::string& member : members) {
        memberIds.push_back(ResolveUser(member));
    }
    out << OpenStore().Teams().Add(accountId, name, memberIds).id << "\n";
}

void AdminCommands::AddProject(const std::string& teamId, const std::string& name) {
    const auto project = OpenStore().Projects().Add(teamId, name);
    out << project.id << "\n" << project.rootAssetId << "\n";
}

void AdminCommands::AddFolder(const std::string& parentId, const std::string& name) {
    out << OpenStore().Assets().CreateFolder(parentId, name).id << "\n";
}

void AdminCommands::AddFile(const std::string& parentId, const std::string& name,
                            std::int64_t size) {
    out << OpenStore().Assets().AddFile(parentId, name, size).id << "\n";
}

void AdminCommands::ShareProject(const std::string& projectId, const std::string& user) {
    const std::string userId = ResolveUser(user);
    OpenStore().Projects().Share(projectId, userId);
    out << userId << "\n";
}

void AdminCommands::IssueToken(const std::string& user, const std::string& clientId,
                               std::chrono::seconds accessTokenTtl) {
    // The directory again, for its signing key: the access token must verify at `serve`.
    const auto directory = store::DataDirectory::Open(dataDir, options);
    const auto userId = ResolveUser(user);
    if (!OpenStore().Clients().Exists(clientId)) {
        throw std::runtime_error("no client " + clientId + " (see `client add`)");
    }
    const auto grant = OpenStore().Tokens().IssueFamily(userId, clientId);
    const api::AccessTokens tokens(store, directory.SigningKey(), accessTokenTtl);
    const boost::json::object answer{
        {"access_token", tokens.Issue(grant.userId, grant.clientId, grant.familyId)},
        {"token_type", "Bearer"},
        {"expires_in", accessTokenTtl.count()},
        {"refresh_token", grant.refreshToken}};
    out << boost::json::serialize(answer) << "\n";
}

void AdminCommands::SeedDemo() {
    for (const auto& [key, value] : DemoSeeder::Seed(OpenStore())) {
        out << key << "=" << value << "\n";
    }
}

}  // namespace vantroserver::admin
