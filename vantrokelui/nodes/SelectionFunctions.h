// The user's choice of location: forgetting it, and the two texts derived from a selected
// folder, its path as shown to the user and the address of its project's settings page. Any
// thread.
//
//   MakeSelectionPath(cuts);   // u"Studio/Team/Promo/Cuts": account first, root folder left out
//   MakeSettingsURL(cuts);     // u"<web base>/projects/<project id>/review-links"
#pragma once

#include <memory>

#include <kelcore/string/String.h>

namespace vantrokelui {

class VantroNode;
class VantroUser;

/// Sets the user's ProposedAccount, ProposedSelection and Selection to null, in that order.
/// Does nothing for a null user.
void ResetSelection(const std::shared_ptr<VantroUser>& user);

/// The path of `node` from its account down, separated by "/": the account's name, then "/" and
/// the name of each node below it, the project's root folder left out (so the root folder
/// itself gives the project's path). "/" for a null node and for a node with no account above
/// it.
kelcore::string::string MakeSelectionPath(const std::shared_ptr<VantroNode>& node);

/// The settings page of the project above `node`: the service's web base, "/projects/", the
/// project's id and "/review-links". Empty for a null node and for one with no project above
/// it. The web base is read from the service endpoint's configuration at each call.
kelcore::string::string MakeSettingsURL(const std::shared_ptr<VantroNode>& node);

}  // namespace vantrokelui
