// Children of a folder or version stack, whole. Held by InterfaceRef; any thread.
//
//   for (std::uint64_t i = 0; i < list->GetCount(); ++i) { auto item = list->GetAsset(i); }
#pragma once

#include <cstdint>
#include <vector>

#include <kelcore/classref/InterfaceRef.h>
#include <vantroclient/VantroAsset.h>
#include <vantroclient/VantroResourceList.h>
#include <vantroclient/v2/Asset.h>

namespace vantro {

class VantroAssetList final : public VantroResourceList<v2::Asset> {
public:
    explicit VantroAssetList(std::vector<kelcore::classref::InterfaceRef<VantroAsset>> items)
        : VantroResourceList(AsStored(std::move(items))) {}

    /// The asset at `index`; null past the end. Any thread.
    kelcore::classref::InterfaceRef<VantroAsset> GetAsset(std::uint64_t index) const {
        return ItemAt<VantroAsset>(index);
    }
};

}  // namespace vantro
