// A Transport for tests that answers from a script instead of a network: each Send takes the
// next outcome (a reply, a failure code, or "never answer until cancelled") and posts it to
// the executor, as the real transport does, recording the request and the virtual time it was
// sent at. Sending: any thread; the script and the records: the test's thread.
#pragma once

#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <variant>
#include <vector>

#include <kelcore/async/Promise.h>
#include <kelcore/config/kel_exception.h>
#include <kelcore/threads/Clock.h>

#include <vantrocommon/ResultCodes.h>
#include <vantrocommon/http/Transport.h>

namespace vantrocommontest {

class ScriptedTransport final : public vantrocommon::http::Transport {
public:
    /// An exchange that only ends when its token is cancelled.
    struct Hang {};
    using Outcome = std::variant<vantrocommon::http::Reply, kelcore::config::ResultCode, Hang>;

    struct Sent {
        vantrocommon::http::Request request;
        kelcore::threads::Clock::TimePoint at;
    };

    explicit ScriptedTransport(std::shared_ptr<kelcore::threads::AsyncExecutor> executor)
        : executor(std::move(executor)) {}

    /// Appends outcomes; once the script runs out, the last one repeats.
    void Then(Outcome outcome) {
        std::lock_guard lock(mutex);
        script.push_back(std::move(outcome));
    }

    static vantrocommon::http::Reply Status(int status, std::string retryAfter = {}) {
        vantrocommon::http::Reply reply;
        reply.status = status;
        reply.httpVersion = "1.1";
        reply.body = "answer " + std::to_string(status);
        if (!retryAfter.empty()) {
            reply.headers["RETRY-AFTER"] = std::move(retryAfter);
        }
        return reply;
    }

    kelcore::async::Future<vantrocommon::http::Reply> Send(
        vantrocommon::http::Request request,
        vantrocommon::http::CancellationToken cancel) override {
        Outcome outcome;
        {
            std::lock_guard lock(mutex);
            sent.push_back({request, kelcore::threads::Now()});
            outcome = script.size() > 1 ? script.front() : script.back();
            if (script.size() > 1) {
                script.pop_front();
            }
        }
        auto promise =
            std::make_shared<kelcore::async::Promise<vantrocommon::http::Reply>>(executor);
        auto future = promise->GetFuture();
        if (auto* reply = std::get_if<vantrocommon::http::Reply>(&outcome)) {
            executor->Post([promise, reply = *reply] { promise->SetValue(reply); });
        } else if (auto* code = std::get_if<kelcore::config::ResultCode>(&outcome)) {
            executor->Post([promise, code = *code] { promise->SetException(Failure(code)); });
        } else {
            cancel.OnCancel([executor = executor, promise] {
                executor->Post(
                    [promise] { promise->SetException(Failure(vantrocommon::kResultCancelled)); });
            });
        }
        return future;
    }

    std::vector<Sent> SentSoFar() const {
        std::lock_guard lock(mutex);
        return sent;
    }

private:
    static std::exception_ptr Failure(kelcore::config::ResultCode code) {
        return std::make_exception_ptr(kelcore::config::kel_exception("scripted failure", code));
    }

    const std::shared_ptr<kelcore::threads::AsyncExecutor> executor;
    mutable std::mutex mutex;
    std::deque<Outcome> script;
    std::vector<Sent> sent;
};

}  // namespace vantrocommontest
