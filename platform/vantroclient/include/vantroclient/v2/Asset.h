// A folder, file, version stack or bundle inside a project. A plain value; any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <kelcore/utility/Guid.h>

namespace vantro::v2 {

struct Asset {
    kelcore::utility::Guid id;
    /// As the service sends it: "folder", "file", "version_stack", or another kind.
    std::string type;
    /// Empty when the answer had none.
    std::optional<std::string> name;
    /// Nil for a project's root folder.
    kelcore::utility::Guid parentID;
    kelcore::utility::Guid projectID;
    /// A file's size; a version stack's newest version's size; 0 for folders.
    std::uint64_t fileSize = 0;
};

}  // namespace vantro::v2
