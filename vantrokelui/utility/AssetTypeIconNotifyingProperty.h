// Draws the icon of the active sequence's kind. Held by the panel's view model; default null.
// GetAssetTypeIcon and SetAssetTypeIcon (virtual, any thread), AddAssetTypeIconBinding (main
// thread).
#pragma once

#include <functional>
#include <memory>

#include <kelui/ui/ConstMessage.h>
#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(
    AssetTypeIcon, std::shared_ptr<std::function<void(kelui::ui::ConstMessage*)>>,
    const std::shared_ptr<std::function<void(kelui::ui::ConstMessage*)>>&);

}  // namespace vantrokelui
