// A fresh directory under the system's temporary directory, removed with everything in it when
// the object goes. For tests that touch the file system.
#pragma once

#include <filesystem>

namespace testsupport {

class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& Path() const { return path; }

private:
    std::filesystem::path path;
};

}  // namespace testsupport
