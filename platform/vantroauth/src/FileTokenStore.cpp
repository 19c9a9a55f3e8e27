#include "FileTokenStore.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>

#include <array>
#include <atomic>
#include <cerrno>
#include <string_view>
#include <system_error>

#include <kelcore/config/kel_exception.h>
#include <kelcore/filesupport/CommonDirs.h>
#include <kelcore/string/String.h>

#include <vantroauth/ResultCodes.h>

namespace vantroauth {

namespace {

using kelcore::config::kel_exception;

[[noreturn]] void Fail(const std::string& what) {
    throw kel_exception(what, kResultStorageFailure);
}

std::string ErrnoText(int error) {
    return std::system_category().message(error);
}

// Closes a descriptor on every path out.
class FileDescriptor {
public:
    explicit FileDescriptor(int fd) : fd(fd) {}
    ~FileDescriptor() {
        if (fd >= 0) {
            ::close(fd);
        }
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    int Get() const { return fd; }
    /// Closes now and answers whether close succeeded (a delayed write error shows here).
    bool Close() {
        const int closing = fd;
        fd = -1;
        return ::close(closing) == 0;
    }

private:
    int fd;
};

void MakePrivateDirectories(const std::filesystem::path& directory) {
    std::filesystem::path made;
    for (const auto& part : directory) {
        made /= part;
        if (::mkdir(made.c_str(), 0700) != 0 && errno != EEXIST) {
            Fail("cannot make the directory " + made.string() + ": " + ErrnoText(errno));
        }
    }
    struct stat status {};
    if (::stat(directory.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) {
        Fail(directory.string() + " is not a directory");
    }
}

const char* kMembers[] = {"service", "client", "profile", "user"};

std::string& KeyField(TokenKey& key, std::size_t index) {
    switch (index) {
        case 0:
            return key.service;
        case 1:
            return key.client;
        case 2:
            return key.profile;
        default:
            return key.user;
    }
}

std::string RandomSuffix() {
    static std::atomic<unsigned> sCounter{0};
    return std::to_string(::getpid()) + "-" + std::to_string(sCounter.fetch_add(1));
}

}  // namespace

std::filesystem::path FileTokenStore::DefaultPath() {
    return std::filesystem::path(kelcore::string::UTF16toStdString(
               kelcore::filesupport::commondirs::UserConfigDir())) /
           "tokens.json";
}

std::shared_ptr<FileTokenStore> FileTokenStore::Open(std::filesystem::path path) {
    MakePrivateDirectories(path.parent_path());
    std::shared_ptr<FileTokenStore> store(new FileTokenStore(std::move(path)));
    store->ReadAll();  // refuses a file open to others before anything is kept in it
    return store;
}

FileTokenStore::Entries FileTokenStore::ReadAll() const {
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (file.Get() < 0) {
        if (errno == ENOENT) {
            return {};
        }
        Fail("cannot open the token file " + path.string() + ": " + ErrnoText(errno));
    }
    struct stat status {};
    if (::fstat(file.Get(), &status) != 0) {
        Fail("cannot read the token file " + path.string() + ": " + ErrnoText(errno));
    }
    if (!S_ISREG(status.st_mode)) {
        Fail("the token file " + path.string() + " is not a regular file");
    }
    if (status.st_uid != ::geteuid()) {
        Fail("the token file " + path.string() + " belongs to another user; it is not used");
    }
    if ((status.st_mode & 077) != 0) {
        Fail("the token file " + path.string() +
             " may be read by other users (it must be 0600); it is not used");
    }
    std::string text;
    std::array<char, 8192> buffer{};
    for (;;) {
        const ssize_t got = ::read(file.Get(), buffer.data(), buffer.size());
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            Fail("cannot read the token file " + path.string() + ": " + ErrnoText(errno));
        }
        if (got == 0) {
            break;
        }
        text.append(buffer.data(), static_cast<std::size_t>(got));
    }
    boost::system::error_code error;
    const auto document = boost::json::parse(text, error);
    const auto* object = error ? nullptr : document.if_object();
    const auto* tokens = object ? object->if_contains("tokens") : nullptr;
    if (!tokens || !tokens->is_array()) {
        Fail("the token file " + path.string() + " is malformed");
    }
    Entries entries;
    for (const auto& item : tokens->as_array()) {
        const auto* entry = item.if_object();
        if (!entry) {
            Fail("the token file " + path.string() + " is malformed");
        }
        TokenKey key;
        for (std::size_t i = 0; i < std::size(kMembers); ++i) {
            const auto* value = entry->if_contains(kMembers[i]);
            if (!value || !value->is_string()) {
                Fail("the token file " + path.string() + " is malformed");
            }
            KeyField(key, i) = std::string(value->as_string());
        }
        entries.emplace_back(std::move(key),
                             StoredTokens::FromJson(boost::json::serialize(*entry)));
    }
    return entries;
}

void FileTokenStore::WriteAll(const Entries& entries) const {
    boost::json::array tokens;
    for (const auto& [key, stored] : entries) {
        boost::json::value value = boost::json::parse(stored.ToJson());
        auto& object = value.as_object();
        TokenKey copy = key;
        for (std::size_t i = 0; i < std::size(kMembers); ++i) {
            object[kMembers[i]] = KeyField(copy, i);
        }
        tokens.push_back(std::move(value));
    }
    boost::json::object document;
    document["version"] = 1;
    document["tokens"] = std::move(tokens);
    const std::string text = boost::json::serialize(document) + "\n";

    // A new file of its own, never an existing one (O_EXCL), made 0600 before a byte is in it,
    // then renamed over the old file so a reader sees the old or the new, never half.
    const std::filesystem::path temporary = path.string() + ".tmp-" + RandomSuffix();
    FileDescriptor file(
        ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (file.Get() < 0) {
        Fail("cannot write the token file " + path.string() + ": " + ErrnoText(errno));
    }
    auto discard = [&](int error) {
        ::unlink(temporary.c_str());
        Fail("cannot write the token file " + path.string() + ": " + ErrnoText(error));
    };
    if (::fchmod(file.Get(), 0600) != 0) {
        discard(errno);
    }
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t put = ::write(file.Get(), text.data() + written, text.size() - written);
        if (put < 0 && errno == EINTR) {
            continue;
        }
        if (put < 0) {
            discard(errno);
        }
        written += static_cast<std::size_t>(put);
    }
    if (::fsync(file.Get()) != 0) {
        discard(errno);
    }
    if (!file.Close()) {
        discard(errno);
    }
    if (::rename(temporary.c_str(), path.c_str()) != 0) {
        discard(errno);
    }
}

std::optional<StoredTokens> FileTokenStore::Load(const TokenKey& key) {
    std::lock_guard lock(mutex);
    for (auto& [entryKey, tokens] : ReadAll()) {
        if (entryKey == key) {
            return tokens;
        }
    }
    return std::nullopt;
}

void FileTokenStore::Save(const TokenKey& key, const StoredTokens& tokens) {
    std::lock_guard lock(mutex);
    Entries entries = ReadAll();
    bool replaced = false;
    for (auto& [entryKey, entryTokens] : entries) {
        if (entryKey == key) {
            entryTokens = tokens;
            replaced = true;
        }
    }
    if (!replaced) {
        entries.emplace_back(key, tokens);
    }
    WriteAll(entries);
}

void FileTokenStore::Erase(const TokenKey& key) {
    std::lock_guard lock(mutex);
    Entries entries = ReadAll();
    const auto before = entries.size();
    std::erase_if(entries, [&](const auto& entry) { return entry.first == key; });
    if (entries.size() != before) {
        WriteAll(entries);
    }
}

}  // namespace vantroauth
