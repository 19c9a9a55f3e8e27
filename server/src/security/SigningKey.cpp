#include "security/SigningKey.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include "security/Random.h"

namespace vantroserver::security {

namespace {

std::runtime_error Failure(const std::string& what, const std::filesystem::path& file) {
    return std::runtime_error(what + " " + file.string() + ": " + std::strerror(errno));
}

}  // namespace

// POSIX calls rather than fstream: the file must be born 0600 (no window where it is readable
// by others) and must not replace an existing key.
void SigningKey::Create(const std::filesystem::path& file) {
    const std::string key = RandomBytes(kSize);
    const int fd = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd < 0) {
        throw Failure("cannot create the signing key", file);
    }
    const ssize_t written = ::write(fd, key.data(), key.size());
    const bool synced = ::fsync(fd) == 0;
    ::close(fd);
    if (written != static_cast<ssize_t>(key.size()) || !synced) {
        throw Failure("cannot write the signing key", file);
    }
}

std::string SigningKey::Load(const std::filesystem::path& file) {
    const int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        throw Failure("cannot open the signing key", file);
    }
    struct stat info {};
    if (::fstat(fd, &info) != 0) {
        ::close(fd);
        throw Failure("cannot read the signing key", file);
    }
    if ((info.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
        ::close(fd);
        throw std::runtime_error("the signing key " + file.string() +
                                 " is readable by others; make it 0600");
    }
    // Longer keys are accepted (HMAC takes any length); a kilobyte is more than enough.
    std::string key(1024, '\0');
    const ssize_t got = ::read(fd, key.data(), key.size());
    ::close(fd);
    if (got < static_cast<ssize_t>(kSize)) {
        throw std::runtime_error("the signing key " + file.string() + " is too short");
    }
    key.resize(static_cast<std::size_t>(got));
    return key;
}

}  // namespace vantroserver::security
