// An upload in progress: the file it will become, where, and how its bytes are cut into parts.
// A value read from the store; any thread.
#pragma once

#include <cstdint>
#include <string>

#include "store/Timestamp.h"

namespace vantroserver::store {

struct Upload {
    std::string id;
    std::string userId;     ///< Who created it; nobody else may use it.
    std::string folderId;   ///< Where the file (or its new version stack) goes.
    std::string accountId;  ///< Whose storage it reserves.
    std::string name;
    std::int64_t filesize = 0;
    std::int64_t partSize = 0;
    std::int64_t partCount = 1;
    std::string autoversionId;  ///< Empty when the file goes straight into the folder.
    Timestamp createdAt;
    Timestamp expiresAt;

    /// The byte count of part `number` (from 1): partSize, less for the last part.
    std::int64_t SizeOfPart(std::int64_t number) const {
        if (number < partCount) {
            return partSize;
        }
        return filesize - partSize * (partCount - 1);
    }
    /// Where part `number` starts in the file.
    std::int64_t OffsetOfPart(std::int64_t number) const { return partSize * (number - 1); }
};

}  // namespace vantroserver::store
