// The SDK's name for the service selector shared by the cloud libraries (see
// vantrocommon/EnvironmentType.h): 0, the configured service, is the only value.
#pragma once

#include <vantrocommon/EnvironmentType.h>

namespace vantrosdk {

using EnvironmentType = vantrocommon::EnvironmentType;

}  // namespace vantrosdk
