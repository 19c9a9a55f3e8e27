// Where a streamed request body goes: a route that must not hold its body in memory (an upload
// part) answers the request's header with a sink, and the connection hands it the body piece
// by piece as it arrives, then asks it for the answer. Owned by the connection (shared_ptr)
// for one request; called on that connection's strand, one call at a time.
//
//   std::optional<Response> refusal = sink->Write(piece);  // each piece, in order
//   Response answer = sink->Finish();                       // after the last one
//   sink->Abort();                                          // or: the body never ended
#pragma once

#include <optional>
#include <span>

#include "http/Response.h"

namespace vantroserver::http {

class BodySink {
public:
    virtual ~BodySink() = default;

    /// The next piece of the body. An answer stops the reading: the body is refused (the sink
    /// has already let go of what it kept) and the connection closes after that answer.
    virtual std::optional<Response> Write(std::span<const char> piece) = 0;
    /// The whole body arrived; the answer to the request.
    virtual Response Finish() = 0;
    /// The body will not end (the client went away, a timeout, the server stops): keep nothing.
    virtual void Abort() = 0;
};

}  // namespace vantroserver::http
