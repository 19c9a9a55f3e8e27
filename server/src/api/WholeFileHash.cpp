#include "api/WholeFileHash.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace vantroserver::api {

namespace {

// Large enough that reads cost little next to the digest, small enough that a completion
// waiting for a fold to let go waits only briefly.
constexpr std::size_t kBlock = 1024 * 1024;

class ReadOnlyFile {
public:
    explicit ReadOnlyFile(const std::filesystem::path& path)
        : path(path), descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
        if (descriptor < 0) {
            throw std::runtime_error("cannot read " + path.string() + ": " + std::strerror(errno));
        }
    }
    ReadOnlyFile(const ReadOnlyFile&) = delete;
    ReadOnlyFile& operator=(const ReadOnlyFile&) = delete;
    ~ReadOnlyFile() { ::close(descriptor); }

    /// Reads up to `size` bytes at `offset`; fewer only at the end of the file.
    std::size_t ReadAt(char* into, std::size_t size, std::uint64_t offset) const {
        std::size_t got = 0;
        while (got < size) {
            const ssize_t read =
                ::pread(descriptor, into + got, size - got, static_cast<off_t>(offset + got));
            if (read < 0 && errno == EINTR) {
                continue;
            }
            if (read < 0) {
                throw std::runtime_error("cannot read " + path.string() + ": " +
                                         std::strerror(errno));
            }
            if (read == 0) {
                break;
            }
            got += static_cast<std::size_t>(read);
        }
        return got;
    }

private:
    std::filesystem::path path;
    int descriptor;
};

}  // namespace

WholeFileHash::WholeFileHash(const store::Upload& upload, std::filesystem::path dataFile, Post post)
    : layout(upload), dataFile(std::move(dataFile)), post(std::move(post)) {}

void WholeFileHash::PartStarting(std::int64_t part) {
    std::lock_guard lock(mutex);
    if (part < frontier || part == reading) {
        spoiled = true;
    }
    recorded.erase(part);
}

void WholeFileHash::PartRecorded(std::int64_t part) {
    {
        std::lock_guard lock(mutex);
        if (stopped || spoiled || part < frontier) {
            return;
        }
        recorded.insert(part);
        if (part != frontier || foldPosted) {
            return;
        }
        foldPosted = true;
    }
    // The task holds this object: it may run after the upload's entry went.
    post([self = shared_from_this()] { self->Fold(); });
}

void WholeFileHash::Fold() {
    std::unique_lock lock(mutex);
    while (!stopped && !spoiled && recorded.contains(frontier)) {
        const std::int64_t part = frontier;
        recorded.erase(part);
        reading = part;
        const auto offset = static_cast<std::uint64_t>(layout.OffsetOfPart(part));
        const auto size = static_cast<std::uint64_t>(layout.SizeOfPart(part));
        lock.unlock();
        std::uint64_t folded = 0;
        bool failed = false;
        try {
            folded = HashRange(hash, offset, size, true);
        } catch (const std::runtime_error&) {
            // Completion reads the file again and reports what it finds.
            failed = true;
        }
        lock.lock();
        reading = 0;
        foldedBytes += folded;
        if (folded == size && !failed) {
            ++frontier;
        } else if (!stopped || failed) {
            // A short file or a failed read left the digest mid-part; Finish() starts over.
            spoiled = true;
        }
        foldStopped.notify_all();
    }
    foldPosted = false;
    foldStopped.notify_all();
}

std::uint64_t WholeFileHash::HashRange(security::Sha256Stream& into, std::uint64_t offset,
                                       std::uint64_t size, bool checkStop) {
    const ReadOnlyFile file(dataFile);
    std::vector<char> block(kBlock);
    std::uint64_t done = 0;
    while (done < size) {
        if (checkStop) {
            std::lock_guard lock(mutex);
            if (stopped) {
                break;
            }
        }
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(kBlock, size - done));
        const std::size_t got = file.ReadAt(block.data(), wanted, offset + done);
        into.Update(std::span<const char>(block.data(), got));
        done += got;
        if (got < wanted) {
            break;
        }
    }
    return done;
}

std::string WholeFileHash::Finish() {
    std::unique_lock lock(mutex);
    stopped = true;
    foldStopped.wait(lock, [this] { return reading == 0; });
    const bool fromStart = spoiled;
    const std::uint64_t start = fromStart ? 0 : foldedBytes;
    lock.unlock();
    // No fold reads any more and none will start: the digest is this thread's now.
    security::Sha256Stream restart;
    security::Sha256Stream& into = fromStart ? restart : hash;
    const auto fileSize = static_cast<std::uint64_t>(layout.filesize);
    if (start < fileSize) {
        HashRange(into, start, fileSize - start, false);
    }
    return into.FinishHex();
}

void WholeFileHash::Stop() {
    std::lock_guard lock(mutex);
    stopped = true;
}

std::uint64_t WholeFileHash::FoldedBytes() const {
    std::lock_guard lock(mutex);
    return foldedBytes;
}

}  // namespace vantroserver::api
