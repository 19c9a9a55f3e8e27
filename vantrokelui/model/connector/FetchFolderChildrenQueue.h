// The process-wide queue of folder listings: one page of a folder's children per request
// (GET /v2/assets/{id}/children through Assets::GetChildAssets), rate-limited and paged as
// FetchChildrenQueue says. Shared by every VantroSdkFolder through WeakSingleton; it dies with
// the last of them. Any thread.
//
//   auto queue = FetchFolderChildrenQueue::GetInstance();
//   queue->EnqueueBack(folder, 1, onChildren);
#pragma once

#include <memory>
#include <vector>

#include <kelcore/async/Future.h>
#include <kelcore/threads/AsyncExecutor.h>
#include <vantrokelui/model/connector/FetchChildrenQueue.h>
#include <vantrokelui/model/connector/WeakSingleton.h>
#include <vantrosdk/Asset.h>
#include <vantrosdk/GetChildAssetsRequest.h>
#include <vantrosdk/GetChildAssetsResponse.h>

namespace vantrokelui::model::VantroConnectorIntegration {

class FetchFolderChildrenQueue
    : public FetchChildrenQueue<vantrosdk::GetChildAssetsRequest, vantrosdk::GetChildAssetsResponse,
                                std::vector<vantrosdk::Asset>>,
      public WeakSingleton<FetchFolderChildrenQueue> {
public:
    /// A queue that pumps on the IO-bound executor. Use GetInstance.
    FetchFolderChildrenQueue();
    ~FetchFolderChildrenQueue() override;

protected:
    /// A queue that pumps on `executor`; for tests.
    explicit FetchFolderChildrenQueue(std::shared_ptr<kelcore::threads::AsyncExecutor> executor);

    /// Asks the process's SDK client for page `page` of the folder's children. Without a client
    /// the chain fails with the null pointer code and `handler` is never called.
    kelcore::async::Future<void> IssueRequest(std::shared_ptr<VantroNode> node, int page,
                                              ResponseHandler handler) override;
    /// GetChildAssetsObject of the response.
    const std::vector<vantrosdk::Asset>& ExtractChildren(
        const std::shared_ptr<VantroNode>& node,
        std::shared_ptr<vantrosdk::GetChildAssetsResponse> response) override;
};

}  // namespace vantrokelui::model::VantroConnectorIntegration
