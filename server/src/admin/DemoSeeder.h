// Fills a store with a realistic demo: two users, two accounts, several teams and projects,
// nested folders, files and version stacks, and one folder with 250 children. Stateless; the
// calling thread.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "store/Store.h"

namespace vantroserver::admin {

class DemoSeeder {
public:
    static constexpr const char* kDemoUsername = "demo";
    static constexpr const char* kDemoPassword = "demo";
    static constexpr const char* kSecondUsername = "alex";
    static constexpr const char* kSecondPassword = "alex";
    static constexpr int kLargeFolderChildren = 250;

    /// What was made, as `key`/`value` pairs in the order made (credentials first).
    using Summary = std::vector<std::pair<std::string, std::string>>;

    /// Throws store::StoreError when the demo users already exist.
    static Summary Seed(store::Store& store);
};

}  // namespace vantroserver::admin
