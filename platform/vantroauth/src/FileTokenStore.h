// Tokens in a plain-text JSON file, for users who opted in ("VantroAuth.AllowTokenFile" true in
// the debug database, or VANTRO_ALLOW_TOKEN_FILE=1) on machines where no keyring answers:
// $XDG_CONFIG_HOME/vantrokelui/tokens.json (kelcore's XDG rule). The directory is made 0700,
// the file is written 0600 through a new file (O_CREAT|O_EXCL) renamed over the old one, and a
// file that the group or others may read, or that another user owns, is refused. Owned by the
// manager; any thread (one mutex orders this process's read-modify-writes).
//
//   auto store = FileTokenStore::Open(FileTokenStore::DefaultPath());   // throws when refused
#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "TokenStoreBase.h"

namespace vantroauth {

class FileTokenStore final : public TokenStoreBase {
public:
    /// tokens.json in the product's configuration directory (kelcore's UserConfigDir, made
    /// private if missing).
    static std::filesystem::path DefaultPath();

    /// Makes the directory (missing levels 0700) and checks the file if it exists. Throws
    /// kel_exception (kResultStorageFailure) when the directory cannot be made or the file is
    /// refused (open to others, another owner, not a regular file, malformed).
    static std::shared_ptr<FileTokenStore> Open(std::filesystem::path path);

    std::optional<StoredTokens> Load(const TokenKey& key) override;
    void Save(const TokenKey& key, const StoredTokens& tokens) override;
    void Erase(const TokenKey& key) override;
    std::string Describe() const override { return "the token file " + path.string(); }

    const std::filesystem::path& Path() const { return path; }

private:
    using Entries = std::vector<std::pair<TokenKey, StoredTokens>>;

    explicit FileTokenStore(std::filesystem::path path) : path(std::move(path)) {}

    /// Every entry; none when the file does not exist. Throws as Open does.
    Entries ReadAll() const;
    /// Replaces the file with `entries` in one rename.
    void WriteAll(const Entries& entries) const;

    const std::filesystem::path path;
    std::mutex mutex;
};

}  // namespace vantroauth
