#include "CloudBrowser.h"

#include <sstream>

#include <vantrokelui/nodes/FetchChildrenState.h>
#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrokelui/nodes/VantroProject.h>

namespace vantroshare {

namespace {

std::string NameOf(const std::shared_ptr<vantrokelui::VantroNode>& node) {
    return kelcore::string::UTF16toStdString(node->GetName());
}

}  // namespace

CloudBrowser::CloudBrowser(MainLoop& loop, std::shared_ptr<vantrokelui::VantroUser> user)
    : loop(loop), user(std::move(user)) {}

std::vector<std::string> CloudBrowser::SplitPath(const std::string& path) {
    std::vector<std::string> parts;
    std::stringstream stream(path);
    for (std::string part; std::getline(stream, part, '/');) {
        if (!part.empty()) {
            parts.push_back(part);
        }
    }
    return parts;
}

std::string CloudBrowser::KindOf(const std::shared_ptr<vantrokelui::VantroNode>& node) {
    const std::string tag = kelcore::string::UTF16toStdString(node->GetTypeTag());
    if (tag == "Acct") {
        return "account";
    }
    if (tag == "Wksp") {
        return "workspace";
    }
    if (tag == "Proj") {
        return "project";
    }
    if (tag == "Fold") {
        return "folder";
    }
    if (tag == "Vers") {
        return "version stack";
    }
    if (tag == "File") {
        return "file";
    }
    return tag;
}

bool CloudBrowser::AwaitFetched(const std::shared_ptr<vantrokelui::VantroNode>& node) {
    using vantrokelui::FetchChildrenState;
    if (node->GetFetchChildrenState() == FetchChildrenState::NotFetched) {
        node->FetchChildren();
    }
    // The binding's deliveries come through the main queue, which is what wakes the loop.
    const auto binding = node->AddFetchChildrenStateBinding([](const FetchChildrenState&) {});
    return loop.RunUntil(
        [&] { return node->GetFetchChildrenState() == FetchChildrenState::Fetched; }, kFetchLimit);
}

std::shared_ptr<vantrokelui::VantroNode> CloudBrowser::RootFolderOf(
    const std::shared_ptr<vantrokelui::VantroNode>& project) {
    // A project comes with its root folder; it has nothing else to fetch.
    const auto asProject = std::dynamic_pointer_cast<vantrokelui::VantroProject>(project);
    return asProject ? asProject->GetRootFolder() : nullptr;
}

CloudBrowser::Result CloudBrowser::Children(
    const std::shared_ptr<vantrokelui::VantroNode>& node,
    std::vector<std::shared_ptr<vantrokelui::VantroNode>>& children) {
    std::shared_ptr<vantrokelui::VantroNode> listed = node;
    if (KindOf(node) == "project") {
        listed = RootFolderOf(node);
        if (!listed) {
            return {nullptr, "the root folder of the project \"" + NameOf(node) +
                                 "\" did not arrive from the service"};
        }
    }
    if (!AwaitFetched(listed)) {
        return {nullptr,
                "the contents of \"" + NameOf(listed) + "\" did not arrive from the service"};
    }
    const auto found = listed->GetChildren();
    children.assign(found.begin(), found.end());
    return {listed, {}};
}

CloudBrowser::Result CloudBrowser::Walk(const std::vector<std::string>& parts, bool allowRootName) {
    static const char* const kLevels[] = {"account", "workspace", "project"};
    std::shared_ptr<vantrokelui::VantroNode> node = user;
    std::string where = "your accounts";
    for (std::size_t index = 0; index < parts.size(); ++index) {
        const std::string& part = parts[index];
        std::vector<std::shared_ptr<vantrokelui::VantroNode>> children;
        Result listed = Children(node, children);
        if (!listed.node) {
            return listed;
        }
        std::shared_ptr<vantrokelui::VantroNode> next;
        for (const auto& child : children) {
            if (NameOf(child) == part && (index < 3 || KindOf(child) == "folder")) {
                next = child;
                break;
            }
        }
        if (!next && index == 3 && allowRootName && NameOf(listed.node) == part) {
            node = listed.node;  // the root folder named by itself
            where = "the folder \"" + part + "\"";
            continue;
        }
        if (!next) {
            const std::string kind = index < 3 ? kLevels[index] : "folder";
            return {nullptr, "no " + kind + " named \"" + part + "\" in " + where};
        }
        node = next;
        where = "the " + KindOf(next) + " \"" + part + "\"";
    }
    return {node, {}};
}

}  // namespace vantroshare
