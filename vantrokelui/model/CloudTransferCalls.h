// The share pipeline's only contact with the cloud: upload a file into a folder (as a version of
// a stack), create a review link, add an asset to a link, and cancel an upload. Each turns the
// library's ids and UTF-16 text into the SDK's, sends one request through the process-wide SDK
// client, and turns the answer into one plain callback call. Without a client each returns
// false and never calls back; true means the request was sent, not that it succeeded.
//
// Callbacks run where the SDK completes its futures (its executor; progress on its transfer
// thread), or inline in the call when the answer is already there. Nothing here switches thread
// or retries.
//
//   model::UploadToFolder(path, folder, stack, transferID, OnProgress, OnFinished);
#pragma once

#include <cstdint>
#include <functional>

#include <kelcore/string/String.h>
#include <kelcore/utility/Guid.h>

namespace vantrokelui::model {

/// Bytes of the file that the service has of bytes in all.
using UploadProgressCallback = std::function<void(std::uint64_t sent, std::uint64_t total)>;
/// The end of a transfer: the new file asset's id when `ok`; `cancelled` tells a user's cancel
/// from a failure.
using UploadFinishedCallback =
    std::function<void(bool ok, bool cancelled, const kelcore::utility::Guid& asset)>;
/// The answer to a new link: its id and URL when `ok`.
using ReviewLinkCreatedCallback = std::function<void(bool ok, const kelcore::utility::Guid& link,
                                                     const kelcore::string::string& url)>;
/// The answer to adding an asset to a link.
using AssetAddedCallback = std::function<void(bool ok)>;

/// Any thread. Starts uploading `filePath` into `folderGuid` as a version of the stack
/// `autoversionGuid` and stores the transfer's id in `transferID` before anything can answer.
/// False, with no callback ever, when there is no SDK client.
bool UploadToFolder(const kelcore::string::string& filePath,
                    const kelcore::utility::Guid& folderGuid,
                    const kelcore::utility::Guid& autoversionGuid,
                    kelcore::string::string& transferID, const UploadProgressCallback& progress,
                    const UploadFinishedCallback& finished);

/// Any thread. Asks for a new review link named `linkName` in the project. False, with no
/// callback ever, when there is no SDK client.
bool CreateReviewLink(const kelcore::utility::Guid& projectGuid,
                      const kelcore::string::string& linkName,
                      const ReviewLinkCreatedCallback& created);

/// Any thread. Adds the asset to the link. False, with no callback ever, when there is no SDK
/// client.
bool AddAssetToLink(const kelcore::utility::Guid& assetGuid,
                    const kelcore::utility::Guid& reviewLinkGuid, const AssetAddedCallback& added);

/// Any thread, synchronous. Cancels the transfer `transferID`; whether the SDK stopped it. False
/// when there is no SDK client.
bool CancelUploadByID(const kelcore::string::string& transferID);

}  // namespace vantrokelui::model
