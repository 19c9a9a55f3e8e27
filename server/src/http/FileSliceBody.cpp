#include "http/FileSliceBody.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <boost/beast/http/error.hpp>
#include <cerrno>

namespace vantroserver::http {

namespace {

boost::beast::error_code LastError() {
    return {errno, boost::system::system_category()};
}

}  // namespace

FileSliceBody::value_type::value_type(value_type&& other) noexcept
    : descriptor(std::exchange(other.descriptor, -1)),
      fileSize(other.fileSize),
      modified(other.modified),
      offset(other.offset),
      length(other.length) {}

FileSliceBody::value_type& FileSliceBody::value_type::operator=(value_type&& other) noexcept {
    if (this != &other) {
        Close();
        descriptor = std::exchange(other.descriptor, -1);
        fileSize = other.fileSize;
        modified = other.modified;
        offset = other.offset;
        length = other.length;
    }
    return *this;
}

FileSliceBody::value_type::~value_type() {
    Close();
}

void FileSliceBody::value_type::Close() {
    if (descriptor >= 0) {
        ::close(descriptor);
        descriptor = -1;
    }
}

bool FileSliceBody::value_type::Open(const std::filesystem::path& path,
                                     boost::beast::error_code& error) {
    Close();
    const int opened = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (opened < 0) {
        error = LastError();
        return false;
    }
    struct stat status {};
    if (::fstat(opened, &status) != 0) {
        error = LastError();
        ::close(opened);
        return false;
    }
    if (!S_ISREG(status.st_mode)) {
        error = boost::beast::error_code(EISDIR, boost::system::system_category());
        ::close(opened);
        return false;
    }
    descriptor = opened;
    fileSize = static_cast<std::uint64_t>(status.st_size);
    modified =
        static_cast<std::int64_t>(status.st_mtim.tv_sec) * 1'000'000'000 + status.st_mtim.tv_nsec;
    offset = 0;
    length = fileSize;
    error = {};
    return true;
}

void FileSliceBody::value_type::Restrict(std::uint64_t first, std::uint64_t count) {
    offset = std::min(first, fileSize);
    length = std::min(count, fileSize - offset);
}

void FileSliceBody::writer::init(boost::beast::error_code& error) {
    error = {};
    if (remaining > 0) {
        block = std::make_unique<char[]>(
            static_cast<std::size_t>(std::min<std::uint64_t>(remaining, kBlockSize)));
    }
}

boost::optional<std::pair<FileSliceBody::writer::const_buffers_type, bool>>
FileSliceBody::writer::get(boost::beast::error_code& error) {
    if (remaining == 0) {
        error = {};
        return boost::none;
    }
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(remaining, kBlockSize));
    ssize_t got = 0;
    do {
        got = ::pread(body.Descriptor(), block.get(), wanted, static_cast<off_t>(position));
    } while (got < 0 && errno == EINTR);
    if (got < 0) {
        error = LastError();
        return boost::none;
    }
    if (got == 0) {
        // The file shrank under us: the promised length cannot be sent.
        error = boost::beast::http::error::short_read;
        return boost::none;
    }
    position += static_cast<std::uint64_t>(got);
    remaining -= static_cast<std::uint64_t>(got);
    error = {};
    return {{const_buffers_type(block.get(), static_cast<std::size_t>(got)), remaining > 0}};
}

}  // namespace vantroserver::http
