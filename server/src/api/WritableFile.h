// A file open for writing at explicit offsets (pwrite), so several writers can fill disjoint
// parts of one file without sharing a position. Owned by one writer (moves, no copies); its
// owner's thread.
//
//   WritableFile file = WritableFile::Open(path, false);
//   file.WriteAt(piece, offset);
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>

namespace vantroserver::api {

class WritableFile {
public:
    /// Opens `path` for writing (0600); creates it when `create`, failing if it exists.
    /// Throws std::runtime_error naming the file and the system's reason.
    static WritableFile Open(const std::filesystem::path& path, bool create);

    WritableFile(WritableFile&& other) noexcept;
    WritableFile& operator=(WritableFile&& other) noexcept;
    WritableFile(const WritableFile&) = delete;
    WritableFile& operator=(const WritableFile&) = delete;
    ~WritableFile();

    /// Writes all of `data` at `offset`; throws std::runtime_error when the disk refuses.
    void WriteAt(std::span<const char> data, std::uint64_t offset);
    /// Sets the file's length (a sparse file when it grows).
    void Resize(std::uint64_t size);

private:
    explicit WritableFile(int descriptor) : descriptor(descriptor) {}
    void Close();

    int descriptor = -1;
};

}  // namespace vantroserver::api
