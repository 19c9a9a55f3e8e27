// The usage events of the share panel: what the user opens, sets, starts and copies, and how
// uploads end. Each function builds one event, adds its field, hands it to the platform's usage
// logger and returns; nothing is reported back. They hold no state and run on the caller's
// thread (the screens on the main thread, the upload result where the upload's continuation
// runs).
//
//   utility::SDMLogging::LogShareStart(utility::SDMLogging::ShareStartKind::FirstShare);
#pragma once

#include <cstdint>

namespace vantrokelui::utility::SDMLogging {

enum class ShareStartKind : std::int32_t {
    FirstShare = 0,
    UpdateContent = 1,
    NewLink = 2,
};

enum class UploadResultKind : std::int32_t {
    Success = 0,
    Failure = 1,
    Cancel = 2,
};

/// The host's header button was pressed; the host calls this.
void LogUnifiedShareButtonClicked();
/// The location control was clicked; `firstTime` tells a first share from an update.
void LogLocationPickerOpened(bool firstTime);
/// A location was committed in the picker.
void LogLocationSet();
/// A share was started. A kind outside the enumeration sends nothing.
void LogShareStart(ShareStartKind kind);
/// The link was copied.
void LogCopyLink();
/// An upload ended. A kind outside the enumeration sends nothing.
void LogUploadResult(UploadResultKind kind);

}  // namespace vantrokelui::utility::SDMLogging
