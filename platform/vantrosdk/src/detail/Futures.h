// Small helpers for the SDK's futures: passing one future's outcome to a promise, and failing
// with a result code. Stateless; any thread.
#pragma once

#include <exception>
#include <string>
#include <utility>

#include <kelcore/async/Future.h>
#include <kelcore/async/Promise.h>
#include <kelcore/config/ResultCode.h>
#include <kelcore/config/kel_exception.h>

namespace vantrosdk::detail {

/// A failure that ExtractResultFromException reads back as `code`.
inline std::exception_ptr MakeFailure(kelcore::config::ResultCode code, std::string text) {
    return std::make_exception_ptr(kelcore::config::kel_exception(std::move(text), code));
}

/// Completes `to` as `from` completed: its value, or its failure (a cancellation too).
template <class T>
void Forward(const kelcore::async::Future<T>& from, kelcore::async::Promise<T>& to) {
    std::exception_ptr failure;
    try {
        from.Get();
    } catch (...) {
        failure = std::current_exception();
    }
    if (failure) {
        to.SetException(failure);
    } else {
        to.SetValue(from.Get());
    }
}

/// The failure a completed future holds, or null when it holds a value.
template <class T>
std::exception_ptr FailureOf(const kelcore::async::Future<T>& future) {
    try {
        future.Get();
    } catch (...) {
        return std::current_exception();
    }
    return nullptr;
}

}  // namespace vantrosdk::detail
