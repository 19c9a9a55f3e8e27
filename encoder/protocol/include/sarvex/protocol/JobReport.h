// What the encoder says about a job. `fraction` (0 to 1) and `remainingSeconds` (negative when
// not yet known) mean something while encoding; `message` says why a job failed.
#pragma once

#include <string>

#include "JobStatus.h"

namespace sarvex::protocol {

struct JobReport {
    std::string jobID;
    JobStatus status = JobStatus::Queued;
    double fraction = 0.0;
    double remainingSeconds = -1.0;
    std::string message;

    bool operator==(const JobReport&) const = default;
};

}  // namespace sarvex::protocol
