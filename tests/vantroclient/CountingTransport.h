// A transport that passes every request to a real one and writes down what went out and when
// (on kelcore's clock), what came back, and whether an event stream has started to speak. The
// service keeps no count of the requests it answered, so tests of pacing count here. Sending:
// any thread; the records: any thread.
#pragma once

#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <kelcore/threads/Clock.h>
#include <vantrocommon/http/Transport.h>

namespace vantroclienttest {

class CountingTransport final : public vantrocommon::http::Transport,
                                public std::enable_shared_from_this<CountingTransport> {
public:
    struct Sent {
        std::string method;
        std::string url;
        kelcore::threads::Clock::TimePoint at;
    };

    explicit CountingTransport(std::shared_ptr<vantrocommon::http::Transport> inner)
        : inner(std::move(inner)) {}

    kelcore::async::Future<vantrocommon::http::Reply> Send(
        vantrocommon::http::Request request,
        vantrocommon::http::CancellationToken cancel) override {
        {
            std::lock_guard lock(mutex);
            sent.push_back({request.method, request.url, kelcore::threads::Now()});
        }
        if (request.onBodyData) {
            request.onBodyData = [streamed = streamedBytes,
                                  forward = std::move(request.onBodyData)](std::string_view bytes) {
                streamed->fetch_add(bytes.size());
                forward(bytes);
            };
        }
        return inner->Send(std::move(request), std::move(cancel))
            .Then([weak = weak_from_this()](
                      const kelcore::async::Future<vantrocommon::http::Reply>& reply) {
                if (auto self = weak.lock(); self && kelcore::async::ResultOf(reply) == 0) {
                    std::lock_guard lock(self->mutex);
                    self->statuses.push_back(reply.Get().status);
                }
                return reply.Get();
            });
    }

    std::vector<Sent> SentSoFar() const {
        std::lock_guard lock(mutex);
        return sent;
    }
    /// Requests whose URL contains `part`.
    std::size_t CountSent(const std::string& part) const {
        std::lock_guard lock(mutex);
        return static_cast<std::size_t>(std::count_if(sent.begin(), sent.end(), [&](const Sent& s) {
            return s.url.find(part) != std::string::npos;
        }));
    }
    std::vector<int> Statuses() const {
        std::lock_guard lock(mutex);
        return statuses;
    }
    /// Bytes that event streams have handed over so far.
    std::size_t StreamedBytes() const { return streamedBytes->load(); }

private:
    const std::shared_ptr<vantrocommon::http::Transport> inner;
    const std::shared_ptr<std::atomic<std::size_t>> streamedBytes =
        std::make_shared<std::atomic<std::size_t>>(0);
    mutable std::mutex mutex;
    std::vector<Sent> sent;
    std::vector<int> statuses;
};

}  // namespace vantroclienttest
