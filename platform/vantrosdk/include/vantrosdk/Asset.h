// A folder, file or version stack inside a project. A plain value, filled leniently: optional
// members are empty when the answer lacks them (a project's root folder has no parent; only a
// file in a version stack has a version). Any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <vantrocommon/Guid.h>

namespace vantrosdk {

struct Asset {
    std::optional<vantrocommon::Guid> id;
    std::string name;
    /// "folder", "file" or "version_stack".
    std::string type;
    std::optional<vantrocommon::Guid> parentId;
    vantrocommon::Guid projectId;
    /// A file's size; a version stack's newest version's size; 0 for folders.
    std::uint64_t filesize = 0;
    /// The file's place in its version stack, from 1.
    std::optional<int> version;
};

}  // namespace vantrosdk
