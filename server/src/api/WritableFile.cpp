#include "api/WritableFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>
#include <utility>

namespace vantroserver::api {

WritableFile WritableFile::Open(const std::filesystem::path& path, bool create) {
    const int flags = O_WRONLY | O_CLOEXEC | (create ? O_CREAT | O_EXCL : 0);
    const int descriptor = ::open(path.c_str(), flags, 0600);
    if (descriptor < 0) {
        throw std::runtime_error("cannot open " + path.string() + ": " + std::strerror(errno));
    }
    return WritableFile(descriptor);
}

WritableFile::WritableFile(WritableFile&& other) noexcept
    : descriptor(std::exchange(other.descriptor, -1)) {}

WritableFile& WritableFile::operator=(WritableFile&& other) noexcept {
    if (this != &other) {
        Close();
        descriptor = std::exchange(other.descriptor, -1);
    }
    return *this;
}

WritableFile::~WritableFile() {
    Close();
}

void WritableFile::Close() {
    if (descriptor >= 0) {
        ::close(descriptor);
        descriptor = -1;
    }
}

void WritableFile::WriteAt(std::span<const char> data, std::uint64_t offset) {
    while (!data.empty()) {
        const ssize_t written =
            ::pwrite(descriptor, data.data(), data.size(), static_cast<off_t>(offset));
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            throw std::runtime_error(std::string("cannot write: ") + std::strerror(errno));
        }
        data = data.subspan(static_cast<std::size_t>(written));
        offset += static_cast<std::uint64_t>(written);
    }
}

void WritableFile::Resize(std::uint64_t size) {
    if (::ftruncate(descriptor, static_cast<off_t>(size)) != 0) {
        throw std::runtime_error(std::string("cannot size the file: ") + std::strerror(errno));
    }
}

}  // namespace vantroserver::api
