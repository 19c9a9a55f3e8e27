// The consuming end of an asynchronous result. A Future is a cheap handle (copies share one
// state); it is either empty, pending, or complete with a value, a failure (an exception) or a
// cancellation. Continuations attached with Then receive the completed future and give a new
// one; with an executor they are always posted to it, never run inline, and without one they
// run inline when the future is already complete, else on the thread that completes it.
// Handles may be used on any thread; a single handle is not for concurrent assignment.
//
//   GetToken().Then(executor, [](const Future<std::string>& token) {
//       if (kelcore::config::ExtractResultFromException(token) < 0) return;
//       Use(token.Get()); });
#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

#include <kelcore/async/Executors.h>
#include <kelcore/async/Promise.h>
#include <kelcore/async/detail/FutureState.h>
#include <kelcore/config/ErrorHandling.h>
#include <kelcore/config/ResultCode.h>
#include <kelcore/threads/AsyncExecutor.h>

namespace kelcore::async {

template <class T>
class Future;

namespace detail {

template <class T, class F>
using ContinuationResult = std::decay_t<std::invoke_result_t<F&, const Future<T>&>>;

// Holds a continuation and the promise of its result, shared by the closures that may run it.
// If none of them ever runs it (an executor dropped the task), the promise cancels the result.
template <class T, class F>
struct ContinuationJob {
    using Result = ContinuationResult<T, F>;

    ContinuationJob(F fn, Promise<Result> next) : fn(std::move(fn)), next(std::move(next)) {}

    void Run(const Future<T>& completed) {
        try {
            if constexpr (std::is_void_v<Result>) {
                std::invoke(fn, completed);
                next.SetValue();
            } else {
                next.SetValue(std::invoke(fn, completed));
            }
        } catch (...) {
            next.SetException(std::current_exception());
        }
    }

    F fn;
    Promise<Result> next;
};

}  // namespace detail

template <class T>
class Future {
public:
    using GetResult = std::conditional_t<std::is_void_v<T>, void, const detail::Stored<T>&>;

    /// An empty future: it behaves as a cancelled one, and its continuations are never called.
    Future() = default;

    /// Any thread. False for an empty future (default-made, or from a moved-from promise).
    bool IsValid() const { return state != nullptr; }

    /// Any thread. Whether it holds a value, a failure or a cancellation. False when empty.
    bool IsReady() const { return state && state->IsReady(); }

    /// Any thread. The value (a reference valid while this future lives; nothing for void).
    /// Rethrows a stored failure; throws kel_exception "Future: Not Ready"
    /// (kResultFutureNotReady) when pending, "Future Is Cancelled" (kResultFutureCancelled)
    /// when cancelled or empty. Never waits.
    GetResult Get() const {
        if (!state) {
            std::rethrow_exception(detail::MakeCancelledError());
        }
        state->ThrowUnlessValue();
        if constexpr (!std::is_void_v<T>) {
            return state->Value();
        }
    }

    /// Any thread. Completes a pending future as cancelled, running its continuations on this
    /// thread; the promise's later outcome is dropped. Does nothing when complete or empty.
    void Cancel() const {
        if (state) {
            state->Cancel();
        }
    }

    /// Any thread. The executor given to the promise, or null (also once that executor is
    /// gone: the future observes it and does not keep it alive).
    std::shared_ptr<threads::AsyncExecutor> GetExecutor() const {
        return state ? state->GetExecutor() : nullptr;
    }

    /// Any thread. Keeps the shared state, and so the continuations attached to it, alive
    /// until it completes, even if every handle is dropped. Does nothing when complete or empty.
    void KeepAlive() const {
        if (state) {
            state->KeepAlive();
        }
    }

    /// Any thread. Attaches `fn(const Future<T>&)` to run once this future completes: inline
    /// now, on this thread, if it already has; otherwise on the thread that completes it.
    /// Returns the future of what `fn` returns (failed if `fn` throws); it carries no executor.
    /// On an empty future `fn` is never called and the result is cancelled.
    template <class F>
    Future<detail::ContinuationResult<T, std::decay_t<F>>> Then(F&& fn) const {
        return Then(nullptr, std::forward<F>(fn));
    }

