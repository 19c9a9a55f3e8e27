#include <vantrokelui/utility/SDMLogging.h>

#include <optional>

#include <kelappsupport/analytics/SDMEvent.h>
#include <kelappsupport/analytics/SDMUsageLogger.h>

namespace vantrokelui::utility::SDMLogging {

namespace {

using kelappsupport::analytics::SDMErrorHandlingPolicy;
using kelappsupport::analytics::SDMEvent;

// Every event of the panel is filed under the same category and subcategory, so reports of
// the feature stay together.
constexpr const char* kCategory = "EXPORT";
constexpr const char* kSubcategory = "Publish";
constexpr const char* kSection = "kel";
constexpr const char* kUiPathKey = "ui_path_to_access";
constexpr const char* kDialogPath = "click:vantro-share-for-review-dialog";
constexpr auto kPolicy = SDMErrorHandlingPolicy::kLoggerDecides;

struct EventName {
    const char* type;
    const char* subtype;
};

void Send(EventName name, const char* uiPath) {
    SDMEvent event(kCategory, kSubcategory, name.type, name.subtype, kPolicy);
    if (uiPath != nullptr) {
        event.AddSDMData(kSection, kUiPathKey, uiPath, kPolicy);
    }
    kelappsupport::analytics::SDMUsageLogger::LogEvent(event);
}

std::optional<EventName> ShareStartName(ShareStartKind kind) {
    switch (kind) {
        case ShareStartKind::FirstShare:
            return EventName{"start", "share-first-time"};
        case ShareStartKind::UpdateContent:
            return EventName{"start", "update-content"};
        case ShareStartKind::NewLink:
            return EventName{"start", "create-new-media-link"};
    }
    return std::nullopt;
}

std::optional<EventName> UploadResultName(UploadResultKind kind) {
    switch (kind) {
        case UploadResultKind::Success:
            return EventName{"success", "upload-media"};
        case UploadResultKind::Failure:
            return EventName{"failure", "upload-media"};
        case UploadResultKind::Cancel:
            return EventName{"cancel", "upload-media"};
    }
    return std::nullopt;
}

}  // namespace

void LogUnifiedShareButtonClicked() { Send({"open", "unified-header-share-button"}, nullptr); }

void LogLocationPickerOpened(bool firstTime) {
    Send({"open", "vantro-location-picker"},
         firstTime ? "click:first-time-share-view" : "click:update-share-view");
}

void LogLocationSet() { Send({"set", "vantro-location"}, nullptr); }

void LogShareStart(ShareStartKind kind) {
    if (const auto name = ShareStartName(kind)) {
        Send(*name, kDialogPath);
    }
}

void LogCopyLink() { Send({"apply", "copy-media-link"}, kDialogPath); }

void LogUploadResult(UploadResultKind kind) {
    if (const auto name = UploadResultName(kind)) {
        Send(*name, kDialogPath);
    }
}

}  // namespace vantrokelui::utility::SDMLogging
