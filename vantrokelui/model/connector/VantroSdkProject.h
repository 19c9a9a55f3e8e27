// A project as the SDK back end sees it. Its one child, the root folder, comes with the
// project's record, so there is nothing to fetch: FetchChildren only sets Fetching, and the
// project stays there. The root folder is named after the project, never after its asset.
// Owned by its workspace's Projects list, holding the workspace weakly. Any thread.
//
//   auto project = VantroSdkProject::MakeWithRootFolder(record, workspace);
//   project->GetRootFolder()->GetName() == project->GetName();
#pragma once

#include <memory>

#include <kelcore/async/Future.h>
#include <vantrokelui/nodes/VantroProject.h>
#include <vantrosdk/Project.h>

namespace vantrokelui::model::VantroConnectorIntegration {

class VantroSdkProject : public VantroProject {
public:
    /// A project with the record's id and name below `parent`, with no root folder yet.
    VantroSdkProject(const vantrosdk::Project& project, std::weak_ptr<VantroNode> parent);
    ~VantroSdkProject() override;

    /// The project node as the back end makes it: the project below `parent`, and in its
    /// RootFolder a VantroSdkFolder made from the record's root asset, below the project and
    /// bearing the project's name. Any thread.
    static std::shared_ptr<VantroSdkProject> MakeWithRootFolder(
        const vantrosdk::Project& project, const std::weak_ptr<VantroNode>& parent);

    /// Sets Fetching only: the root folder came with the project. Any thread.
    void FetchChildren() override;

private:
    kelcore::async::Future<void> fetchFuture;
};

}  // namespace vantrokelui::model::VantroConnectorIntegration
