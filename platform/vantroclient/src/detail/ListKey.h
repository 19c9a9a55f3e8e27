// Names one thing the datastore keeps: a kind of list and the parent it belongs to (nil for the
// accounts, which belong to the signed-in user, and for the user). A plain value; any thread.
#pragma once

#include <compare>

#include <kelcore/utility/Guid.h>

namespace vantro::detail {

enum class ListKind { Accounts, Teams, Projects, Assets, User };

struct ListKey {
    ListKind kind = ListKind::Accounts;
    kelcore::utility::Guid parent{};

    friend auto operator<=>(const ListKey&, const ListKey&) = default;
};

}  // namespace vantro::detail
