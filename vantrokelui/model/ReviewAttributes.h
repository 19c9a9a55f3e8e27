// Where a share goes: the cloud folder, the version stack to extend and the review link. A
// plain value handed to ShareJob's constructor; any thread.
#pragma once

#include <kelcore/string/String.h>
#include <kelcore/utility/Guid.h>

namespace vantrokelui::model {

struct ReviewAttributes {
    kelcore::utility::Guid uploadFolderGuid;  ///< cloud folder chosen for the sequence
    /// The uploaded asset joins the existing review link when the upload ends; true exactly when
    /// the sequence has no stored version stack.
    bool addToLink = false;
    kelcore::utility::Guid versionStackGuid;  ///< version stack to extend; nil on a first share
    kelcore::utility::Guid reviewLinkGuid;    ///< review link the share belongs to
    kelcore::string::string reviewLinkURL;    ///< its address
};

}  // namespace vantrokelui::model
