#include <vantrokelui/viewmodel/ShareForReviewViewID.h>

namespace vantrokelui {

namespace {

// Slots of the name table. "Initial" has a slot of its own that no view id maps to: it belongs
// to the table, not to a screen.
enum class NameSlot {
    Initial,
    None,
    DebugView,
    SelectProject,
    SelectFolder,
    ReviewInVantro,
    NoAssetProcessor,
    NoAsset,
    Offline,
    StorageLimitExceeded,
    SigninPrompt,
    CopyLinkSection,
    EncodingProgress,
    Unknown,
};

// One local static per name: each is built on first use, and C++ makes that thread-safe.
const std::string& NameOf(NameSlot slot) {
    switch (slot) {
        case NameSlot::Initial: {
            static const std::string name("Initial");
            return name;
        }
        case NameSlot::None: {
            static const std::string name("None");
            return name;
        }
        case NameSlot::DebugView: {
            static const std::string name("DebugView");
            return name;
        }
        case NameSlot::SelectProject: {
            static const std::string name("SelectProject");
            return name;
        }
        case NameSlot::SelectFolder: {
            static const std::string name("SelectFolder");
            return name;
        }
        case NameSlot::ReviewInVantro: {
            static const std::string name("ReviewInVantro");
            return name;
        }
        case NameSlot::NoAssetProcessor: {
            static const std::string name("NoAssetProcessor");
            return name;
        }
        case NameSlot::NoAsset: {
            static const std::string name("NoAsset");
            return name;
        }
        case NameSlot::Offline: {
            static const std::string name("Offline");
            return name;
        }
        case NameSlot::StorageLimitExceeded: {
            static const std::string name("StorageLimitExceeded");
            return name;
        }
        case NameSlot::SigninPrompt: {
            static const std::string name("SigninPrompt");
            return name;
        }
        case NameSlot::CopyLinkSection: {
            static const std::string name("CopyLinkSection");
            return name;
        }
        case NameSlot::EncodingProgress: {
            static const std::string name("EncodingProgress");
            return name;
        }
        case NameSlot::Unknown:
            break;
    }
    static const std::string unknown("(unknown ShareForReviewViewID value)");
    return unknown;
}

}  // namespace

const std::string& ShareForReviewViewIDDebugName(ShareForReviewViewID id) {
    switch (id) {
        case ShareForReviewViewID::None:
            return NameOf(NameSlot::None);
        case ShareForReviewViewID::DebugView:
            return NameOf(NameSlot::DebugView);
        case ShareForReviewViewID::SelectProject:
            return NameOf(NameSlot::SelectProject);
        case ShareForReviewViewID::SelectFolder:
            return NameOf(NameSlot::SelectFolder);
        case ShareForReviewViewID::ReviewInVantro:
            return NameOf(NameSlot::ReviewInVantro);
        case ShareForReviewViewID::NoAssetProcessor:
            return NameOf(NameSlot::NoAssetProcessor);
        case ShareForReviewViewID::NoAsset:
            return NameOf(NameSlot::NoAsset);
        case ShareForReviewViewID::Offline:
            return NameOf(NameSlot::Offline);
        case ShareForReviewViewID::StorageLimitExceeded:
            return NameOf(NameSlot::StorageLimitExceeded);
        case ShareForReviewViewID::SigninPrompt:
            return NameOf(NameSlot::SigninPrompt);
        case ShareForReviewViewID::CopyLinkSection:
            return NameOf(NameSlot::CopyLinkSection);
        case ShareForReviewViewID::EncodingProgress:
            return NameOf(NameSlot::EncodingProgress);
        case ShareForReviewViewID::EncodingQueued:
        case ShareForReviewViewID::UploadProgress:
            break;
    }
    // 11, 13 and every value outside the enumeration.
    return NameOf(NameSlot::Unknown);
}

}  // namespace vantrokelui
