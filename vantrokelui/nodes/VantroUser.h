// The signed-in user: the top of the cloud location tree, and the one object that knows where
// the user is pointing. Its children are the accounts. It holds the committed folder
// (Selection) with the path and settings page derived from it, and the picker's proposal
// (ProposedAccount, ProposedSelection) until the user commits.
//
// Owned by the panel's view model, which replaces it on sign-in and sign-out; the whole tree
// below dies with it. Setters run on any thread (the back ends fill Accounts from theirs);
// observers are called on the main thread.
//
//   user->SetSelection(folder);          // also sets SelectionPath and SettingsURL
//   user->GetSelectionPath();            // u"Studio/Team/Promo/Cuts"
#pragma once

#include <memory>

#include <kelcore/string/String.h>
#include <vantrokelui/nodes/VantroNode.h>
#include <vantrokelui/utility/AccountsNotifyingProperty.h>
#include <vantrokelui/utility/ColorNotifyingProperty.h>
#include <vantrokelui/utility/IconNotifyingProperty.h>
#include <vantrokelui/utility/ProposedAccountNotifyingProperty.h>
#include <vantrokelui/utility/ProposedSelectionNotifyingProperty.h>
#include <vantrokelui/utility/SelectionNotifyingProperty.h>
#include <vantrokelui/utility/SelectionPathNotifyingProperty.h>
#include <vantrokelui/utility/SettingsURLNotifyingProperty.h>

namespace vantrokelui {

class VantroAccount;
class VantroFolder;

class VantroUser : public VantroNode,
                   public IconNotifyingProperty,
                   public ColorNotifyingProperty,
                   public AccountsNotifyingProperty,
                   public ProposedAccountNotifyingProperty,
                   public ProposedSelectionNotifyingProperty,
                   public SelectionPathNotifyingProperty,
                   public SelectionNotifyingProperty,
                   public SettingsURLNotifyingProperty {
public:
    /// A user with no id, no accounts and no selection. `parent` is normally empty: the user is
    /// the top of its tree.
    explicit VantroUser(std::weak_ptr<VantroNode> parent = {});
    ~VantroUser() override;

    /// The accounts, in their sorted order. Any thread.
    utility::SharedPtrVector<VantroNode> GetChildren() const override;
    /// "User". Any thread.
    kelcore::string::string GetTypeTag() const override;

    /// Stores a copy of `accounts` sorted by name, and notifies, unless it holds the same
    /// accounts in the same order already. Then, changed or not, calls FetchChildren on every
    /// element of `accounts` in the order given, so the tree fills eagerly down to each
    /// project's root folder. Elements must not be null. Any thread.
    void SetAccounts(const utility::SharedPtrVector<VantroAccount>& accounts) override;

    /// When `account` is not the account already proposed, first clears ProposedSelection (so
    /// the clear is delivered first), then stores and notifies. The same account changes
    /// nothing. Any thread.
    void SetProposedAccount(const std::shared_ptr<VantroAccount>& account) override;

    /// Stores the committed folder and notifies unless it is the same one; then always sets
    /// SelectionPath (MakeSelectionPath) and SettingsURL (MakeSettingsURL) from it. Null
    /// gives "/" and the empty text. Any thread.
    void SetSelection(const std::shared_ptr<VantroFolder>& folder) override;
};

}  // namespace vantrokelui
