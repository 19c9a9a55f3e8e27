#include <vantrokelui/nodes/VantroUser.h>

#include <utility>

#include <vantrokelui/nodes/SelectionFunctions.h>
#include <vantrokelui/nodes/VantroAccount.h>
#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrokelui/nodes/detail/SortedByName.h>

namespace vantrokelui {

VantroUser::VantroUser(std::weak_ptr<VantroNode> parent) : VantroNode(std::move(parent)) {}

VantroUser::~VantroUser() = default;

utility::SharedPtrVector<VantroNode> VantroUser::GetChildren() const {
    const utility::SharedPtrVector<VantroAccount> accounts = GetAccounts();
    return {accounts.begin(), accounts.end()};
}

kelcore::string::string VantroUser::GetTypeTag() const {
    return u"User";
}

void VantroUser::SetAccounts(const utility::SharedPtrVector<VantroAccount>& accounts) {
    AccountsNotifyingProperty::SetAccounts(detail::SortedByName(accounts));
    for (const std::shared_ptr<VantroAccount>& account : accounts) {
        account->FetchChildren();
    }
}

void VantroUser::SetProposedAccount(const std::shared_ptr<VantroAccount>& account) {
    if (GetProposedAccount() != account) {
        SetProposedSelection(nullptr);
    }
    ProposedAccountNotifyingProperty::SetProposedAccount(account);
}

void VantroUser::SetSelection(const std::shared_ptr<VantroFolder>& folder) {
    SelectionNotifyingProperty::SetSelection(folder);
    SetSelectionPath(MakeSelectionPath(folder));
    SetSettingsURL(MakeSettingsURL(folder));
}

}  // namespace vantrokelui
