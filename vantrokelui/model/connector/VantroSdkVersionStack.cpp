#include <vantrokelui/model/connector/VantroSdkVersionStack.h>

#include <utility>

#include <vantrokelui/model/connector/detail/NodeIdentity.h>

namespace vantrokelui::model::VantroConnectorIntegration {

VantroSdkVersionStack::VantroSdkVersionStack(const vantrosdk::Asset& asset,
                                             std::weak_ptr<VantroNode> parent)
    : VantroVersionStack(std::move(parent)) {
    detail::SetIdentity(*this, asset.id.value_or(vantrocommon::Guid()), asset.name);
}

VantroSdkVersionStack::~VantroSdkVersionStack() = default;

}  // namespace vantrokelui::model::VantroConnectorIntegration
