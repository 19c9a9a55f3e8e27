// Waiting in tests for work that ends on another thread: a future that a library completes on
// its executor, or a condition that has no notification of its own. Each wait has a generous
// wall-clock limit so that a broken exchange fails the test instead of hanging it; none of them
// sleeps a fixed time in place of waiting. The test's thread.
//
//   const auto response = testsupport::Await(client->GetAccounts()->GetCurrentUser({}));
//   EXPECT_EQ(testsupport::AwaitResult(vantroauth::jwt::GetAccessToken(false)), 0);
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>

#include <kelcore/async/Future.h>
#include <kelcore/config/ResultCode.h>

namespace testsupport {

inline constexpr std::chrono::seconds kAwaitLimit{60};

/// Waits until `future` completes, at most `limit`; true when it did.
template <class T>
bool WaitFor(const kelcore::async::Future<T>& future,
             std::chrono::milliseconds limit = kAwaitLimit) {
    struct State {
        std::mutex mutex;
        std::condition_variable done;
        bool complete = false;
    };
    auto state = std::make_shared<State>();
    future.Then([state](const kelcore::async::Future<T>&) {
        const std::lock_guard lock(state->mutex);
        state->complete = true;
        state->done.notify_all();
    });
    std::unique_lock lock(state->mutex);
    return state->done.wait_for(lock, limit, [&] { return state->complete; });
}

/// Waits for `future` and answers its value (a copy); rethrows its failure, and throws
/// std::runtime_error when it did not complete in time.
template <class T>
T Await(const kelcore::async::Future<T>& future) {
    if (!WaitFor(future)) {
        throw std::runtime_error("the future did not complete within the limit");
    }
    if constexpr (!std::is_void_v<T>) {
        return future.Get();
    } else {
        future.Get();
    }
}

/// Waits for `future` and answers its result code: 0 for a value, kResultFutureNotReady when it
/// did not complete in time.
template <class T>
kelcore::config::ResultCode AwaitResult(const kelcore::async::Future<T>& future) {
    if (!WaitFor(future)) {
        return kelcore::config::kResultFutureNotReady;
    }
    return kelcore::async::ResultOf(future);
}

/// For a condition nothing announces (a log line, a file on disk): asks it every few
/// milliseconds until it holds or `limit` has passed; whether it held.
inline bool WaitUntil(const std::function<bool()>& condition,
                      std::chrono::milliseconds limit = kAwaitLimit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

}  // namespace testsupport
