// A fresh directory under the system's temporary directory, removed with everything in it
// when the object goes.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace testsupport {

class TemporaryDirectory {
public:
    TemporaryDirectory() {
        std::string pattern = (std::filesystem::temp_directory_path() / "kelcore-XXXXXX").string();
        if (!::mkdtemp(pattern.data())) {
            throw std::runtime_error("mkdtemp failed");
        }
        path = pattern;
    }
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& Path() const { return path; }

    /// Writes `text` to the file `name` in the directory, replacing what was there, in place.
    std::filesystem::path Write(const std::string& name, std::string_view text) const {
        const auto file = path / name;
        std::ofstream(file, std::ios::binary | std::ios::trunc) << text;
        return file;
    }

private:
    std::filesystem::path path;
};

}  // namespace testsupport
