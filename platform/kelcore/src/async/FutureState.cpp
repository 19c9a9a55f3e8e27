#include <kelcore/async/detail/FutureState.h>

#include <kelcore/config/ErrorHandling.h>
#include <kelcore/config/kel_exception.h>

namespace kelcore::async::detail {

bool FutureStateBase::IsReady() const {
    std::lock_guard lock(mutex);
    return status != Status::Pending;
}

bool FutureStateBase::SetException(std::exception_ptr exception) {
    if (!exception) {
        // A failure must carry something that reads as a failure code.
        exception = std::make_exception_ptr(config::kel_exception(
            "Future: failed without an exception", config::kResultUnknownFailure));
    }
    auto lock = LockIfPending();
    if (!lock.owns_lock()) {
        return false;
    }
    error = std::move(exception);
    Finish(std::move(lock), Status::Failed);
    return true;
}

bool FutureStateBase::Cancel() {
    auto lock = LockIfPending();
    if (!lock.owns_lock()) {
        return false;
    }
    Finish(std::move(lock), Status::Cancelled);
    return true;
}

void FutureStateBase::KeepAlive() {
    std::lock_guard lock(mutex);
    if (status == Status::Pending) {
        keptAlive = shared_from_this();
    }
}

void FutureStateBase::AddContinuation(Continuation continuation) {
    {
        std::lock_guard lock(mutex);
        if (status == Status::Pending) {
            continuations.push_back(std::move(continuation));
            return;
        }
    }
    continuation(shared_from_this());
}

config::ResultCode FutureStateBase::Result() const noexcept {
    std::lock_guard lock(mutex);
    switch (status) {
        case Status::Pending:
            return config::kResultFutureNotReady;
        case Status::Value:
            return config::kResultSuccess;
        case Status::Failed:
            return config::ExtractResultFromException(error);
        case Status::Cancelled:
            return config::kResultFutureCancelled;
    }
    return config::kResultUnknownFailure;
}

void FutureStateBase::ThrowUnlessValue() const {
    std::unique_lock lock(mutex);
    switch (status) {
        case Status::Value:
            return;
        case Status::Pending:
            lock.unlock();
            throw config::kel_exception("Future: Not Ready", config::kResultFutureNotReady);
        case Status::Cancelled:
            lock.unlock();
            std::rethrow_exception(MakeCancelledError());
        case Status::Failed: {
            auto stored = error;
            lock.unlock();
            std::rethrow_exception(stored);
        }
    }
}

std::unique_lock<std::mutex> FutureStateBase::LockIfPending() {
    std::unique_lock lock(mutex);
    if (status != Status::Pending) {
        lock.unlock();
    }
    return lock;
}

void FutureStateBase::Finish(std::unique_lock<std::mutex> lock, Status outcome) {
    status = outcome;
    auto waiting = std::move(continuations);
    continuations.clear();
    // Released only after the continuations ran, so a kept-alive chain finishes first.
    auto self = std::move(keptAlive);
    lock.unlock();
    const auto completed = shared_from_this();
    for (auto& continuation : waiting) {
        continuation(completed);
    }
}

std::exception_ptr MakeCancelledError() {
    return std::make_exception_ptr(
        config::kel_exception("Future Is Cancelled", config::kResultFutureCancelled));
}

}  // namespace kelcore::async::detail
