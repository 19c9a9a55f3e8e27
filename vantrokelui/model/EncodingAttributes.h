// The stage a new share job starts in: its status and the fraction done. A plain value handed
// to ShareJob's constructor; any thread.
#pragma once

#include <vantrokelui/model/EncodingStatus.h>

namespace vantrokelui::model {

struct EncodingAttributes {
    EncodingStatus status = EncodingStatus::None;  ///< initial status of the job
    double progress = 0.0;                         ///< fraction done, 0.0 to 1.0
};

}  // namespace vantrokelui::model
