// Answers a GET or HEAD for a file on disk the way browsers' media players and resuming
// clients expect: `Accept-Ranges: bytes` always, a strong `ETag` and `Last-Modified`, 304 for a
// matching `If-None-Match`, 206 with `Content-Range` for one satisfiable `Range` (unless an
// `If-Range` no longer matches), 416 with `Content-Range: bytes */SIZE` for an unsatisfiable
// one, 200 with everything otherwise. The bytes stream from disk. Stateless; any thread.
//
//   RangedFile::Options options;
//   options.contentType = "video/mp4";
//   return RangedFile::Serve(context, mediaDir / assetId, options);
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "http/RequestContext.h"
#include "http/Response.h"

namespace vantroserver::http {

class RangedFile {
public:
    struct Options {
        std::string_view contentType = "application/octet-stream";
        /// A strong entity tag with its quotes; empty: made from the file's size and mtime.
        std::string etag;
        std::string_view cacheControl = "no-cache";
    };

    /// The answer for `context` (GET or HEAD) from the file at `path`; 404 when it cannot be
    /// opened as a regular file.
    static Response Serve(const RequestContext& context, const std::filesystem::path& path,
                          const Options& options);

    /// An IMF-fixdate (`Sun, 06 Nov 1994 08:49:37 GMT`) for seconds since the epoch.
    static std::string HttpDate(std::int64_t secondsSinceEpoch);
    /// Whether an `If-None-Match` value lists `etag` (weakly compared) or is `*`.
    static bool NoneMatchHits(std::string_view ifNoneMatch, std::string_view etag);
};

}  // namespace vantroserver::http
