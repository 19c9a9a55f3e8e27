// A file in a folder, as the SDK back end makes it from an asset of type "file". A leaf of the
// tree: Fetched from birth, nothing to fetch. Owned by its folder's Files list, holding the
// folder weakly. Any thread.
#pragma once

#include <memory>

#include <vantrokelui/nodes/VantroFile.h>
#include <vantrosdk/Asset.h>

namespace vantrokelui::model::VantroConnectorIntegration {

class VantroSdkFile : public VantroFile {
public:
    /// A file with the asset's id and name below `parent`.
    VantroSdkFile(const vantrosdk::Asset& asset, std::weak_ptr<VantroNode> parent);
    ~VantroSdkFile() override;
};

}  // namespace vantrokelui::model::VantroConnectorIntegration
