// A folder queue whose requests never leave the process: IssueRequest records what was asked
// and lets the test answer, at once through `answer` or later through Answer(index, ...). The
// handler runs where the real one does, on the queue's executor, never inline. For the queue's
// timing tests under virtual time; the test's thread.
//
//   auto queue = std::make_shared<ScriptedFolderQueue>(time.GetExecutor());
//   queue->SetAnswer([](const auto&) { return ChildAssetsResponse(200, PagingHeaders(1, 1)); });
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include <kelcore/async/Promise.h>
#include <kelcore/threads/Clock.h>
#include <kelcore/threads/ManualExecutor.h>
#include <vantrokelui/model/connector/FetchFolderChildrenQueue.h>

namespace connectortest {

class ScriptedFolderQueue
    : public vantrokelui::model::VantroConnectorIntegration::FetchFolderChildrenQueue {
public:
    struct Sent {
        std::weak_ptr<vantrokelui::VantroNode> node;
        int page = 0;
        kelcore::threads::Clock::TimePoint time;
    };
    /// Gives the response for a request, or null to hold it until Answer is called.
    using Answerer = std::function<std::shared_ptr<ResponseType>(const Sent&)>;

    explicit ScriptedFolderQueue(std::shared_ptr<kelcore::threads::AsyncExecutor> executor)
        : FetchFolderChildrenQueue(executor), executor(std::move(executor)) {}

    void SetAnswer(Answerer answerer) {
        const std::lock_guard lock(mutex);
        answer = std::move(answerer);
    }

    /// Every request IssueRequest was asked to send, in order.
    std::vector<Sent> SentRequests() const {
        const std::lock_guard lock(mutex);
        return sent;
    }
    std::size_t SentCount() const { return SentRequests().size(); }

    /// Completes the held request `index` (of SentRequests) with `response`; null fails it as a
    /// cancelled exchange.
    void Answer(std::size_t index, std::shared_ptr<ResponseType> response) {
        std::shared_ptr<kelcore::async::Promise<std::shared_ptr<ResponseType>>> promise;
        {
            const std::lock_guard lock(mutex);
            promise = std::move(held.at(index));
        }
        if (response) {
            promise->SetValue(std::move(response));
        }
        // Without a response the promise dies unset, which cancels the exchange.
    }

    using FetchFolderChildrenQueue::InFlightRecords;

protected:
    kelcore::async::Future<void> IssueRequest(std::shared_ptr<vantrokelui::VantroNode> node,
                                              int page, ResponseHandler handler) override {
        auto promise =
            std::make_shared<kelcore::async::Promise<std::shared_ptr<ResponseType>>>(executor);
        kelcore::async::Future<void> chain =
            AttachHandler(promise->GetFuture(), std::move(handler));
        Answerer answerer;
        Sent request{node, page, kelcore::threads::Now()};
        {
            const std::lock_guard lock(mutex);
            sent.push_back(request);
            held.push_back(promise);
            answerer = answer;
        }
        if (answerer) {
            if (auto response = answerer(request)) {
                promise->SetValue(std::move(response));
            }
        }
        return chain;
    }

private:
    std::shared_ptr<kelcore::threads::AsyncExecutor> executor;
    mutable std::mutex mutex;
    Answerer answer;
    std::vector<Sent> sent;
    std::vector<std::shared_ptr<kelcore::async::Promise<std::shared_ptr<ResponseType>>>> held;
};

}  // namespace connectortest
