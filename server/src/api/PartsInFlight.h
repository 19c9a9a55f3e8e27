// The upload parts being written right now, so that a second PUT of the same part is refused
// instead of interleaving its bytes with the first, and completion waits for none. Owned by
// the upload endpoints (shared with their sinks); any thread.
#pragma once

#include <cstdint>
#include <mutex>
#include <set>
#include <string>
#include <utility>

namespace vantroserver::api {

class PartsInFlight {
public:
    /// Marks the part as being written; false when it already is.
    bool TryBegin(const std::string& uploadId, std::int64_t part);
    void End(const std::string& uploadId, std::int64_t part);
    /// Whether any part of the upload is being written.
    bool Any(const std::string& uploadId) const;

private:
    mutable std::mutex mutex;
    std::set<std::pair<std::string, std::int64_t>> parts;
};

}  // namespace vantroserver::api
