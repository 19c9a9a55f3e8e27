#include "store/DataDirectory.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include "security/SigningKey.h"

namespace vantroserver::store {

namespace {

// Directories a data directory holds besides its files; made at init, and at open for a data
// directory made by an older build.
void CreateSubdirectories(const std::filesystem::path& path) {
    for (const char* name : {DataDirectory::kStaticDirectoryName,
                             DataDirectory::kMediaDirectoryName,
                             DataDirectory::kUploadDirectoryName}) {
        std::error_code error;
        std::filesystem::create_directories(path / name, error);
        if (error) {
            throw std::runtime_error("cannot create " + (path / name).string() + ": " +
                                     error.message());
        }
    }
}

}  // namespace

DataDirectory::DataDirectory(std::filesystem::path path, std::shared_ptr<Store> store,
                             std::string signingKey)
    : path(std::move(path)), store(std::move(store)), signingKey(std::move(signingKey)) {}

DataDirectory DataDirectory::Initialize(const std::filesystem::path& path, StoreOptions options) {
    namespace fs = std::filesystem;
    std::error_code error;
    if (fs::exists(path, error)) {
        if (!fs::is_directory(path, error)) {
            throw std::runtime_error(path.string() + " exists and is not a directory");
        }
        if (fs::exists(path / Store::kDatabaseFileName, error) ||
            fs::exists(path / kSigningKeyFileName, error)) {
            throw std::runtime_error(path.string() +
                                     " already holds a vantro-server data "
                                     "directory");
        }
    } else {
        fs::create_directories(path, error);
        if (error) {
            throw std::runtime_error("cannot create " + path.string() + ": " + error.message());
        }
    }
    // Only the server's user may look inside: the key and the password hashes live here.
    if (::chmod(path.c_str(), 0700) != 0) {
        throw std::runtime_error("cannot restrict " + path.string() +
                                 " to its owner: " + std::strerror(errno));
    }
    CreateSubdirectories(path);
    security::SigningKey::Create(path / kSigningKeyFileName);
    auto store = Store::Open(path / Store::kDatabaseFileName, true, std::move(options));
    store->Clients().Add(kDefaultClientId);
    return DataDirectory(path, std::move(store),
                         security::SigningKey::Load(path / kSigningKeyFileName));
}

DataDirectory DataDirectory::Open(const std::filesystem::path& path, StoreOptions options) {
    namespace fs = std::filesystem;
    std::error_code error;
    if (!fs::is_directory(path, error)) {
        throw std::runtime_error("no data directory at " + path.string() +
                                 " (run `vantro-server init --data " + path.string() + "` first)");
    }
    std::string key = security::SigningKey::Load(path / kSigningKeyFileName);
    CreateSubdirectories(path);
    auto store = Store::Open(path / Store::kDatabaseFileName, false, std::move(options));
    return DataDirectory(path, std::move(store), std::move(key));
}

}  // namespace vantroserver::store
