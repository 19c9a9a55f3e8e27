// Review links: making one in a project and adding files or version stacks to it. Held by
// VantroClient and by shared pointer by callers. Any thread; futures complete on the SDK's
// executor with a response for any status, as Accounts.h says. Creating is sent once (a retry
// could make a second link); adding is retried like a GET, since an asset added again keeps
// its place.
#pragma once

#include <memory>

#include <kelcore/async/Future.h>
#include <vantrosdk/AddAssetsToReviewLinkRequest.h>
#include <vantrosdk/AddAssetsToReviewLinkResponse.h>
#include <vantrosdk/CreateReviewLinkRequest.h>
#include <vantrosdk/CreateReviewLinkResponse.h>

namespace vantrosdk {

namespace detail {
class ClientCore;
}

class ReviewLinks {
public:
    /// Made by VantroClient around its core.
    explicit ReviewLinks(std::shared_ptr<detail::ClientCore> core);

    /// POST /v2/projects/{id}/review_links {"name"}; not retried.
    kelcore::async::Future<std::shared_ptr<CreateReviewLinkResponse>> CreateReviewLink(
        const CreateReviewLinkRequest& request);
    /// POST /v2/review_links/{id}/assets {"asset_ids"}; retried under the policy.
    kelcore::async::Future<std::shared_ptr<AddAssetsToReviewLinkResponse>> AddAssetsToReviewLink(
        const AddAssetsToReviewLinkRequest& request);

private:
    std::shared_ptr<detail::ClientCore> core;
};

}  // namespace vantrosdk
