// Owns one POSIX file descriptor and closes it when destroyed. Move-only; used by the monitor's
// session for its netlink socket and its wake-up eventfd. Any thread, one owner at a time.
#pragma once

#include <unistd.h>

#include <utility>

namespace kelnet::detail {

class FileDescriptor {
public:
    FileDescriptor() noexcept = default;
    explicit FileDescriptor(int fd) noexcept : fd(fd) {}
    FileDescriptor(FileDescriptor&& other) noexcept : fd(std::exchange(other.fd, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        if (this != &other) {
            Reset(std::exchange(other.fd, -1));
        }
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() { Reset(); }

    /// The descriptor, or -1 when none is owned.
    int Get() const noexcept { return fd; }
    bool IsValid() const noexcept { return fd >= 0; }

    /// Closes the owned descriptor, if any, and owns `newFd` instead.
    void Reset(int newFd = -1) noexcept {
        if (fd >= 0) {
            ::close(fd);
        }
        fd = newFd;
    }

private:
    int fd = -1;
};

}  // namespace kelnet::detail
