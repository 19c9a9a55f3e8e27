// One encoder preset in the shared, observable form that the panel's view model lists and
// selects: its name, preset file path and output extension, each a notifying property. Owned by
// std::shared_ptr (the presets list, the selection); made only by Create, in the platform
// allocator. ShareManager::SetEncoderPresets fills it; readers use the three properties. The
// values may be set and read on any thread; bindings and deliveries are main-thread.
//
//   std::shared_ptr<EncoderPresetModel> preset = EncoderPresetModel::Create();
//   preset->SetPresetName(u"H.264 High");
#pragma once

#include <memory>

#include <kelcore/utility/EnableSharedAs.h>
#include <vantrokelui/utility/ExtensionNotifyingProperty.h>
#include <vantrokelui/utility/PresetNameNotifyingProperty.h>
#include <vantrokelui/utility/PresetPathNotifyingProperty.h>

namespace vantrokelui {

class EncoderPresetModel final : public PresetNameNotifyingProperty,
                                 public PresetPathNotifyingProperty,
                                 public ExtensionNotifyingProperty,
                                 public virtual kelcore::utility::EnableSharedAs {
    // Keeps construction to Create while letting std::allocate_shared reach the constructor.
    struct ConstructionKey {
        explicit ConstructionKey() = default;
    };

public:
    /// A preset with three empty values, owned by a shared pointer from the start so that
    /// observers can bind at once. Any thread.
    static std::shared_ptr<EncoderPresetModel> Create();

    explicit EncoderPresetModel(ConstructionKey);
    ~EncoderPresetModel() override;
};

}  // namespace vantrokelui
