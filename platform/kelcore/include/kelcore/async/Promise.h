// The producing end of a Future: whoever does the work holds the Promise (move-only; shared
// when a copyable closure must carry it) and completes it once, from any thread. A promise
// destroyed before it completed cancels its future, so a continuation is never left waiting for
// good.
//
//   auto promise = std::make_shared<Promise<int>>(kelcore::async::GetDefaultExecutor());
//   auto future = promise->GetFuture();
//   executor->Post([promise] { promise->SetValue(42); });
#pragma once

#include <exception>
#include <memory>
#include <utility>

#include <kelcore/async/detail/FutureState.h>
#include <kelcore/threads/AsyncExecutor.h>

namespace kelcore::async {

template <class T>
class Future;

template <class T>
class Promise {
public:
    /// A promise whose future carries no executor.
    Promise() : Promise(nullptr) {}
    /// A promise whose future carries `executor` (see Future::GetExecutor).
    explicit Promise(std::shared_ptr<threads::AsyncExecutor> executor)
        : state(std::make_shared<detail::FutureState<T>>(std::move(executor))) {}

    /// Cancels the future if no outcome was set.
    ~Promise() { Abandon(); }

    Promise(Promise&&) noexcept = default;
    /// Cancels this promise's own future, if still pending, before taking the other's.
    Promise& operator=(Promise&& other) noexcept {
        if (this != &other) {
            Abandon();
            state = std::move(other.state);
        }
        return *this;
    }
    Promise(const Promise&) = delete;
    Promise& operator=(const Promise&) = delete;

    /// Any thread. Stores the value (made from `args`; none for void) and runs the waiting
    /// continuations on this thread. Does nothing if the future is already complete or
    /// cancelled, or if this promise was moved from.
    template <class... Args>
    void SetValue(Args&&... args) {
        if (state) {
            state->SetValue(std::forward<Args>(args)...);
        }
    }

    /// Any thread. Fails the future with `error` (a null one reads as an unknown failure) and
    /// runs the waiting continuations on this thread. Does nothing if the future is already
    /// complete or cancelled, or if this promise was moved from.
    void SetException(std::exception_ptr error) {
        if (state) {
            state->SetException(std::move(error));
        }
    }

    /// Any thread. Whether the future has an outcome (or was cancelled through a Future).
    bool IsReady() const { return state && state->IsReady(); }

    /// Any thread. A future of this promise; may be called many times. Empty (see
    /// Future::IsValid) if this promise was moved from.
    Future<T> GetFuture() const;

private:
    void Abandon() noexcept {
        if (state) {
            state->Cancel();
        }
    }

    std::shared_ptr<detail::FutureState<T>> state;
};

}  // namespace kelcore::async

#include <kelcore/async/Future.h>
