// A whole list as the datastore answers it: every item of every page, in the service's order,
// fixed once made. Items are shared with the datastore's store (see VantroItem). One instance
// per record type: v2::Account, v2::Team, v2::Project, v2::Asset. Held by InterfaceRef; any
// thread.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include <kelcore/classref/InterfaceRef.h>
#include <kelcore/utility/RefCountedObjectWithWeakPtr.h>
#include <vantroclient/VantroItem.h>

namespace vantro {

template <typename Record>
class VantroResourceList : public kelcore::utility::RefCountedObjectWithWeakPtr {
public:
    /// How many items the list holds. Any thread.
    std::uint64_t GetCount() const noexcept { return items.size(); }

protected:
    explicit VantroResourceList(std::vector<kelcore::classref::InterfaceRef<VantroItem<Record>>> items)
        : items(std::move(items)) {}

    /// The item at `index`, as the derived list's own item type; null past the end.
    template <typename Item>
    kelcore::classref::InterfaceRef<Item> ItemAt(std::uint64_t index) const {
        if (index >= items.size()) {
            return nullptr;
        }
        // Only the derived list, which stores its own item type, constructs this base.
        return kelcore::classref::InterfaceRef<Item>(static_cast<Item*>(items[index].get()));
    }

    /// The items of a derived list, as the base stores them.
    template <typename Item>
    static std::vector<kelcore::classref::InterfaceRef<VantroItem<Record>>> AsStored(
        std::vector<kelcore::classref::InterfaceRef<Item>> derived) {
        return {std::make_move_iterator(derived.begin()), std::make_move_iterator(derived.end())};
    }

private:
    const std::vector<kelcore::classref::InterfaceRef<VantroItem<Record>>> items;
};

}  // namespace vantro
