// The identity of the host sequence a share job belongs to: its project and the sequence. A
// sequence Guid alone is not enough, the same sequence Guid in another project is another
// sequence. A plain value; any thread.
#pragma once

#include <kelcore/utility/Guid.h>

namespace vantrokelui::model {

struct ProcessingGuids {
    kelcore::utility::Guid projectGuid;   ///< host project
    kelcore::utility::Guid sequenceGuid;  ///< host sequence

    friend bool operator==(const ProcessingGuids&, const ProcessingGuids&) = default;
};

}  // namespace vantrokelui::model
