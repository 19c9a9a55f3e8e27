// The server's data directory: the database, the signing key, the static files, the media of
// completed uploads and the parts of uploads in progress. `init`
// creates it (0700) with a fresh key (0600) and the desktop client registered; `serve` and the
// admin commands open it. A value; any thread.
//
//   auto dir = DataDirectory::Initialize(path);      // fails if it already holds a database
//   auto store = dir.OpenStore();
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "store/Store.h"

namespace vantroserver::store {

class DataDirectory {
public:
    /// The public client registered by Initialize.
    static constexpr const char* kDefaultClientId = "vantrokelui-desktop";
    static constexpr const char* kSigningKeyFileName = "signing.key";
    static constexpr const char* kStaticDirectoryName = "static";
    static constexpr const char* kMediaDirectoryName = "media";
    static constexpr const char* kUploadDirectoryName = "uploads";

    /// Creates the directory (0700; an existing empty one is fine), the database, the key and
    /// the default client. Throws std::runtime_error (or StoreError) with a clear message when
    /// it already holds a database or cannot be written.
    static DataDirectory Initialize(const std::filesystem::path& path, StoreOptions options = {});

    /// Opens an initialized directory; throws std::runtime_error naming what is missing.
    static DataDirectory Open(const std::filesystem::path& path, StoreOptions options = {});

    const std::filesystem::path& Path() const { return path; }
    std::filesystem::path DatabaseFile() const { return path / Store::kDatabaseFileName; }
    std::filesystem::path SigningKeyFile() const { return path / kSigningKeyFileName; }
    std::filesystem::path StaticDirectory() const { return path / kStaticDirectoryName; }
    /// The bytes of every completed file asset, one file per asset named by its id.
    std::filesystem::path MediaDirectory() const { return path / kMediaDirectoryName; }
    /// The bytes of uploads in progress.
    std::filesystem::path UploadDirectory() const { return path / kUploadDirectoryName; }

    std::shared_ptr<Store> GetStore() const { return store; }
    /// The raw HMAC key (read at open).
    const std::string& SigningKey() const { return signingKey; }

private:
    DataDirectory(std::filesystem::path path, std::shared_ptr<Store> store, std::string signingKey);

    std::filesystem::path path;
    std::shared_ptr<Store> store;
    std::string signingKey;
};

}  // namespace vantroserver::store
