// The account popup of the location picker's project step: one item for each of the user's
// accounts (by name, with the service's logo), the proposed account chosen. Choosing an item
// proposes that account; when nothing is proposed yet, the first account of the sorted list
// becomes the proposal. Follows the user's Accounts itself. Owned by the ProjectPickerView;
// holds the user's ProposedAccount only weakly. Main thread.
//
//   boost::intrusive_ptr<AccountSelectorView> accounts(new AccountSelectorView(user));
#pragma once

#include <memory>

#include <kelcore/utility/Guid.h>
#include <kelui/controls/UI_Popup.h>
#include <vantrokelui/utility/DataBinding.h>
#include <vantrokelui/utility/NotifyingProperty.h>
#include <vantrokelui/utility/ProposedAccountNotifyingProperty.h>

namespace vantrokelui {
class VantroAccount;
class VantroUser;
}  // namespace vantrokelui

namespace vantrokelui::view {

class AccountSelectorView final : public kelui::controls::UI_Popup {
public:
    /// A popup over `user`'s accounts and proposed account; binds to the accounts at once (the
    /// items come with the first delivery). A null user gives an empty popup.
    explicit AccountSelectorView(const std::shared_ptr<VantroUser>& user);
    ~AccountSelectorView() override;

    /// Stores `accounts` and rebuilds the items: the proposed account's item is chosen (item 0
    /// when it is not in the list), and an empty proposal becomes the first account.
    void SetAccounts(const utility::SharedPtrVector<VantroAccount>& accounts);
    const utility::SharedPtrVector<VantroAccount>& GetAccounts() const { return accounts; }

private:
    /// The proposed account's id; proposes the first account when there is none and the list
    /// has one. The null Guid for an empty list.
    kelcore::utility::Guid ReadProposedAccountID();
    void OnItemPicked();

    utility::SharedPtrVector<VantroAccount> accounts;
    std::weak_ptr<ProposedAccountNotifyingProperty> proposedAccount;
    std::shared_ptr<utility::DataBinding> accountsBinding;
};

}  // namespace vantrokelui::view
