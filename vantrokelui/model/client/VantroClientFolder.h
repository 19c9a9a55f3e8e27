// A folder as the client back end sees it: a project's root folder (its id the project's root
// asset id, no name) or a folder below one. FetchChildren asks the datastore for the folder's
// whole asset list and sorts it by type into folders, files and version stacks, replacing all
// three lists at once; bundles and kinds this client does not know are skipped. Folders are
// fetched only when someone asks. After its first fill the folder listens for AssetListChanged
// and fetches again when the message names this folder.
//
// Owned by its parent's Folders list or its project's RootFolder (or a Selection), holding the
// parent weakly. FetchChildren: any thread; AddChildren and messages: the datastore's executor;
// it may die on any thread.
//
//   folder->FetchChildren();   // Fetching, old lists kept; then the new lists, Fetched
#pragma once

#include <memory>

#include <kelcore/classref/InterfaceRef.h>
#include <kelcore/messaging/RawMessage.h>
#include <vantroclient/VantroAssetList.h>
#include <vantrokelui/model/client/DatastoreListener.h>
#include <vantrokelui/nodes/VantroFolder.h>

namespace vantrokelui::model::VantroClientIntegration {

class VantroClientFolder : public VantroFolder, public DatastoreListener {
public:
    /// A folder below `parent`, a project or another folder, with no id or name yet.
    explicit VantroClientFolder(std::weak_ptr<VantroNode> parent);
    /// Leaves the datastore's station before anything of the node goes.
    ~VantroClientFolder() override;

    /// Sets Fetching (the lists stay until the answer replaces them) and asks the datastore
    /// for the assets of this folder's ID. A failed answer changes nothing more. Any thread.
    void FetchChildren() override;

    /// On AssetListChanged for this folder's ID, fetches again; anything else does nothing.
    /// The sending thread.
    void ReceiveRawMessage(const kelcore::messaging::RawMessage& message) override;

    /// Makes a VantroClientFolder, VantroClientFile or VantroClientVersionStack for each asset
    /// of `list` whose type is kFolder, kFile or kVersionStack (name read under the asset's
    /// lock), skipping any other; stores Folders, Files and VersionStacks in that order, sets
    /// Fetched and subscribes. A null list or item throws the null pointer exception naming
    /// its type, before anything is stored. The datastore's executor.
    void AddChildren(const kelcore::classref::InterfaceRef<vantro::VantroAssetList>& list);
};

}  // namespace vantrokelui::model::VantroClientIntegration
