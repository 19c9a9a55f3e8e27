#include <vantrokelui/model/connector/FetchFolderChildrenQueue.h>

#include <utility>

#include <vantrocommon/Guid.h>
#include <vantrokelui/model/connector/SdkClient.h>
#include <vantrosdk/Assets.h>

namespace vantrokelui::model::VantroConnectorIntegration {

FetchFolderChildrenQueue::FetchFolderChildrenQueue() = default;

FetchFolderChildrenQueue::FetchFolderChildrenQueue(
    std::shared_ptr<kelcore::threads::AsyncExecutor> executor)
    : FetchChildrenQueue(std::move(executor)) {}

FetchFolderChildrenQueue::~FetchFolderChildrenQueue() = default;

kelcore::async::Future<void> FetchFolderChildrenQueue::IssueRequest(
    std::shared_ptr<VantroNode> node, int page, ResponseHandler handler) {
    const std::shared_ptr<vantrosdk::VantroClient> client = GetClient();
    if (!client) {
        return MissingClientFailure();
    }
    vantrosdk::GetChildAssetsRequest request{vantrocommon::Guid(node->GetID().AsStdString())};
    request.SetPageNumber(page);
    return AttachHandler(client->GetAssets()->GetChildAssets(request), std::move(handler));
}

const std::vector<vantrosdk::Asset>& FetchFolderChildrenQueue::ExtractChildren(
    const std::shared_ptr<VantroNode>& /*node*/,
    std::shared_ptr<vantrosdk::GetChildAssetsResponse> response) {
    return response->GetChildAssetsObject();
}

}  // namespace vantrokelui::model::VantroConnectorIntegration
