#include "store/Change.h"

namespace vantroserver::store {

std::string_view ChangeKindName(ChangeKind kind) {
    switch (kind) {
        case ChangeKind::AccountList:
            return "account-list";
        case ChangeKind::TeamList:
            return "team-list";
        case ChangeKind::ProjectList:
            return "project-list";
        case ChangeKind::AssetList:
            return "asset-list";
    }
    return "asset-list";
}

}  // namespace vantroserver::store
