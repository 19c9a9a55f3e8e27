#include "support/TemporaryDirectory.h"

#include <stdlib.h>

#include <fstream>
#include <string>
#include <system_error>

namespace testsupport {

TemporaryDirectory::TemporaryDirectory() {
    std::string pattern = (std::filesystem::temp_directory_path() / "kelcore-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), "mkdtemp");
    }
    path = pattern;
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::permissions(path, std::filesystem::perms::owner_all,
                                 std::filesystem::perm_options::add, ignored);
    std::filesystem::remove_all(path, ignored);
}

std::filesystem::path TemporaryDirectory::Write(const std::string& name,
                                                std::string_view text) const {
    const auto file = path / name;
    std::ofstream(file, std::ios::binary | std::ios::trunc) << text;
    return file;
}

}  // namespace testsupport
