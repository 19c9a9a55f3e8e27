// The journal of list changes, written by every store write in its own transaction (whichever
// process makes it: the server or an admin command). The server remembers the last sequence it
// has seen and polls for newer entries to publish as events. Part of a Store; any thread.
//
//   auto last = journal.LatestSequence();
//   for (const Change& change : journal.After(last)) { ... last = change.sequence; }
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "store/Change.h"

namespace vantroserver::store {

class StoreCore;

class ChangeJournal {
public:
    explicit ChangeJournal(std::shared_ptr<StoreCore> core);

    /// The newest entry's sequence; 0 when the journal is empty.
    std::int64_t LatestSequence() const;

    /// Entries newer than `sequence`, oldest first, at most `limit`.
    std::vector<Change> After(std::int64_t sequence, std::size_t limit = 1000) const;

    /// Forgets entries up to and including `sequence`.
    void PruneThrough(std::int64_t sequence);

private:
    std::shared_ptr<StoreCore> core;
};

}  // namespace vantroserver::store
