// The eleven panel properties the share manager writes to, owned by one small object as the
// panel's view model owns them, held by std::shared_ptr so that weak pointers to each face can
// be handed to the manager. Tests bind recorders to it and pump the main-thread queue.
#pragma once

#include <memory>

#include <kelcore/utility/EnableSharedAs.h>
#include <vantrokelui/model/EncoderPresetModel.h>
#include <vantrokelui/model/ShareManager.h>

namespace vantrokelui::model::testing {

class PanelProperties : public ActiveAssetNameNotifyingProperty,
                              public ReviewLinkURLNotifyingProperty,
                              public CurrentViewIDNotifyingProperty,
                              public EncodingStatusNotifyingProperty,
                              public EncodingProgressNotifyingProperty,
                              public ProcessingRemainingTimeNotifyingProperty,
                              public UploadingSpeedNotifyingProperty,
                              public EncoderPresetsNotifyingProperty,
                              public SelectedEncoderPresetNotifyingProperty,
                              public ActiveAssetDirtyNotifyingProperty,
                              public CreateNewLinkModeNotifyingProperty,
                              public virtual kelcore::utility::EnableSharedAs {
public:
    static std::shared_ptr<PanelProperties> Create() { return std::make_shared<PanelProperties>(); }

    /// Hands `manager` weak pointers to all eleven faces and `writeFolderSettings`.
    static void Install(ShareManager& manager, const std::shared_ptr<PanelProperties>& owner,
                        std::function<void()> writeFolderSettings = {}) {
        manager.SetNotifyingProperties(
            std::move(writeFolderSettings), std::weak_ptr<ActiveAssetNameNotifyingProperty>(owner),
            std::weak_ptr<ActiveAssetDirtyNotifyingProperty>(owner),
            std::weak_ptr<ReviewLinkURLNotifyingProperty>(owner),
            std::weak_ptr<CurrentViewIDNotifyingProperty>(owner),
            std::weak_ptr<EncodingStatusNotifyingProperty>(owner),
            std::weak_ptr<EncodingProgressNotifyingProperty>(owner),
            std::weak_ptr<ProcessingRemainingTimeNotifyingProperty>(owner),
            std::weak_ptr<UploadingSpeedNotifyingProperty>(owner),
            std::weak_ptr<EncoderPresetsNotifyingProperty>(owner),
            std::weak_ptr<SelectedEncoderPresetNotifyingProperty>(owner),
            std::weak_ptr<CreateNewLinkModeNotifyingProperty>(owner));
    }
};

}  // namespace vantrokelui::model::testing
