// Which service the cloud libraries talk to. Only the configured service exists: the embedded
// default unless the configuration names another (see ServiceEndpoint).
#pragma once

namespace vantrocommon {

enum class EnvironmentType : int {
    Configured = 0,
};

}  // namespace vantrocommon
