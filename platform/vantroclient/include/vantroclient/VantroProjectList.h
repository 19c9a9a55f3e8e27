// Projects of a team, whole. Held by InterfaceRef; any thread.
//
//   for (std::uint64_t i = 0; i < list->GetCount(); ++i) { auto item = list->GetProject(i); }
#pragma once

#include <cstdint>
#include <vector>

#include <kelcore/classref/InterfaceRef.h>
#include <vantroclient/VantroProject.h>
#include <vantroclient/VantroResourceList.h>
#include <vantroclient/v2/Project.h>

namespace vantro {

class VantroProjectList final : public VantroResourceList<v2::Project> {
public:
    explicit VantroProjectList(std::vector<kelcore::classref::InterfaceRef<VantroProject>> items)
        : VantroResourceList(AsStored(std::move(items))) {}

    /// The project at `index`; null past the end. Any thread.
    kelcore::classref::InterfaceRef<VantroProject> GetProject(std::uint64_t index) const {
        return ItemAt<VantroProject>(index);
    }
};

}  // namespace vantro
