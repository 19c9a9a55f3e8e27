// Sends HTTP requests. The one implementation is CurlTransport; tests of higher layers may put
// a fake in its place. Held by shared pointer; any thread.
#pragma once

#include <kelcore/async/Future.h>

#include <vantrocommon/http/CancellationToken.h>
#include <vantrocommon/http/Reply.h>
#include <vantrocommon/http/Request.h>

namespace vantrocommon::http {

class Transport {
public:
    virtual ~Transport() = default;

    /// Any thread. Starts the exchange and returns at once. The future completes on the
    /// transport's executor, never inline in this call: with the Reply for any status, or
    /// failed with kResultNetworkFailure, kResultTimedOut, kResultTlsFailure, kResultFileError,
    /// kResultInvalidArgument (a URL that is malformed or not http/https) or, after `cancel`,
    /// kResultCancelled.
    virtual kelcore::async::Future<Reply> Send(Request request,
                                               CancellationToken cancel = CancellationToken()) = 0;
};

}  // namespace vantrocommon::http
