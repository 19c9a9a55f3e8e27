// The folder that the location picker holds before the user commits. Held by the user; default
// null. GetProposedSelection and SetProposedSelection (virtual, any thread),
// AddProposedSelectionBinding (main thread).
#pragma once

#include <memory>

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

class VantroFolder;

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(ProposedSelection, std::shared_ptr<VantroFolder>,
                                     const std::shared_ptr<VantroFolder>&);

}  // namespace vantrokelui
