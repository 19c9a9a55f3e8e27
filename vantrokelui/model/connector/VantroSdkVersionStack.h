// A version stack in a folder, as the SDK back end makes it from an asset of type
// "version_stack". A leaf of the tree: Fetched from birth, nothing to fetch. Owned by its
// folder's VersionStacks list, holding the folder weakly. Any thread.
#pragma once

#include <memory>

#include <vantrokelui/nodes/VantroVersionStack.h>
#include <vantrosdk/Asset.h>

namespace vantrokelui::model::VantroConnectorIntegration {

class VantroSdkVersionStack : public VantroVersionStack {
public:
    /// A version stack with the asset's id and name below `parent`.
    VantroSdkVersionStack(const vantrosdk::Asset& asset, std::weak_ptr<VantroNode> parent);
    ~VantroSdkVersionStack() override;
};

}  // namespace vantrokelui::model::VantroConnectorIntegration
