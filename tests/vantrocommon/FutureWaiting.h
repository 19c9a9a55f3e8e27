// Waiting in tests for a future that completes on another thread: blocks on a condition the
// future's completion sets, with a generous limit so that a broken exchange fails the test
// instead of hanging it. The test's thread.
//
//   auto reply = AwaitFuture(transport->Send(request));
//   ASSERT_EQ(kelcore::async::ResultOf(reply), 0);
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>

#include <kelcore/async/Future.h>

#include "support/AwaitFuture.h"

namespace vantrocommontest {

inline constexpr std::chrono::seconds kCompletionLimit{60};

/// Returns `future` once it has completed; fails the test (and returns it pending) when that
/// takes longer than `limit`.
template <class T>
kelcore::async::Future<T> AwaitFuture(const kelcore::async::Future<T>& future,
                                      std::chrono::milliseconds limit = kCompletionLimit) {
    if (!testsupport::WaitFor(future, limit)) {
        ADD_FAILURE() << "the future did not complete within " << limit.count() << " ms";
    }
    return future;
}

/// The kel_exception text of a failed future, or empty.
template <class T>
std::string FailureText(const kelcore::async::Future<T>& future) {
    try {
        future.Get();
    } catch (const std::exception& e) {
        return e.what();
    }
    return {};
}

}  // namespace vantrocommontest
