// Lets the owner of a request stop it while it runs. Copies share one flag; Cancel is
// idempotent and wakes the transport, which aborts the exchange and fails its future with
// kResultCancelled. Any thread.
//
//   CancellationToken cancel;
//   auto reply = transport->Send(request, cancel);
//   cancel.Cancel();   // the future fails with kResultCancelled unless it already completed
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace vantrocommon::http {

class CancellationToken {
public:
    CancellationToken();

    /// Any thread. Marks the token cancelled and calls every registered callback once.
    void Cancel() const;
    /// Any thread.
    bool IsCancelled() const;

    /// Any thread. Calls `callback` when the token is cancelled (at once if it already is).
    /// The returned id unregisters it; callbacks run on the cancelling thread, without a lock.
    std::uint64_t OnCancel(std::function<void()> callback) const;
    void RemoveOnCancel(std::uint64_t id) const;

private:
    struct State;
    std::shared_ptr<State> state;
};

}  // namespace vantrocommon::http
