// Sends one request through a Transport under a RetryPolicy: a retryable failure or status is
// sent again after the schedule's delay (posted to an executor, so virtual time drives it in
// tests), a final one is answered. The result is the last Reply (whatever its status) or the
// last failure; when the budget runs out on failures the future fails with that failure's code.
// Any thread; the future completes on `executor`.
//
//   SendWithRetry(transport, request, RetryPolicy{}, executor, cancel)
//       .Then(executor, [](const Future<http::Reply>& reply) { ... });
#pragma once

#include <functional>
#include <memory>

#include <kelcore/async/Future.h>
#include <kelcore/threads/AsyncExecutor.h>

#include <vantrocommon/RetryPolicy.h>
#include <vantrocommon/http/Transport.h>

namespace vantrocommon {

/// Any thread. `request` is copied for each try (a file body is read again from its offset).
/// A cancelled `cancel` stops waiting at once and fails the future with kResultCancelled.
/// `random` is the jitter's source (see RetrySchedule); empty for the real one. A null
/// `executor` means kelcore::async::GetDefaultExecutor().
kelcore::async::Future<http::Reply> SendWithRetry(
    std::shared_ptr<http::Transport> transport, http::Request request, RetryPolicy policy,
    std::shared_ptr<kelcore::threads::AsyncExecutor> executor,
    http::CancellationToken cancel = http::CancellationToken(),
    std::function<double()> random = {});

}  // namespace vantrocommon
