// The contents of folders and version stacks. Held by VantroClient and by shared pointer by
// callers. Any thread; futures complete on the SDK's executor with a response for any status,
// as Accounts.h says.
#pragma once

#include <memory>

#include <kelcore/async/Future.h>
#include <vantrosdk/GetChildAssetsRequest.h>
#include <vantrosdk/GetChildAssetsResponse.h>

namespace vantrosdk {

namespace detail {
class ClientCore;
}

class Assets {
public:
    /// Made by VantroClient around its core.
    explicit Assets(std::shared_ptr<detail::ClientCore> core);

    /// GET /v2/assets/{id}/children, the request's page.
    kelcore::async::Future<std::shared_ptr<GetChildAssetsResponse>> GetChildAssets(
        const GetChildAssetsRequest& request);

private:
    std::shared_ptr<detail::ClientCore> core;
};

}  // namespace vantrosdk
