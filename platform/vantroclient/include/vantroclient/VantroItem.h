// One item of the datastore's store (an account, team, project, asset or user) as the lists
// hand it out. The datastore keeps one item per id and refreshes its record in place when a
// later listing brings new values, so an item seen in an old list reads the newest name. The
// record is therefore read under the item's own lock; the id never changes and needs none.
// Held by InterfaceRef; any thread.
//
//   const auto lock = team->Lock();
//   const std::string name = team->GetName(lock).value_or("");
#pragma once

#include <cassert>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include <kelcore/utility/Guid.h>
#include <kelcore/utility/RefCountedObjectWithWeakPtr.h>

namespace vantro {

template <typename Record>
class VantroItem : public kelcore::utility::RefCountedObjectWithWeakPtr {
public:
    using Lock_t = std::unique_lock<std::mutex>;

    /// The item's id, fixed for its life. Any thread, no lock.
    const kelcore::utility::Guid& GetID() const noexcept { return id; }

    /// Takes the item's lock, for reading its record. Any thread.
    [[nodiscard]] Lock_t Lock() const { return Lock_t(mutex); }

    /// The record; `held` must be this item's lock, held. Any thread.
    const Record& GetRecord(const Lock_t& held) const {
        assert(held.mutex() == &mutex && held.owns_lock());
        static_cast<void>(held);
        return record;
    }
    /// The name, or nothing when the service gave none; `held` as for GetRecord.
    const std::optional<std::string>& GetName(const Lock_t& held) const {
        return GetRecord(held).name;
    }

    /// Replaces the record with newer values of the same item (the id stays). The datastore's
    /// thread.
    void Update(Record newer) {
        std::lock_guard lock(mutex);
        newer.id = id;
        record = std::move(newer);
    }

protected:
    explicit VantroItem(Record record) : id(record.id), record(std::move(record)) {}

private:
    const kelcore::utility::Guid id;
    mutable std::mutex mutex;
    Record record;
};

}  // namespace vantro
