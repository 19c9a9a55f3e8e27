// The one process-wide SDK client through which every request of the newer back end goes
// (sign-in, tree listings, transfers, review links). The sign-in stores it once a token has
// arrived and drops it at sign-out; the SDK itself keeps the client, so a later sign-in takes
// the same one back. Any thread.
//
//   if (auto client = VantroConnectorIntegration::GetClient()) client->GetReviewLinks()...
#pragma once

#include <memory>

#include <vantrosdk/VantroClient.h>

namespace vantrokelui::model::VantroConnectorIntegration {

/// Any thread. A copy of the stored pointer; null before sign-in and after sign-out.
std::shared_ptr<vantrosdk::VantroClient> GetClient();

/// Any thread. Stores `client`, replacing the one held.
void SetClient(std::shared_ptr<vantrosdk::VantroClient> client);

/// Any thread. Drops this library's pointer; the SDK's own client lives on.
void ClearClient();

}  // namespace vantrokelui::model::VantroConnectorIntegration
