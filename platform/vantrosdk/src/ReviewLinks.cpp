#include <vantrosdk/ReviewLinks.h>

#include <utility>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>

#include "detail/Exchange.h"

namespace vantrosdk {

using detail::ClientCore;
using detail::Exchange;
using detail::Get;
using kelcore::async::Future;

ReviewLinks::ReviewLinks(std::shared_ptr<ClientCore> core) : core(std::move(core)) {}

Future<std::shared_ptr<CreateReviewLinkResponse>> ReviewLinks::CreateReviewLink(
    const CreateReviewLinkRequest& request) {
    // Sent once: a second try after a lost answer could make a second link.
    return Exchange<CreateReviewLinkResponse>(
        core,
        detail::PostJson(*core,
                         "/v2/projects/" + request.GetProjectId().AsString() + "/review_links",
                         boost::json::object{{"name", request.GetName()}}),
        ClientCore::Retry::Once, detail::ReadReviewLink);
}

Future<std::shared_ptr<AddAssetsToReviewLinkResponse>> ReviewLinks::AddAssetsToReviewLink(
    const AddAssetsToReviewLinkRequest& request) {
    boost::json::array ids;
    for (const auto& id : request.GetAssetIds()) {
        ids.emplace_back(id.AsString());
    }
    // Adding again keeps an asset's place, so a repeat after a lost answer is harmless.
    return Exchange<AddAssetsToReviewLinkResponse>(
        core,
        detail::PostJson(*core,
                         "/v2/review_links/" + request.GetReviewLinkId().AsString() + "/assets",
                         boost::json::object{{"asset_ids", std::move(ids)}}),
        ClientCore::Retry::Policy, detail::ReadReviewLink);
}

}  // namespace vantrosdk
