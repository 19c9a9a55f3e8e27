// Helpers for the node tests: node kinds that record their fetches, a small tree built the way
// a back end fills one, and a log of deliveries that observers append to on the main thread.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <kelcore/string/String.h>
#include <kelcore/utility/Guid.h>
#include <vantrokelui/nodes/VantroAccount.h>
#include <vantrokelui/nodes/VantroFile.h>
#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrokelui/nodes/VantroNode.h>
#include <vantrokelui/nodes/VantroProject.h>
#include <vantrokelui/nodes/VantroUser.h>
#include <vantrokelui/nodes/VantroVersionStack.h>
#include <vantrokelui/nodes/VantroWorkspace.h>
#include <vantrokelui/utility/NotifyingProperty.h>

namespace vantrokelui::testing {

using kelcore::string::string;

/// Names of nodes in the order in which their FetchChildren ran.
using FetchLog = std::shared_ptr<std::vector<string>>;

/// A node kind whose FetchChildren appends the node's name to a shared log, then does what the
/// kind does.
template <class Kind>
class Recording : public Kind {
public:
    Recording(std::weak_ptr<VantroNode> parent, FetchLog log)
        : Kind(std::move(parent)), log(std::move(log)) {}

    void FetchChildren() override {
        ++fetches;
        log->push_back(this->GetName());
        Kind::FetchChildren();
    }

    int fetches = 0;

private:
    FetchLog log;
};

/// A node of `Kind` below `parent` with a fresh id and the given name.
template <class Kind, class... Extra>
std::shared_ptr<Kind> MakeNode(const std::shared_ptr<VantroNode>& parent, std::u16string_view name,
                               Extra&&... extra) {
    auto node = std::make_shared<Kind>(parent, std::forward<Extra>(extra)...);
    node->SetID(kelcore::utility::Guid::CreateUnique());
    node->SetName(string(name));
    return node;
}

/// A list of shared nodes as the list properties take it.
template <class Kind>
utility::SharedPtrVector<Kind> List(std::initializer_list<std::shared_ptr<Kind>> nodes) {
    return utility::SharedPtrVector<Kind>(nodes.begin(), nodes.end());
}

/// The names of `nodes`, in their order.
template <class Kind>
std::vector<string> Names(const utility::SharedPtrVector<Kind>& nodes) {
    std::vector<string> names;
    for (const auto& node : nodes) {
        names.push_back(node->GetName());
    }
    return names;
}

/// A user with one account Studio, its workspace Team, its project Promo, the project's root
/// folder (named after the project, as the back ends do) and a folder Cuts in it.
struct StudioTree {
    std::shared_ptr<VantroUser> user;
    std::shared_ptr<VantroAccount> studio;
    std::shared_ptr<VantroWorkspace> team;
    std::shared_ptr<VantroProject> promo;
    std::shared_ptr<VantroFolder> root;
    std::shared_ptr<VantroFolder> cuts;

    StudioTree() {
        user = std::make_shared<VantroUser>();
        user->SetID(kelcore::utility::Guid::CreateUnique());
        user->SetName(u"Dana");
        studio = MakeNode<VantroAccount>(user, u"Studio");
        team = MakeNode<VantroWorkspace>(studio, u"Team");
        promo = MakeNode<VantroProject>(team, u"Promo");
        root = MakeNode<VantroFolder>(promo, u"Promo");
        cuts = MakeNode<VantroFolder>(root, u"Cuts");
        root->SetFolders(List({cuts}));
        promo->SetRootFolder(root);
        team->SetProjects(List({promo}));
        studio->SetWorkspaces(List({team}));
        user->SetAccounts(List({studio}));
    }
};

}  // namespace vantrokelui::testing
