// Walks up the cloud location tree: the project, workspace or account that a node belongs to.
// Each walk starts with the node itself and follows the weak parent links, so it works for a
// node that a re-fetch has taken out of the tree as long as its parents live. Any thread.
//
//   std::shared_ptr<VantroProject> project = GetProject(user->GetSelection());
#pragma once

#include <memory>

namespace vantrokelui {

class VantroAccount;
class VantroNode;
class VantroProject;
class VantroWorkspace;

/// `node` itself or its nearest ancestor that is a project; null when there is none or `node`
/// is null.
std::shared_ptr<VantroProject> GetProject(const std::shared_ptr<VantroNode>& node);
/// `node` itself or its nearest ancestor that is an account; null when there is none or `node`
/// is null.
std::shared_ptr<VantroAccount> GetAccount(const std::shared_ptr<VantroNode>& node);
/// `node` itself or its nearest ancestor that is a workspace; null when there is none or `node`
/// is null.
std::shared_ptr<VantroWorkspace> GetWorkspace(const std::shared_ptr<VantroNode>& node);

}  // namespace vantrokelui
