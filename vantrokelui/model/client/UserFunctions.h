// The entries by which the panel's view model and the location dialog reach the client back
// end: the signed-in user as a node, a node for a user the host already has, and sign-out.
// All go through the datastore in use (vantro::VantroDatastore::GetDatastore with the empty
// name). GetCurrentUser answers on the datastore's executor (the main thread for the
// service's datastore).
//
//   VantroClientIntegration::GetCurrentUser([weak](const std::shared_ptr<VantroUser>& user) {
//       CallFromMainThread([weak, user] { ... SetUser(user); }, 0, true); });
#pragma once

#include <functional>
#include <memory>

#include <kelcore/classref/InterfaceRef.h>
#include <vantroclient/VantroUser.h>
#include <vantrokelui/nodes/VantroUser.h>

namespace vantrokelui::model::VantroClientIntegration {

/// Any thread. The first call of the process asks the datastore for the signed-in user once
/// and keeps that one future for the life of the process; every call, the first included,
/// attaches `callback` to it on the future's executor. When the future holds a user, each
/// `callback` gets a new VantroClientUser with its ID and Name (nothing fetched). A failed
/// future, or one holding no user, never calls any `callback`, now or later: the failure
/// stays, and signing in again does not ask again.
void GetCurrentUser(const std::function<void(const std::shared_ptr<VantroUser>&)>& callback);

/// Any thread. A new VantroClientUser with the ID and Name of `user` (nothing fetched), for
/// the location dialog. A null `user` throws the null pointer exception naming its type.
std::shared_ptr<VantroUser> CreateClientUser(
    const kelcore::classref::InterfaceRef<vantro::VantroUser>& user);

/// Any thread. SignOutJwt on the datastore, then SignOutOAuth2 on the datastore as a second
/// lookup finds it. The user kept by GetCurrentUser stays as it was.
void SignOut();

}  // namespace vantrokelui::model::VantroClientIntegration
