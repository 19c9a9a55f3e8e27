// What completing an upload made: the file asset and, for a versioned upload, the version stack
// it went into. A value; any thread.
#pragma once

#include <string>

#include "store/Asset.h"

namespace vantroserver::store {

struct CompletedUpload {
    Asset file;
    std::string versionStackId;  ///< Empty when the file went straight into its folder.
    bool stackCreated = false;   ///< The stack was made by this completion.
};

}  // namespace vantroserver::store
