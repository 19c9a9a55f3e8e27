// The order of every child list in the tree: by name, naturally and without regard to case, so
// "Clip 2" comes before "clip 10". Used by the list setters of the node classes, on the writer's
// thread; it touches only the nodes' names.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

#include <kelcore/string/CaseInsensitive.h>
#include <kelcore/string/String.h>
#include <vantrokelui/utility/NotifyingProperty.h>

namespace vantrokelui::detail {

/// A copy of `nodes` sorted by name with std::sort (equal names keep no particular order).
/// Each name is read once, before sorting: a comparison that read it through the property
/// would copy it under a lock every time, and a rename on another thread in the middle of the
/// sort would break the ordering that std::sort relies on. Elements must not be null. Any
/// thread.
template <class Node>
utility::SharedPtrVector<Node> SortedByName(const utility::SharedPtrVector<Node>& nodes) {
    struct Entry {
        kelcore::string::string name;
        std::size_t index;
    };
    std::vector<Entry> entries;
    entries.reserve(nodes.size());
    for (std::size_t index = 0; index < nodes.size(); ++index) {
        entries.push_back(Entry{nodes[index]->GetName(), index});
    }
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
        return kelcore::string::CaseInsensitive::NaturalStringLessThan(a.name, b.name);
    });
    utility::SharedPtrVector<Node> sorted;
    sorted.reserve(nodes.size());
    for (const Entry& entry : entries) {
        sorted.push_back(nodes[entry.index]);
    }
    return sorted;
}

}  // namespace vantrokelui::detail
