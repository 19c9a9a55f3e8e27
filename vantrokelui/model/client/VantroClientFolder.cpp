#include <vantrokelui/model/client/VantroClientFolder.h>

#include <exception>
#include <typeinfo>
#include <utility>

#include <kelcore/config/ErrorHandling.h>
#include <kelcore/messaging/MessageID.h>
#include <vantrokelui/model/client/VantroClientFile.h>
#include <vantrokelui/model/client/VantroClientVersionStack.h>
#include <vantrokelui/model/client/detail/ClientDatastore.h>
#include <vantrokelui/utility/WeakBindMemberFunction.h>

namespace vantrokelui::model::VantroClientIntegration {

VantroClientFolder::VantroClientFolder(std::weak_ptr<VantroNode> parent)
    : VantroFolder(std::move(parent)) {}

VantroClientFolder::~VantroClientFolder() {
    LeaveStation();
}

void VantroClientFolder::FetchChildren() {
    VantroFolder::FetchChildren();
    const auto answer = detail::Datastore()->GetAssetList(GetID());
    answer.Then(detail::ExecutorOf(answer),
                utility::WeakBindMemberFunction(WeakAs<VantroClientFolder>(),
                                                &VantroClientFolder::AddChildren),
                [](const std::exception_ptr&) {});
}

void VantroClientFolder::ReceiveRawMessage(const kelcore::messaging::RawMessage& message) {
    static const kelcore::messaging::MessageID sAssetListChanged =
        kelcore::messaging::HashMessageTypeNameToMessageID(
            typeid(vantro::VantroDatastore::AssetListChanged).name());
    if (message.GetMessageID() != sAssetListChanged) {
        return;
    }
    // Held for the comparison and the fetch: a node that is dying is no longer reached.
    const std::shared_ptr<VantroClientFolder> self = detail::LockSelf(*this);
    const auto* changed = message.As<vantro::VantroDatastore::AssetListChanged>();
    if (self && changed && changed->parentID == self->GetID()) {
        self->FetchChildren();
    }
}

void VantroClientFolder::AddChildren(
    const kelcore::classref::InterfaceRef<vantro::VantroAssetList>& list) {
    if (!list) {
        kelcore::config::DoThrowNullPtrException(typeid(vantro::VantroAssetList));
    }
    const std::shared_ptr<VantroNode> self = SharedAs<VantroNode>();
    utility::SharedPtrVector<VantroFolder> folders;
    utility::SharedPtrVector<VantroFile> files;
    utility::SharedPtrVector<VantroVersionStack> versionStacks;
    for (std::uint64_t index = 0; index < list->GetCount(); ++index) {
        const kelcore::classref::InterfaceRef<vantro::VantroAsset> item = list->GetAsset(index);
        if (!item) {
            kelcore::config::DoThrowNullPtrException(typeid(vantro::VantroAsset));
        }
        std::shared_ptr<VantroNode> child;
        const kelcore::utility::ImmutableString& type = item->GetType();
        if (type == vantro::VantroAsset::kFolder) {
            child = folders.emplace_back(std::make_shared<VantroClientFolder>(self));
        } else if (type == vantro::VantroAsset::kFile) {
            child = files.emplace_back(std::make_shared<VantroClientFile>(self));
        } else if (type == vantro::VantroAsset::kVersionStack) {
            child = versionStacks.emplace_back(std::make_shared<VantroClientVersionStack>(self));
        } else {
            continue;  // a bundle, or a kind this client does not know
        }
        child->SetID(item->GetID());
        child->SetName(detail::LockedNameOf(*item));
    }
    SetFolders(folders);
    SetFiles(files);
    SetVersionStacks(versionStacks);
    SetFetchChildrenState(FetchChildrenState::Fetched);
    Subscribe();
}

}  // namespace vantrokelui::model::VantroClientIntegration
