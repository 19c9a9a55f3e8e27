#include <vantrokelui/model/client/VantroClientUser.h>

#include <exception>
#include <typeinfo>

#include <kelcore/config/ErrorHandling.h>
#include <kelcore/messaging/MessageID.h>
#include <vantrokelui/model/client/VantroClientAccount.h>
#include <vantrokelui/model/client/detail/ClientDatastore.h>
#include <vantrokelui/utility/WeakBindMemberFunction.h>

namespace vantrokelui::model::VantroClientIntegration {

VantroClientUser::VantroClientUser() : VantroUser(std::weak_ptr<VantroNode>()) {}

VantroClientUser::~VantroClientUser() {
    LeaveStation();
}

void VantroClientUser::FetchChildren() {
    VantroUser::FetchChildren();
    const auto answer = detail::Datastore()->GetAccountList();
    answer.Then(
        detail::ExecutorOf(answer),
        utility::WeakBindMemberFunction(WeakAs<VantroClientUser>(), &VantroClientUser::AddChildren),
        [](const std::exception_ptr&) {});
}

void VantroClientUser::ReceiveRawMessage(const kelcore::messaging::RawMessage& message) {
    static const kelcore::messaging::MessageID sAccountListChanged =
        kelcore::messaging::HashMessageTypeNameToMessageID(
            typeid(vantro::VantroDatastore::AccountListChanged).name());
    if (message.GetMessageID() != sAccountListChanged) {
        return;
    }
    // Held for the fetch: a node that is dying is no longer reached, and one that lives
    // cannot die half-way through.
    if (const std::shared_ptr<VantroClientUser> self = detail::LockSelf(*this)) {
        self->FetchChildren();
    }
}

void VantroClientUser::AddChildren(
    const kelcore::classref::InterfaceRef<vantro::VantroAccountList>& list) {
    if (!list) {
        kelcore::config::DoThrowNullPtrException(typeid(vantro::VantroAccountList));
    }
    const std::shared_ptr<VantroNode> self = SharedAs<VantroNode>();
    utility::SharedPtrVector<VantroAccount> accounts;
    for (std::uint64_t index = 0; index < list->GetCount(); ++index) {
        const kelcore::classref::InterfaceRef<vantro::VantroAccount> item = list->GetAccount(index);
        if (!item) {
            kelcore::config::DoThrowNullPtrException(typeid(vantro::VantroAccount));
        }
        auto account = std::make_shared<VantroClientAccount>(self);
        account->SetID(item->GetID());
        // The account's own GetName takes the item's lock.
        account->SetName(kelcore::string::StdToUTF16String(item->GetName()));
        accounts.push_back(std::move(account));
    }
    SetAccounts(accounts);
    SetFetchChildrenState(FetchChildrenState::Fetched);
    Subscribe();
}

}  // namespace vantrokelui::model::VantroClientIntegration
