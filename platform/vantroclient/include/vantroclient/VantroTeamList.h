// Teams of an account that the user is in, whole. Held by InterfaceRef; any thread.
//
//   for (std::uint64_t i = 0; i < list->GetCount(); ++i) { auto item = list->GetTeam(i); }
#pragma once

#include <cstdint>
#include <vector>

#include <kelcore/classref/InterfaceRef.h>
#include <vantroclient/VantroTeam.h>
#include <vantroclient/VantroResourceList.h>
#include <vantroclient/v2/Team.h>

namespace vantro {

class VantroTeamList final : public VantroResourceList<v2::Team> {
public:
    explicit VantroTeamList(std::vector<kelcore::classref::InterfaceRef<VantroTeam>> items)
        : VantroResourceList(AsStored(std::move(items))) {}

    /// The team at `index`; null past the end. Any thread.
    kelcore::classref::InterfaceRef<VantroTeam> GetTeam(std::uint64_t index) const {
        return ItemAt<VantroTeam>(index);
    }
};

}  // namespace vantro
