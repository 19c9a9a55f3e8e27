#include "store/ChangeJournal.h"

#include <optional>

#include "store/StoreCore.h"

namespace vantroserver::store {

namespace {

std::optional<ChangeKind> ParseChangeKind(std::string_view name) {
    for (const auto kind : {ChangeKind::AccountList, ChangeKind::TeamList, ChangeKind::ProjectList,
                            ChangeKind::AssetList}) {
        if (ChangeKindName(kind) == name) {
            return kind;
        }
    }
    return std::nullopt;
}

}  // namespace

ChangeJournal::ChangeJournal(std::shared_ptr<StoreCore> core) : core(std::move(core)) {}

std::int64_t ChangeJournal::LatestSequence() const {
    auto lease = core->Acquire();
    Statement statement = lease->Prepare("SELECT COALESCE(MAX(sequence), 0) FROM changes");
    statement.Step();
    return statement.ColumnInt(0);
}

std::vector<Change> ChangeJournal::After(std::int64_t sequence, std::size_t limit) const {
    std::vector<Change> changes;
    auto lease = core->Acquire();
    Statement statement = lease->Prepare(
        "SELECT sequence, kind, parent_id FROM changes WHERE sequence > ? ORDER BY sequence "
        "LIMIT ?");
    statement.Bind(1, sequence).Bind(2, static_cast<std::int64_t>(limit));
    while (statement.Step()) {
        if (auto kind = ParseChangeKind(statement.ColumnText(1))) {
            changes.push_back(Change{statement.ColumnInt(0), *kind, statement.ColumnText(2)});
        }
    }
    return changes;
}

void ChangeJournal::PruneThrough(std::int64_t sequence) {
    auto lease = core->Acquire();
    lease->Prepare("DELETE FROM changes WHERE sequence <= ?").Bind(1, sequence).Run();
}

}  // namespace vantroserver::store
