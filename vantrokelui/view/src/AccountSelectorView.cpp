#include <vantrokelui/view/AccountSelectorView.h>

#include <cstddef>

#include <kelui/ui/WeakNodeFunction.h>
#include <vantrokelui/nodes/VantroAccount.h>
#include <vantrokelui/nodes/VantroUser.h>
#include <vantrokelui/sharedui/ResourceManager.h>

namespace vantrokelui::view {

AccountSelectorView::AccountSelectorView(const std::shared_ptr<VantroUser>& user)
    : proposedAccount(user) {
    NotifyWhenChanged(kelui::ui::WeakNodeFunction(this, &AccountSelectorView::OnItemPicked));
    if (user) {
        accountsBinding = user->AddAccountsBinding(
            kelui::ui::WeakNodeFunction(this, &AccountSelectorView::SetAccounts));
    }
    UI_Show(true);
}

AccountSelectorView::~AccountSelectorView() = default;

void AccountSelectorView::SetAccounts(const utility::SharedPtrVector<VantroAccount>& list) {
    accounts = list;
    DeleteAllItems();
    const kelcore::utility::Guid proposedID = ReadProposedAccountID();
    int chosen = 0;
    for (std::size_t i = 0; i < accounts.size(); ++i) {
        const int index = AddItemWithCustomIcon(accounts[i]->GetName(), -1);
        if (accounts[i]->GetID() == proposedID) {
            chosen = index;
        }
    }
    // An empty list keeps the value of DeleteAllItems: no item.
    if (!accounts.empty()) {
        SetValue(chosen);
    }
    SetImageSupplyFunction(
        sharedui::BindImageSupplyFunction("VantroInlineLogo_Lg", &sharedui::GetResourceManager));
    EnableAllItems();
}

kelcore::utility::Guid AccountSelectorView::ReadProposedAccountID() {
    const auto property = proposedAccount.lock();
    if (!property) {
        return {};
    }
    std::shared_ptr<VantroAccount> account = property->GetProposedAccount();
    if (!account && !accounts.empty()) {
        account = accounts.front();
        property->SetProposedAccount(account);
    }
    return account ? account->GetID() : kelcore::utility::Guid();
}

void AccountSelectorView::OnItemPicked() {
    const auto property = proposedAccount.lock();
    if (!property) {
        return;
    }
    const int value = GetValue();
    if (value >= 0 && static_cast<std::size_t>(value) < accounts.size()) {
        property->SetProposedAccount(accounts[static_cast<std::size_t>(value)]);
    } else {
        property->SetProposedAccount(nullptr);
    }
}

}  // namespace vantrokelui::view
