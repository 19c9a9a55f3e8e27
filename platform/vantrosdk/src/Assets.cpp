#include <vantrosdk/Assets.h>

#include <utility>

#include "detail/Exchange.h"

namespace vantrosdk {

using detail::ClientCore;
using detail::Exchange;
using detail::Get;
using detail::ListOf;
using kelcore::async::Future;

Assets::Assets(std::shared_ptr<ClientCore> core) : core(std::move(core)) {}

Future<std::shared_ptr<GetChildAssetsResponse>> Assets::GetChildAssets(
    const GetChildAssetsRequest& request) {
    return Exchange<GetChildAssetsResponse>(
        core, Get(*core, "/v2/assets/" + request.GetFolderId().AsString() + "/children", request),
        ClientCore::Retry::Policy, ListOf(detail::ReadAsset));
}

}  // namespace vantrosdk
