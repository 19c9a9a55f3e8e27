// Asks for the children of a folder or version stack (GET /v2/assets/{id}/children, paged). A plain
// value; any thread.
//
//   client->GetAssets()->GetChildAssets(GetChildAssetsRequest(folderId)).Then(executor, OnAnswer);
#pragma once

#include <vantrocommon/Guid.h>
#include <vantrosdk/VantroRequest.h>

namespace vantrosdk {

class GetChildAssetsRequest : public VantroRequest {
public:
    explicit GetChildAssetsRequest(vantrocommon::Guid folderId) : folderId(folderId) {}

    const vantrocommon::Guid& GetFolderId() const { return folderId; }

private:
    vantrocommon::Guid folderId;
};

}  // namespace vantrosdk
