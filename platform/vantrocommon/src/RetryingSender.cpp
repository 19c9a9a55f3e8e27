#include <vantrocommon/RetryingSender.h>

#include <exception>
#include <sstream>
#include <utility>

#include <kelcore/async/Executors.h>
#include <kelcore/async/Promise.h>
#include <kelcore/config/ErrorHandling.h>
#include <kelcore/config/kel_exception.h>
#include <kelcore/debug/Trace.h>

#include <vantrocommon/ResultCodes.h>

#include "detail/LoggableUrl.h"

namespace vantrocommon {
namespace {

using kelcore::async::Future;
using kelcore::async::Promise;
using std::chrono::milliseconds;

constexpr std::string_view kTraceCategory = "vantrocommon";
constexpr int kTraceLevel = 5;

// One request's tries. Held by the continuation of the try in flight or by the delayed task
// of the next one; the cancellation callback holds it weakly, so a finished request is freed
// even while its token lives on.
class RetryingExchange : public std::enable_shared_from_this<RetryingExchange> {
public:
    RetryingExchange(std::shared_ptr<http::Transport> transport, http::Request request,
                     RetryPolicy policy, std::shared_ptr<kelcore::threads::AsyncExecutor> executor,
                     http::CancellationToken cancel, std::function<double()> random)
        : transport(std::move(transport)),
          request(std::move(request)),
          schedule(std::move(policy), std::move(random)),
          executor(executor),
          cancel(std::move(cancel)),
          promise(std::move(executor)) {}

    Future<http::Reply> Start() {
        auto future = promise.GetFuture();
        // A cancellation ends the wait at once rather than at the next try; the failure is
        // posted so that the future still completes on the executor.
        cancelRegistration =
            cancel.OnCancel([weak = std::weak_ptr<RetryingExchange>(shared_from_this())] {
                if (auto self = weak.lock()) {
                    self->executor->Post([self] { self->FailCancelled(); });
                }
            });
        Try();
        return future;
    }

private:
    /// The executor's thread, or the caller's for the first try.
    void Try() {
        // A cancelled token has posted FailCancelled already (see Start).
        if (promise.IsReady() || cancel.IsCancelled()) {
            return;
        }
        transport->Send(request, cancel)
            .Then(executor, [self = shared_from_this()](const Future<http::Reply>& reply) {
                self->OnAnswer(reply);
            });
    }

    /// The executor's thread.
    void OnAnswer(const Future<http::Reply>& answer) {
        if (promise.IsReady()) {
            return;
        }
        std::exception_ptr failure;
        try {
            const http::Reply& reply = answer.Get();
            if (const auto delay = schedule.NextDelay(reply)) {
                Wait(*delay, "status " + std::to_string(reply.status));
            } else {
                Complete([&] { promise.SetValue(reply); });
            }
            return;
        } catch (...) {
            failure = std::current_exception();
        }
        const auto code = kelcore::config::ExtractResultFromException(failure);
        if (cancel.IsCancelled() || code == kResultCancelled) {
            FailCancelled();
            return;
        }
        if (const auto delay = schedule.NextDelay(code)) {
            std::ostringstream reason;
            reason << "failure 0x" << std::hex << static_cast<std::uint32_t>(code);
            Wait(*delay, reason.str());
        } else {
            Complete([&] { promise.SetException(failure); });
        }
    }

    void Wait(milliseconds delay, const std::string& reason) {
        if (kelcore::debug::TraceEnabled(kTraceCategory, kTraceLevel)) {
            kelcore::debug::Trace(kTraceCategory, kTraceLevel,
                                  request.method + " " + detail::LoggableUrl(request.url) +
                                      " after " + reason + ": try " +
                                      std::to_string(schedule.AttemptsMade()) + " in " +
                                      std::to_string(delay.count()) + " ms");
        }
        executor->PostAfterDelay([self = shared_from_this()] { self->Try(); },
                                 static_cast<std::uint64_t>(delay.count()));
    }

    /// The executor's thread.
    void FailCancelled() {
        Complete([&] {
            promise.SetException(std::make_exception_ptr(kelcore::config::kel_exception(
                request.method + " " + detail::LoggableUrl(request.url) + ": cancelled",
                kResultCancelled)));
        });
    }

    template <class SetOutcome>
    void Complete(SetOutcome setOutcome) {
        cancel.RemoveOnCancel(cancelRegistration);
        setOutcome();
    }

    const std::shared_ptr<http::Transport> transport;
    const http::Request request;
    RetrySchedule schedule;
    const std::shared_ptr<kelcore::threads::AsyncExecutor> executor;
    const http::CancellationToken cancel;
    std::uint64_t cancelRegistration = 0;
    Promise<http::Reply> promise;
};

}  // namespace

Future<http::Reply> SendWithRetry(std::shared_ptr<http::Transport> transport, http::Request request,
                                  RetryPolicy policy,
                                  std::shared_ptr<kelcore::threads::AsyncExecutor> executor,
                                  http::CancellationToken cancel, std::function<double()> random) {
    if (!executor) {
        executor = kelcore::async::GetDefaultExecutor();
    }
    auto exchange = std::make_shared<RetryingExchange>(std::move(transport), std::move(request),
                                                       std::move(policy), std::move(executor),
                                                       std::move(cancel), std::move(random));
    return exchange->Start();
}

}  // namespace vantrocommon
