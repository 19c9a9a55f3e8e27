// A project of the datastore's store; its name is read under its lock (see VantroItem). Held by
// InterfaceRef; any thread.
#pragma once

#include <vantroclient/VantroItem.h>
#include <vantroclient/v2/Project.h>

namespace vantro {

class VantroProject final : public VantroItem<v2::Project> {
public:
    explicit VantroProject(v2::Project record)
        : VantroItem(record), rootAssetID(record.rootAssetID) {}

    /// The project's root folder; fixed for the project's life, so no lock. Any thread.
    const kelcore::utility::Guid& GetRootAssetID() const noexcept { return rootAssetID; }

private:
    const kelcore::utility::Guid rootAssetID;
};

}  // namespace vantro
