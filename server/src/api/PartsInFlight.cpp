#include "api/PartsInFlight.h"

namespace vantroserver::api {

bool PartsInFlight::TryBegin(const std::string& uploadId, std::int64_t part) {
    std::lock_guard lock(mutex);
    return parts.emplace(uploadId, part).second;
}

void PartsInFlight::End(const std::string& uploadId, std::int64_t part) {
    std::lock_guard lock(mutex);
    parts.erase({uploadId, part});
}

bool PartsInFlight::Any(const std::string& uploadId) const {
    std::lock_guard lock(mutex);
    const auto next = parts.lower_bound({uploadId, 0});
    return next != parts.end() && next->first == uploadId;
}

}  // namespace vantroserver::api
