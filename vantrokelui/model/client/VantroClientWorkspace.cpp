#include <vantrokelui/model/client/VantroClientWorkspace.h>

#include <exception>
#include <typeinfo>
#include <utility>

#include <kelcore/config/ErrorHandling.h>
#include <kelcore/messaging/MessageID.h>
#include <vantrokelui/model/client/VantroClientFolder.h>
#include <vantrokelui/model/client/VantroClientProject.h>
#include <vantrokelui/model/client/detail/ClientDatastore.h>
#include <vantrokelui/utility/WeakBindMemberFunction.h>

namespace vantrokelui::model::VantroClientIntegration {

VantroClientWorkspace::VantroClientWorkspace(std::weak_ptr<VantroNode> parent)
    : VantroWorkspace(std::move(parent)) {}

VantroClientWorkspace::~VantroClientWorkspace() {
    LeaveStation();
}

void VantroClientWorkspace::FetchChildren() {
    VantroWorkspace::FetchChildren();
    const auto answer = detail::Datastore()->GetProjectList(GetID());
    answer.Then(detail::ExecutorOf(answer),
                utility::WeakBindMemberFunction(WeakAs<VantroClientWorkspace>(),
                                                &VantroClientWorkspace::AddChildren),
                [](const std::exception_ptr&) {});
}

void VantroClientWorkspace::ReceiveRawMessage(const kelcore::messaging::RawMessage& message) {
    static const kelcore::messaging::MessageID sProjectListChanged =
        kelcore::messaging::HashMessageTypeNameToMessageID(
            typeid(vantro::VantroDatastore::ProjectListChanged).name());
    if (message.GetMessageID() != sProjectListChanged) {
        return;
    }
    // Held for the comparison and the fetch: a node that is dying is no longer reached.
    const std::shared_ptr<VantroClientWorkspace> self = detail::LockSelf(*this);
    const auto* changed = message.As<vantro::VantroDatastore::ProjectListChanged>();
    if (self && changed && changed->parentID == self->GetID()) {
        self->FetchChildren();
    }
}

void VantroClientWorkspace::AddChildren(
    const kelcore::classref::InterfaceRef<vantro::VantroProjectList>& list) {
    if (!list) {
        kelcore::config::DoThrowNullPtrException(typeid(vantro::VantroProjectList));
    }
    const std::shared_ptr<VantroNode> self = SharedAs<VantroNode>();
    utility::SharedPtrVector<VantroProject> projects;
    for (std::uint64_t index = 0; index < list->GetCount(); ++index) {
        const kelcore::classref::InterfaceRef<vantro::VantroProject> item = list->GetProject(index);
        if (!item) {
            kelcore::config::DoThrowNullPtrException(typeid(vantro::VantroProject));
        }
        auto project = std::make_shared<VantroClientProject>(self);
        project->SetID(item->GetID());
        project->SetName(detail::LockedNameOf(*item));
        auto root = std::make_shared<VantroClientFolder>(project);
        root->SetID(item->GetRootAssetID());
        project->SetRootFolder(root);
        projects.push_back(std::move(project));
    }
    SetProjects(projects);
    SetFetchChildrenState(FetchChildrenState::Fetched);
    Subscribe();
}

}  // namespace vantrokelui::model::VantroClientIntegration
