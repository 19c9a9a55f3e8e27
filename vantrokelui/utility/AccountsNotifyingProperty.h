// The accounts that the user belongs to, sorted. Held by the user; default empty.
// GetAccounts and SetAccounts (virtual, any thread), AddAccountsBinding (main thread).
#pragma once

#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {

class VantroAccount;

VANTROKELUI_NAMED_NOTIFYING_PROPERTY(Accounts, utility::SharedPtrVector<VantroAccount>,
                                     const utility::SharedPtrVector<VantroAccount>&);

}  // namespace vantrokelui
