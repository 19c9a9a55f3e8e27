// The states an encoder job passes through, as they travel on the wire ("queued", ...).
#pragma once

#include <optional>
#include <string_view>

namespace sarvex::protocol {

enum class JobStatus { Queued, Encoding, Encoded, Failed, Cancelled };

/// The wire name of `status`.
std::string_view JobStatusName(JobStatus status);
/// The status a wire name stands for; empty for an unknown name.
std::optional<JobStatus> JobStatusFromName(std::string_view name);

/// Whether the job has ended: nothing more will be reported for it.
inline bool IsFinal(JobStatus status) {
    return status == JobStatus::Encoded || status == JobStatus::Failed ||
           status == JobStatus::Cancelled;
}

}  // namespace sarvex::protocol
