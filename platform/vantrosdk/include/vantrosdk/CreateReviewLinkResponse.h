// The answer to CreateReviewLinkRequest: the new link (201) with its URL. Made by the SDK on its
// executor; immutable afterwards, any thread.
#pragma once

#include <utility>

#include <vantrocommon/http/HeaderMap.h>
#include <vantrosdk/ReviewLink.h>
#include <vantrosdk/VantroResponse.h>

namespace vantrosdk {

class CreateReviewLinkResponse : public VantroResponse {
public:
    CreateReviewLinkResponse() = default;
    CreateReviewLinkResponse(int httpStatusCode, vantrocommon::http::HeaderMap header,
                             ReviewLink reviewLink)
        : VantroResponse(httpStatusCode, std::move(header)), reviewLink(std::move(reviewLink)) {}

    /// The link; empty fields when the answer was not successful.
    const ReviewLink& GetReviewLinkObject() const { return reviewLink; }

private:
    ReviewLink reviewLink;
};

}  // namespace vantrosdk
