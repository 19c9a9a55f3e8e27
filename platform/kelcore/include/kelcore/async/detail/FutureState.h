// The state that a Promise and its Futures share: the outcome, the continuations waiting for
// it, the executor the future carries. Every field is guarded by one mutex, which is never
// held while a continuation runs. Used only through Promise and Future.
#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include <kelcore/config/ResultCode.h>
#include <kelcore/threads/AsyncExecutor.h>

namespace kelcore::async::detail {

/// What a Future<T> stores: T itself, or an empty marker for void.
template <class T>
using Stored = std::conditional_t<std::is_void_v<T>, std::monostate, T>;

class FutureStateBase : public std::enable_shared_from_this<FutureStateBase> {
public:
    /// Called once with the completed state.
    using Continuation = std::function<void(const std::shared_ptr<FutureStateBase>&)>;

    explicit FutureStateBase(std::shared_ptr<threads::AsyncExecutor> executor)
        : executor(executor) {}
    virtual ~FutureStateBase() = default;

    FutureStateBase(const FutureStateBase&) = delete;
    FutureStateBase& operator=(const FutureStateBase&) = delete;

    /// Any thread. The executor given at construction while it still exists, else null. Set
    /// once, so read without the lock.
    std::shared_ptr<threads::AsyncExecutor> GetExecutor() const { return executor.lock(); }

    /// Any thread. Whether a value, a failure or a cancellation has arrived.
    bool IsReady() const;
    /// Any thread. Returns false and does nothing when already complete.
    bool SetException(std::exception_ptr error);
    /// Any thread. Returns false and does nothing when already complete.
    bool Cancel();
    /// Any thread. Holds the state alive until it completes. Does nothing when complete.
    void KeepAlive();
    /// Any thread. Stores `continuation`, or runs it now, on this thread and outside the lock,
    /// when the state is already complete.
    void AddContinuation(Continuation continuation);
    /// Any thread. 0 for a value, otherwise the (negative) code of the outcome.
    config::ResultCode Result() const noexcept;
    /// Any thread. Returns when a value is stored; otherwise throws the stored exception, or
    /// a kel_exception for a state that is not ready or was cancelled.
    void ThrowUnlessValue() const;

protected:
    enum class Status { Pending, Value, Failed, Cancelled };

    /// The state's lock, owned only if the state is still pending.
    std::unique_lock<std::mutex> LockIfPending();
    /// Records `status`, releases `lock`, then runs the waiting continuations.
    void Finish(std::unique_lock<std::mutex> lock, Status outcome);

private:
    // Observed, not owned: a pending task of that executor may own this state, and an owning
    // link back would keep both alive for good.
    const std::weak_ptr<threads::AsyncExecutor> executor;
    mutable std::mutex mutex;
    Status status = Status::Pending;
    std::exception_ptr error;
    std::vector<Continuation> continuations;
    std::shared_ptr<FutureStateBase> keptAlive;
};

template <class T>
class FutureState final : public FutureStateBase {
public:
    using FutureStateBase::FutureStateBase;

    /// Any thread. Returns false and does nothing when already complete.
    template <class... Args>
    bool SetValue(Args&&... args) {
        auto lock = LockIfPending();
        if (!lock.owns_lock()) {
            return false;
        }
        value.emplace(std::forward<Args>(args)...);
        Finish(std::move(lock), Status::Value);
        return true;
    }

    /// Only after ThrowUnlessValue returned: the value never changes once stored.
    const Stored<T>& Value() const { return *value; }

private:
    std::optional<Stored<T>> value;
};

/// The exception of a cancelled future.
std::exception_ptr MakeCancelledError();

}  // namespace kelcore::async::detail
