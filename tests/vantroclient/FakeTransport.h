// A transport for virtual-time tests of the datastore: every request is written down with the
// virtual time it left at, and answered by the test's responder (a reply, a failure code, or
// nothing, which leaves it pending until the test answers, streams into or fails it). Outcomes
// are posted to the executor as the real transport does; a cancelled pending request fails with
// kResultCancelled. Sending: any thread; answering and the records: the test's thread.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <kelcore/async/Promise.h>
#include <kelcore/config/kel_exception.h>
#include <kelcore/threads/AsyncExecutor.h>
#include <kelcore/threads/Clock.h>
#include <vantrocommon/ResultCodes.h>
#include <vantrocommon/http/Transport.h>

namespace vantroclienttest {

class FakeTransport final : public vantrocommon::http::Transport {
public:
    struct Pending {};
    using Outcome = std::variant<Pending, vantrocommon::http::Reply, kelcore::config::ResultCode>;
    using Responder = std::function<Outcome(const vantrocommon::http::Request&)>;

    struct Exchange {
        vantrocommon::http::Request request;
        kelcore::threads::Clock::TimePoint at;
        std::shared_ptr<kelcore::async::Promise<vantrocommon::http::Reply>> promise;
    };

    explicit FakeTransport(std::shared_ptr<kelcore::threads::AsyncExecutor> executor)
        : executor(std::move(executor)) {}

    void SetResponder(Responder value) {
        std::lock_guard lock(mutex);
        responder = std::move(value);
    }

    kelcore::async::Future<vantrocommon::http::Reply> Send(
        vantrocommon::http::Request request,
        vantrocommon::http::CancellationToken cancel) override {
        auto promise =
            std::make_shared<kelcore::async::Promise<vantrocommon::http::Reply>>(executor);
        auto future = promise->GetFuture();
        Outcome outcome;
        {
            std::lock_guard lock(mutex);
            outcome = responder ? responder(request) : Outcome(Pending{});
            exchanges.push_back({request, kelcore::threads::Now(), promise});
        }
        if (const auto* reply = std::get_if<vantrocommon::http::Reply>(&outcome)) {
            executor->Post([promise, reply = *reply] { promise->SetValue(reply); });
        } else if (const auto* code = std::get_if<kelcore::config::ResultCode>(&outcome)) {
            executor->Post([promise, code = *code] { promise->SetException(Failure(code)); });
        } else {
            cancel.OnCancel([executor = executor, promise] {
                executor->Post(
                    [promise] { promise->SetException(Failure(vantrocommon::kResultCancelled)); });
            });
        }
        return future;
    }

    /// Every request so far, in the order sent.
    std::vector<Exchange> Sent() const {
        std::lock_guard lock(mutex);
        return exchanges;
    }
    /// The requests whose URL contains `part`.
    std::vector<Exchange> SentTo(const std::string& part) const {
        std::vector<Exchange> found;
        for (auto& exchange : Sent()) {
            if (exchange.request.url.find(part) != std::string::npos) {
                found.push_back(exchange);
            }
        }
        return found;
    }

    /// Hands `bytes` to a streaming request's body callback, as the I/O thread would.
    static void Stream(const Exchange& exchange, std::string_view bytes) {
        exchange.request.onBodyData(bytes);
    }
    void Answer(const Exchange& exchange, vantrocommon::http::Reply reply) {
        executor->Post(
            [promise = exchange.promise, reply = std::move(reply)] { promise->SetValue(reply); });
    }
    void Fail(const Exchange& exchange, kelcore::config::ResultCode code) {
        executor->Post(
            [promise = exchange.promise, code] { promise->SetException(Failure(code)); });
    }

    static std::exception_ptr Failure(kelcore::config::ResultCode code) {
        return std::make_exception_ptr(kelcore::config::kel_exception("fake failure", code));
    }

private:
    const std::shared_ptr<kelcore::threads::AsyncExecutor> executor;
    mutable std::mutex mutex;
    Responder responder;
    std::vector<Exchange> exchanges;
};

}  // namespace vantroclienttest
