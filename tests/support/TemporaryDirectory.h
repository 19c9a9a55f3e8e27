// A fresh directory under the system's temporary directory, removed with everything in it when
// the object goes. For tests that touch the file system.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace testsupport {

class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& Path() const { return path; }

    /// Writes `text` to the file `name` in the directory, replacing what was there, in place.
    std::filesystem::path Write(const std::string& name, std::string_view text) const;

private:
    std::filesystem::path path;
};

}  // namespace testsupport
