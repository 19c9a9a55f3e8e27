// A folder as the SDK back end sees it (a project's root folder or one below it).
// FetchChildren lists its children page by page through the shared FetchFolderChildrenQueue;
// each page arrives in AddChildren and is sorted into folders, files and version stacks by
// the asset's type. Folders are fetched only when someone asks, never eagerly. Owned by its
// parent's Folders list or its project's RootFolder, holding the parent weakly, and holding
// the queue for life. FetchChildren: any thread; AddChildren: the SDK's executor.
//
//   auto folder = std::make_shared<VantroSdkFolder>(asset, parent);
//   folder->FetchChildren();   // lists empty, Fetching; then each page, Fetched from the first
#pragma once

#include <memory>
#include <vector>

#include <kelcore/async/Future.h>
#include <vantrokelui/model/connector/FetchFolderChildrenQueue.h>
#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrosdk/Asset.h>

namespace vantrokelui::model::VantroConnectorIntegration {

class VantroSdkFolder : public VantroFolder {
public:
    /// A folder with the asset's id and name below `parent`; takes the shared queue.
    VantroSdkFolder(const vantrosdk::Asset& asset, std::weak_ptr<VantroNode> parent);
    ~VantroSdkFolder() override;

    /// Empties Folders, Files and VersionStacks (in that order), sets Fetching, and queues
    /// page 1 of the children. Any thread.
    void FetchChildren() override;

    /// Appends each asset of one page to the folders, files or version stacks there already,
    /// by its type as exact text ("folder", "file", "version_stack"; anything else is dropped),
    /// stores Folders, Files and VersionStacks in that order, and sets Fetched (from the first
    /// page on). Bound weakly. The SDK's executor.
    void AddChildren(const std::vector<vantrosdk::Asset>& list);

private:
    const std::shared_ptr<FetchFolderChildrenQueue> queue;
    kelcore::async::Future<void> fetchFuture;
};

}  // namespace vantrokelui::model::VantroConnectorIntegration
