// How every SDK node takes its identity from its record: the SDK's id through its text into
// the platform's Guid, and the UTF-8 name into UTF-16. Implementation only; any thread.
#pragma once

#include <string>

#include <kelcore/string/String.h>
#include <kelcore/utility/Guid.h>
#include <vantrocommon/Guid.h>
#include <vantrokelui/nodes/VantroNode.h>

namespace vantrokelui::model::VantroConnectorIntegration::detail {

inline void SetIdentity(VantroNode& node, const vantrocommon::Guid& id, const std::string& name) {
    node.SetID(kelcore::utility::Guid(id.AsString()));
    node.SetName(kelcore::string::StdToUTF16String(name));
}

}  // namespace vantrokelui::model::VantroConnectorIntegration::detail
