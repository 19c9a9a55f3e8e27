// The answer to GetChildAssetsRequest: one page of a folder's (or version stack's) children. Made
// by the SDK on its executor; immutable afterwards, any thread.
#pragma once

#include <utility>
#include <vector>

#include <vantrocommon/http/HeaderMap.h>
#include <vantrosdk/Asset.h>
#include <vantrosdk/VantroResponse.h>

namespace vantrosdk {

class GetChildAssetsResponse : public VantroResponse {
public:
    GetChildAssetsResponse() = default;
    GetChildAssetsResponse(int httpStatusCode, vantrocommon::http::HeaderMap header,
                           std::vector<Asset> assets)
        : VantroResponse(httpStatusCode, std::move(header)), assets(std::move(assets)) {}

    /// The page's assets by name; empty when not successful.
    const std::vector<Asset>& GetChildAssetsObject() const { return assets; }

private:
    std::vector<Asset> assets;
};

}  // namespace vantrosdk
