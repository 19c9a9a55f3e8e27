#include <vantrokelui/model/connector/VantroSdkFile.h>

#include <utility>

#include <vantrokelui/model/connector/detail/NodeIdentity.h>

namespace vantrokelui::model::VantroConnectorIntegration {

VantroSdkFile::VantroSdkFile(const vantrosdk::Asset& asset, std::weak_ptr<VantroNode> parent)
    : VantroFile(std::move(parent)) {
    detail::SetIdentity(*this, asset.id.value_or(vantrocommon::Guid()), asset.name);
}

VantroSdkFile::~VantroSdkFile() = default;

}  // namespace vantrokelui::model::VantroConnectorIntegration
