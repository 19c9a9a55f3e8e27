// One entry of the change journal: a list that changed and the id of its parent. Written in the
// same transaction as the change itself, so a watcher never sees one without the other.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vantroserver::store {

enum class ChangeKind {
    AccountList,  ///< parentId: the user whose account list changed.
    TeamList,     ///< parentId: the account.
    ProjectList,  ///< parentId: the team, or the account for its shared projects.
    AssetList,    ///< parentId: the folder or version stack.
};

/// "account-list", "team-list", "project-list", "asset-list" (the event names).
std::string_view ChangeKindName(ChangeKind kind);

struct Change {
    std::int64_t sequence = 0;  ///< Increases with each entry; never reused.
    ChangeKind kind = ChangeKind::AssetList;
    std::string parentId;
};

}  // namespace vantroserver::store
