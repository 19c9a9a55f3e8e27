// An asset of the datastore's store: a folder, file, version stack, bundle or a kind this
// client does not know. Its name is read under its lock (see VantroItem); its type never
// changes. Held by InterfaceRef; any thread.
//
//   if (asset->GetType() == vantro::VantroAsset::kFolder) { ... }
#pragma once

#include <kelcore/utility/ImmutableString.h>
#include <vantroclient/VantroItem.h>
#include <vantroclient/v2/Asset.h>

namespace vantro {

class VantroAsset final : public VantroItem<v2::Asset> {
public:
    static const kelcore::utility::ImmutableString kFolder;        // "folder"
    static const kelcore::utility::ImmutableString kFile;          // "file"
    static const kelcore::utility::ImmutableString kVersionStack;  // "version_stack"
    static const kelcore::utility::ImmutableString kBundle;        // "bundle"

    explicit VantroAsset(v2::Asset record) : VantroItem(record), type(record.type) {}

    /// The type as the service sent it, fixed for the asset's life. Any thread, no lock.
    const kelcore::utility::ImmutableString& GetType() const noexcept { return type; }

private:
    const kelcore::utility::ImmutableString type;
};

}  // namespace vantro
