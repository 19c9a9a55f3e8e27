// Walks the signed-in user's cloud tree by names, as the panel's picker lets a user open rows:
// accounts, then workspaces, then projects, then the project's root folder and the folders below
// it. Each level is fetched (and waited for on the main loop) when the walk first needs it.
//
// Lives on the main thread for one command; holds the user strongly for the walk.
//
//   CloudBrowser browser(loop, viewModel->GetUser());
//   const auto found = browser.Walk({"Studio", "Editors", "Alpha"});
//   if (!found.node) std::cerr << found.error;
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include <vantrokelui/nodes/VantroNode.h>
#include <vantrokelui/nodes/VantroUser.h>

#include "MainLoop.h"

namespace vantroshare {

class CloudBrowser {
public:
    /// How long one level may take to arrive before the walk gives up.
    static constexpr std::chrono::seconds kFetchLimit{60};

    struct Result {
        std::shared_ptr<vantrokelui::VantroNode> node;  ///< null when the walk failed
        std::string error;                              ///< why, naming the part
    };

    CloudBrowser(MainLoop& loop, std::shared_ptr<vantrokelui::VantroUser> user);

    /// "A/W/P/F" into its parts; empty parts (doubled or trailing slashes) are dropped.
    static std::vector<std::string> SplitPath(const std::string& path);

    /// The node at `parts`: none → the user; 1 → an account; 2 → a workspace; 3 → a project; more
    /// → folders below the project's root folder. When `allowRootName` is set, the part after
    /// the project may also name the root folder itself.
    Result Walk(const std::vector<std::string>& parts, bool allowRootName);

    /// The node's children once fetched, as the picker lists them; a project lists its root
    /// folder's children. Empty `error` on success.
    Result Children(const std::shared_ptr<vantrokelui::VantroNode>& node,
                    std::vector<std::shared_ptr<vantrokelui::VantroNode>>& children);

    /// Fetches `node`'s children when not yet fetched and waits until they are there.
    bool AwaitFetched(const std::shared_ptr<vantrokelui::VantroNode>& node);

    /// "account", "workspace", "project", "folder", "version stack", "file".
    static std::string KindOf(const std::shared_ptr<vantrokelui::VantroNode>& node);

private:
    std::shared_ptr<vantrokelui::VantroNode> RootFolderOf(
        const std::shared_ptr<vantrokelui::VantroNode>& project);

    MainLoop& loop;
    std::shared_ptr<vantrokelui::VantroUser> user;
};

}  // namespace vantroshare
