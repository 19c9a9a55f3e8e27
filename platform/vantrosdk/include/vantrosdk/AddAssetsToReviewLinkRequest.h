// Adds files or version stacks to a review link (POST /v2/review_links/{id}/assets). All or
// nothing; an asset already in the link keeps its place, so sending it again is harmless and
// the request is retried like a GET. A plain value; any thread.
//
//   client->GetReviewLinks()->AddAssetsToReviewLink(
//       AddAssetsToReviewLinkRequest(link, {asset})).Then(executor, OnAdded);
#pragma once

#include <utility>
#include <vector>

#include <vantrocommon/Guid.h>
#include <vantrosdk/VantroRequest.h>

namespace vantrosdk {

class AddAssetsToReviewLinkRequest : public VantroRequest {
public:
    /// At most 1000 assets (the service checks).
    AddAssetsToReviewLinkRequest(vantrocommon::Guid reviewLinkId,
                                 std::vector<vantrocommon::Guid> assetIds)
        : reviewLinkId(reviewLinkId), assetIds(std::move(assetIds)) {}

    const vantrocommon::Guid& GetReviewLinkId() const { return reviewLinkId; }
    const std::vector<vantrocommon::Guid>& GetAssetIds() const { return assetIds; }

private:
    vantrocommon::Guid reviewLinkId;
    std::vector<vantrocommon::Guid> assetIds;
};

}  // namespace vantrosdk
