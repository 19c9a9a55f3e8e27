#include <vantrokelui/model/client/VantroClientAccount.h>

#include <exception>
#include <typeinfo>
#include <utility>

#include <kelcore/config/ErrorHandling.h>
#include <kelcore/messaging/MessageID.h>
#include <vantrokelui/model/client/VantroClientWorkspace.h>
#include <vantrokelui/model/client/detail/ClientDatastore.h>
#include <vantrokelui/utility/WeakBindMemberFunction.h>

namespace vantrokelui::model::VantroClientIntegration {

VantroClientAccount::VantroClientAccount(std::weak_ptr<VantroNode> parent)
    : VantroAccount(std::move(parent)) {}

VantroClientAccount::~VantroClientAccount() {
    LeaveStation();
}

void VantroClientAccount::FetchChildren() {
    VantroAccount::FetchChildren();
    const auto answer = detail::Datastore()->GetTeamList(GetID());
    answer.Then(detail::ExecutorOf(answer),
                utility::WeakBindMemberFunction(WeakAs<VantroClientAccount>(),
                                                &VantroClientAccount::AddChildren),
                [](const std::exception_ptr&) {});
}

void VantroClientAccount::ReceiveRawMessage(const kelcore::messaging::RawMessage& message) {
    static const kelcore::messaging::MessageID sTeamListChanged =
        kelcore::messaging::HashMessageTypeNameToMessageID(
            typeid(vantro::VantroDatastore::TeamListChanged).name());
    if (message.GetMessageID() != sTeamListChanged) {
        return;
    }
    // Held for the comparison and the fetch: a node that is dying is no longer reached.
    const std::shared_ptr<VantroClientAccount> self = detail::LockSelf(*this);
    const auto* changed = message.As<vantro::VantroDatastore::TeamListChanged>();
    if (self && changed && changed->parentID == self->GetID()) {
        self->FetchChildren();
    }
}

void VantroClientAccount::AddChildren(
    const kelcore::classref::InterfaceRef<vantro::VantroTeamList>& list) {
    if (!list) {
        kelcore::config::DoThrowNullPtrException(typeid(vantro::VantroTeamList));
    }
    const std::shared_ptr<VantroNode> self = SharedAs<VantroNode>();
    utility::SharedPtrVector<VantroWorkspace> workspaces;
    for (std::uint64_t index = 0; index < list->GetCount(); ++index) {
        const kelcore::classref::InterfaceRef<vantro::VantroTeam> item = list->GetTeam(index);
        if (!item) {
            kelcore::config::DoThrowNullPtrException(typeid(vantro::VantroTeam));
        }
        auto workspace = std::make_shared<VantroClientWorkspace>(self);
        workspace->SetID(item->GetID());
        workspace->SetName(detail::LockedNameOf(*item));
        workspaces.push_back(std::move(workspace));
    }
    SetWorkspaces(workspaces);
    SetFetchChildrenState(FetchChildrenState::Fetched);
    Subscribe();
}

}  // namespace vantrokelui::model::VantroClientIntegration
