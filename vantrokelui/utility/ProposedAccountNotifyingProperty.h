// The account that the location picker shows before the user commits. Held by the user; default
// null. GetProposedAccount and SetProposedAccount (virtual, any thread), AddProposedAccountBinding
// (main thread).
#pragma once

#include <memory>

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

class VantroAccount;

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(ProposedAccount, std::shared_ptr<VantroAccount>,
                                     const std::shared_ptr<VantroAccount>&);

}  // namespace vantrokelui
