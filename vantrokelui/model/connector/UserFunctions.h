// The two entries by which the panel's view model reaches the SDK back end besides sign-in:
// the signed-in user as a node, and whether an account is over its storage limit. Both go
// through the process's SDK client (SdkClient.h) and answer on the SDK's executor, off the
// main thread; callers hop back with kelcore::threads::CallFromMainThread.
//
//   VantroConnectorIntegration::GetCurrentUser([weak](const std::shared_ptr<VantroUser>& user) {
//       CallFromMainThread([weak, user] { ... SetUser(user); }, 0, true); });
#pragma once

#include <functional>
#include <memory>

#include <vantrocommon/Guid.h>
#include <vantrokelui/nodes/VantroUser.h>

namespace vantrokelui::model::VantroConnectorIntegration {

/// Main thread or a view model continuation. Without an SDK client, calls `callback` with null
/// at once. Otherwise asks the service for the user and calls `callback` with a new
/// VantroSdkUser (no parent, nothing fetched) when the answer is successful; a failed or
/// refused answer never calls it. Each call sends a new request.
void GetCurrentUser(const std::function<void(const std::shared_ptr<VantroUser>&)>& callback);

/// Main thread or a view model continuation. Asks for the account and calls `callback` with
/// true only when its storage in use is above its plan's storage limit (equal is not above);
/// false when either figure or the plan is missing, the answer is refused, or the exchange
/// failed. Without an SDK client nothing happens and `callback` is never called.
void CheckStorageLimitOnAccount(const vantrocommon::Guid& accountId,
                                const std::function<void(bool)>& callback);

}  // namespace vantrokelui::model::VantroConnectorIntegration