    /// Any thread. Attaches `fn(const Future<T>&)` to be posted to `executor` once this future
    /// completes; it is never run inline, even when the future is complete already. The
    /// result carries `executor`. A null executor means the inline form above. On an empty
    /// future `fn` is never called and the result is cancelled.
    template <class F>
    Future<detail::ContinuationResult<T, std::decay_t<F>>> Then(
        std::shared_ptr<threads::AsyncExecutor> executor, F&& fn) const;

    /// Any thread. Attaches two handlers, both posted to `executor` (never inline) once this
    /// future completes: `onValue(const T&)` (`onValue()` for void) when it holds a value,
    /// otherwise `onFailure(std::exception_ptr)` with its failure (a cancellation arrives as
    /// the "Future Is Cancelled" kel_exception). Exactly one of them runs. An exception thrown
    /// by `onValue` fails the returned future and is not passed to `onFailure`.
    template <class OnValue, class OnFailure>
    Future<void> Then(std::shared_ptr<threads::AsyncExecutor> executor, OnValue&& onValue,
                      OnFailure&& onFailure) const;

private:
    template <class>
    friend class Future;
    template <class>
    friend class Promise;
    template <class U>
    friend config::ResultCode ResultOf(const Future<U>& future) noexcept;

    explicit Future(std::shared_ptr<detail::FutureState<T>> state) : state(std::move(state)) {}

    std::shared_ptr<detail::FutureState<T>> state;
};

template <class T>
template <class F>
Future<detail::ContinuationResult<T, std::decay_t<F>>> Future<T>::Then(
    std::shared_ptr<threads::AsyncExecutor> executor, F&& fn) const {
    using Job = detail::ContinuationJob<T, std::decay_t<F>>;
    auto job = std::make_shared<Job>(std::forward<F>(fn), Promise<typename Job::Result>(executor));
    auto result = job->next.GetFuture();
    if (!state) {
        job.reset();  // its promise cancels the result
        return result;
    }
    state->AddContinuation([executor = std::move(executor), job = std::move(job)](
                               const std::shared_ptr<detail::FutureStateBase>& completed) {
        Future<T> future(std::static_pointer_cast<detail::FutureState<T>>(completed));
        if (!executor) {
            job->Run(future);
            return;
        }
        try {
            executor->Post([job, future = std::move(future)] { job->Run(future); });
        } catch (...) {
            job->next.SetException(std::current_exception());
        }
    });
    return result;
}

template <class T>
template <class OnValue, class OnFailure>
Future<void> Future<T>::Then(std::shared_ptr<threads::AsyncExecutor> executor, OnValue&& onValue,
                             OnFailure&& onFailure) const {
    return Then(std::move(executor),
                [onValue = std::forward<OnValue>(onValue),
                 onFailure = std::forward<OnFailure>(onFailure)](const Future<T>& completed) {
                    std::exception_ptr failure;
                    try {
                        completed.Get();
                    } catch (...) {
                        failure = std::current_exception();
                    }
                    if (failure) {
                        onFailure(failure);
                    } else if constexpr (std::is_void_v<T>) {
                        onValue();
                    } else {
                        onValue(completed.Get());
                    }
                });
}

template <class T>
Future<T> Promise<T>::GetFuture() const {
    return Future<T>(state);
}

/// Any thread. 0 for a future holding a value, otherwise the negative code of its outcome (see
/// config::ExtractResultFromException for futures).
template <class T>
config::ResultCode ResultOf(const Future<T>& future) noexcept {
    return future.state ? future.state->Result() : config::kResultFutureCancelled;
}

/// A future that already holds `value`.
template <class T>
Future<std::decay_t<T>> MakeReadyFuture(T&& value) {
    Promise<std::decay_t<T>> promise;
    promise.SetValue(std::forward<T>(value));
    return promise.GetFuture();
}

/// A Future<void> that is already complete.
inline Future<void> MakeReadyFuture() {
    Promise<void> promise;
    promise.SetValue();
    return promise.GetFuture();
}

/// A future that already failed with `error`.
template <class T>
Future<T> MakeFailedFuture(std::exception_ptr error) {
    Promise<T> promise;
    promise.SetException(std::move(error));
    return promise.GetFuture();
}

}  // namespace kelcore::async

namespace kelcore::config {

/// Any thread. 0 when `future` holds a value; the (negative) code of its failure;
/// kResultFutureNotReady while pending; kResultFutureCancelled when cancelled or empty.
template <class T>
ResultCode ExtractResultFromException(const async::Future<T>& future) noexcept {
    return async::ResultOf(future);
}

}  // namespace kelcore::config
