// The panel's screens; the view model's CurrentViewID is the panel's state. 0 closes the panel.
// 11, 12 and 13 all show the progress view, each for its stage.
#pragma once

#include <cstdint>
#include <string>

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

/// The name that the debug dump prints for `id`; "(unknown ShareForReviewViewID value)" for 11,
/// 13 and anything above 12. Each name is built once, on first use. Any thread.
const std::string& ShareForReviewViewIDDebugName(ShareForReviewViewID id);

}  // namespace vantrokelui
