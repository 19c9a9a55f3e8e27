// What a server benchmark stands on: a fresh data directory in a temporary folder, one user in
// one account, team and project, and a bearer header for that user. Header-only, so the bench
// glob does not make it a program of its own. One per benchmark run; the main thread.
//
//   const auto world = BenchWorld::Create();
//   options.dataDir = world.dataDir;  ... world.authorization ...
#pragma once

#include <stdlib.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>

#include "api/AccessTokens.h"
#include "store/DataDirectory.h"

namespace vantroserver::bench {

struct BenchWorld {
    std::filesystem::path root;     ///< The temporary folder; the caller removes it.
    std::filesystem::path dataDir;  ///< root/data
    store::DataDirectory directory;
    std::shared_ptr<store::Store> store;
    store::Project project;
    std::string authorization;  ///< "Authorization: Bearer ..." for the user.

    static BenchWorld Create() {
        char pattern[] = "/tmp/vantro-bench-XXXXXX";
        const std::filesystem::path root = mkdtemp(pattern);
        const auto dataDir = root / "data";
        store::StoreOptions storeOptions;
        storeOptions.passwordIterations = 1000;  // Signing in is not what is measured.
        auto directory = store::DataDirectory::Initialize(dataDir, storeOptions);
        auto store = directory.GetStore();
        const auto user = store->Users().Add({"bench", "bench", "", ""});
        const auto account = store->Accounts().Add("Bench", user.id, 1LL << 40);
        const auto team = store->Teams().Add(account.id, "Team", {user.id});
        auto project = store->Projects().Add(team.id, "Project");
        const api::AccessTokens tokens(store, directory.SigningKey(), std::chrono::hours(1));
        std::string authorization =
            "Authorization: Bearer " + tokens.Issue(user.id, "vantrokelui-desktop", "");
        return BenchWorld{root,
                          dataDir,
                          std::move(directory),
                          std::move(store),
                          std::move(project),
                          std::move(authorization)};
    }
};

}  // namespace vantroserver::bench
