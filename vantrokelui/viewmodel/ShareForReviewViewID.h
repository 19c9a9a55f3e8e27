// The panel's screens; the view model's CurrentViewID is the panel's state. 0 closes the panel.
// 11, 12 and 13 all show the progress view, each for its stage.
#pragma once

#include <cstdint>

namespace vantrokelui {

enum class ShareForReviewViewID : std::int32_t {
    None = 0,
    DebugView = 1,
    SelectProject = 2,
    SelectFolder = 3,
    ReviewInVantro = 4,
    NoAssetProcessor = 5,
    NoAsset = 6,
    Offline = 7,
    StorageLimitExceeded = 8,
    SigninPrompt = 9,
    CopyLinkSection = 10,
    EncodingQueued = 11,    ///< progress view, the job waits in the encoder's queue
    EncodingProgress = 12,  ///< progress view, the encoder renders
    UploadProgress = 13,    ///< progress view, encoded or uploading
};

}  // namespace vantrokelui
