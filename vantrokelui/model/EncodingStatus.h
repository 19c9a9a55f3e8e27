// Where a share job stands, from the encoder's queue to the end of the upload. The numbers are
// fixed: the host sends them by job id and the panel chooses its screen by them. The library
// itself writes only Queued, CancelRequested, UploadDone, UploadFailed and UploadCancelled.
#pragma once

#include <cstdint>

namespace vantrokelui {

enum class EncodingStatus : std::int32_t {
    None = 0,             ///< no job for the active sequence
    Queued = 1,           ///< handed to the host; the encoder has not started
    Encoding = 2,         ///< the encoder is rendering
    Encoded = 3,          ///< the encoder has finished
    EncodingFailed = 4,   ///< the encoder failed; setting it fails the share
    CancelRequested = 5,  ///< cancelled while queued; waits for the host in the cancel queue
    Uploading = 6,        ///< the transfer is running
    UploadDone = 7,       ///< the transfer has finished
    UploadFailed = 8,     ///< the transfer failed, or its cancel was refused
    UploadCancelled = 9,  ///< the transfer was cancelled
};

}  // namespace vantrokelui
