// The rate-limited pump behind every child listing of the connector back end. A node hands it
// one record per page (EnqueueBack for page 1 of a listing, EnqueueFront for the pages that
// follow and for a page the service refused with 429) and a callback for the children; the
// queue sends records no faster than the service allows, follows the page chain, learns the
// limits from each response's X-RATELIMIT-* headers and forgets a node that has died. There is
// no completion, cancel or error call: a listing ends when a response shows no further page.
//
// Counting: inFlight.size() + recent.size() requests stand against the current window, and no
// request is sent while that sum is at or above maxRequests (compared unsigned, so a limit of -1
// means none). A request keeps its place for windowSeconds after it was sent, answered or not.
// Each queue counts for itself.
//
// Owned by shared pointer: each concrete queue is a WeakSingleton held by the nodes of its kind,
// and dies with the last of them. Threads: the pump runs on the executor given at construction
// (the IO-bound pool), one run at a time, under the queue's mutex; response handlers run on the
// executor of the SDK's future. The only timer is a five-second tick while the queue is not idle.
//
//   queue->EnqueueBack(folder, 1, WeakBindMemberFunction(weakFolder, &Folder::AddChildren));
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <ratio>
#include <string>
#include <utility>
#include <vector>

#include <kelcore/allocator/STLAllocator.h>
#include <kelcore/async/Executors.h>
#include <kelcore/async/Future.h>
#include <kelcore/config/ErrorHandling.h>
#include <kelcore/config/ResultCode.h>
#include <kelcore/config/kel_exception.h>
#include <kelcore/threads/AsyncExecutor.h>
#include <kelcore/threads/Clock.h>
#include <kelcore/threads/Executors.h>
#include <kelcore/utility/EnableSharedAs.h>
#include <vantrokelui/nodes/VantroNode.h>
#include <vantrokelui/utility/WeakBindMemberFunction.h>

namespace vantrokelui::model::VantroConnectorIntegration {

/// The service's paging headers. The SDK reads them; the queue sees paging only through
/// VantroResponse::GetPageNumber and GetTotalPages, and never sets a page size.
inline constexpr const char* kPageNumberHeader = "PAGE-NUMBER";
inline constexpr const char* kTotalPagesHeader = "TOTAL-PAGES";
inline constexpr const char* kPerPageHeader = "PER-PAGE";
inline constexpr const char* kTotalHeader = "TOTAL";

/// The service's rate limit: requests per window, and the window in milliseconds.
inline constexpr const char* kRateLimitLimitHeader = "X-RATELIMIT-LIMIT";
inline constexpr const char* kRateLimitWindowHeader = "X-RATELIMIT-WINDOW";

/// The failure of a record whose node died before its turn came.
inline constexpr const char* kExpiredNodeText = "expired folder pointer";
inline constexpr kelcore::config::ResultCode kResultExpiredNode =
    kelcore::config::MakeResultCode(0xA00F000D);

/// The limits of a fresh queue.
inline constexpr std::int64_t kInitialMaxRequests = 200;
inline constexpr std::int64_t kInitialWindowSeconds = 60;
/// The tick of a queue that is not idle.
inline constexpr double kTickSeconds = 5;

namespace detail {

/// The queue's time unit: 100-nanosecond ticks.
inline constexpr std::int64_t kTicksPerSecond = 10'000'000;

/// kelcore's clock in 100-nanosecond ticks, so that virtual time drives the queue.
inline std::int64_t NowInTicks() {
    using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, kTicksPerSecond>>;
    return std::chrono::duration_cast<Ticks>(kelcore::threads::Now().time_since_epoch()).count();
}

}  // namespace detail

template <class Request, class Response, class List>
class FetchChildrenQueue : public virtual kelcore::utility::EnableSharedAs {
public:
    using RequestType = Request;
    using ResponseType = Response;
    using ListType = List;
    using ChildrenCallback = std::function<void(const List&)>;
    using ResponseFuture = kelcore::async::Future<std::shared_ptr<Response>>;
    using ResponseHandler = std::function<void(const ResponseFuture&)>;

    /// One request for one page of one node's children.
    struct FetchRecord {
        /// Held weakly: a waiting record never keeps its node alive.
        std::weak_ptr<VantroNode> node;
        /// 1-based.
        std::int32_t page = 0;
        ChildrenCallback onChildren;
        /// When the request was sent, in 100-ns ticks of kelcore's clock; 0 until then.
        std::int64_t startTime = 0;
        /// The end of the request's continuation chain, held only to keep the chain alive.
        kelcore::async::Future<void> future;
    };

    /// What a queue holds at one moment; for diagnostics and tests.
    struct Counts {
        std::size_t pending = 0;
        std::size_t inFlight = 0;
        std::size_t recent = 0;
        std::int64_t maxRequests = 0;
        std::int64_t windowSeconds = 0;
        bool scheduled = false;
    };

    ~FetchChildrenQueue() override = default;

    FetchChildrenQueue(const FetchChildrenQueue&) = delete;
    FetchChildrenQueue& operator=(const FetchChildrenQueue&) = delete;

    /// Queues page `page` of `node`'s children behind everything waiting, and starts the pump
    /// at once if the queue is idle (otherwise the next tick takes it). Any thread.
    void EnqueueBack(const std::shared_ptr<VantroNode>& node, int page,
                     const ChildrenCallback& onChildren) {
        FetchRecord record = MakeRecord(node, page, onChildren);
        const std::lock_guard lock(mutex);
        pending.push_back(std::move(record));
        ScheduleProcessing(0);
    }

    /// Queues page `page` of `node`'s children ahead of everything waiting: a listing that has
    /// begun is finished first. Any thread.
    void EnqueueFront(const std::shared_ptr<VantroNode>& node, int page,
                      const ChildrenCallback& onChildren) {
        FetchRecord record = MakeRecord(node, page, onChildren);
        const std::lock_guard lock(mutex);
        pending.push_front(std::move(record));
        ScheduleProcessing(0);
    }

    /// The continuation for the response to page `page` of `node`. It holds the node strongly
    /// and the queue weakly; a queue that has died by then makes it do nothing. Any thread.
    ResponseHandler GetResponseHandler(const std::shared_ptr<VantroNode>& node, int page,
                                       const ChildrenCallback& onChildren);

    /// A consistent snapshot of the containers and limits. Any thread.
    Counts GetCounts() const {
        const std::lock_guard lock(mutex);
        return Counts{pending.size(),     inFlight.size(),      recent.size(),
                      maxRequests.load(), windowSeconds.load(), scheduled.load() != 0};
    }

protected:
    /// A queue that pumps on the IO-bound executor.
    FetchChildrenQueue() : FetchChildrenQueue(kelcore::threads::GetIOBoundExecutor()) {}
    /// A queue that pumps on `executor` (tests give theirs).
    explicit FetchChildrenQueue(std::shared_ptr<kelcore::threads::AsyncExecutor> executor)
        : executor(std::move(executor)) {}

    /// Sends the request for page `page` of `node` and attaches `handler` to the SDK's future,
    /// never inline (the queue's mutex is held here). Returns the end of that chain. Called
    /// with the queue's mutex held, on the pump's thread.
    virtual kelcore::async::Future<void> IssueRequest(std::shared_ptr<VantroNode> node, int page,
                                                      ResponseHandler handler) = 0;

    /// The children that `response` carries, as a reference into it. Called on the handler's
    /// thread, without the queue's mutex.
    virtual const List& ExtractChildren(const std::shared_ptr<VantroNode>& node,
                                        std::shared_ptr<Response> response) = 0;

    /// Attaches `handler` to `answer` on the answer's executor (the default executor when it has
    /// none), so that it never runs inline in this call. For IssueRequest.
    static kelcore::async::Future<void> AttachHandler(const ResponseFuture& answer,
                                                      ResponseHandler handler) {
        std::shared_ptr<kelcore::threads::AsyncExecutor> where = answer.GetExecutor();
        if (!where) {
            where = kelcore::async::GetDefaultExecutor();
        }
        return answer.Then(std::move(where), std::move(handler));
    }

    /// The chain of a request that could not be sent because no SDK client exists (signed out).
    /// Its record keeps its place in the window like a request that failed.
    static kelcore::async::Future<void> MissingClientFailure() {
        return kelcore::async::MakeFailedFuture<void>(std::make_exception_ptr(
            kelcore::config::kel_exception("no SDK client", kelcore::config::kResultNullPointer)));
    }

    /// Copies of the records sent and not yet answered, oldest first. For tests. Any thread.
    std::vector<FetchRecord> InFlightRecords() const {
        const std::lock_guard lock(mutex);
        return {inFlight.begin(), inFlight.end()};
    }

private:
    using RecordAllocator = kelcore::allocator::STLAllocator<FetchRecord>;

    static FetchRecord MakeRecord(const std::shared_ptr<VantroNode>& node, int page,
                                  const ChildrenCallback& onChildren) {
        FetchRecord record;
        record.node = node;
        record.page = page;
        record.onChildren = onChildren;
        return record;
    }

    /// Posts one run of the pump after `delaySeconds`, unless one is posted or running already.
    /// Any thread.
    void ScheduleProcessing(double delaySeconds);
    /// The pump; see the steps inside. On the executor, one run at a time.
    void ProcessQueue();
    /// Moves the first in-flight record of `node` (an expired one for null) to `recent`, and
    /// asks for a run. With the mutex held.
    void RetireRequest(const std::shared_ptr<VantroNode>& node);
    /// Takes the limits from X-RATELIMIT-LIMIT and X-RATELIMIT-WINDOW when both are there and
    /// make sense. A value std::stoi cannot read throws, on purpose: see the handler. Without
    /// the mutex.
    void ReadRateLimitHeaders(const std::shared_ptr<Response>& response);

    const std::shared_ptr<kelcore::threads::AsyncExecutor> executor;
    // Guards pending, inFlight and recent; IssueRequest runs under it, so it must never call
    // back into the queue inline.
    mutable std::mutex mutex;
    // 1 while a run of the pump is posted or running.
    std::atomic<std::uint8_t> scheduled{0};
    std::list<FetchRecord, RecordAllocator> pending;
    std::vector<FetchRecord, RecordAllocator> inFlight;
    // In order of retirement, not of sending.
    std::deque<FetchRecord, RecordAllocator> recent;
    // Written by handlers outside the mutex, read by the pump inside it: whole values only.
    std::atomic<std::int64_t> maxRequests{kInitialMaxRequests};
    std::atomic<std::int64_t> windowSeconds{kInitialWindowSeconds};
};

template <class Request, class Response, class List>
auto FetchChildrenQueue<Request, Response, List>::GetResponseHandler(
    const std::shared_ptr<VantroNode>& node, int page, const ChildrenCallback& onChildren)
    -> ResponseHandler {
    std::weak_ptr<FetchChildrenQueue> weakQueue = WeakAs<FetchChildrenQueue>();
    return [weakQueue, node, page, onChildren](const ResponseFuture& answer) {
        const std::shared_ptr<FetchChildrenQueue> queue = weakQueue.lock();
        if (!queue) {
            return;
        }
        // A failed exchange is not retried: the record keeps its place until it ages out.
        if (kelcore::config::ExtractResultFromException(answer) < 0) {
            return;
        }
        const std::shared_ptr<Response> response = answer.Get();
        // Before the status: a 429 carries the limits too. A malformed value throws out of the
        // handler here and the page is lost; the chain keeps the exception.
        queue->ReadRateLimitHeaders(response);
        if (response->IsSuccessful()) {
            onChildren(queue->ExtractChildren(node, response));
            {
                const std::lock_guard lock(queue->mutex);
                queue->RetireRequest(node);
            }
            const int pageNumber = response->GetPageNumber().value_or(0x7FFFFFFF);
            const int totalPages = response->GetTotalPages().value_or(1);
            // The response's own page number leads on, not the record's.
            if (pageNumber >= 1 && pageNumber < totalPages) {
                queue->EnqueueFront(node, pageNumber + 1, onChildren);
            }
        } else if (response->GetHTTPStatusCode() == 429) {
            const ChildrenCallback callback = onChildren;
            {
                const std::lock_guard lock(queue->mutex);
                queue->RetireRequest(node);
            }
            queue->EnqueueFront(node, page, callback);
            queue->ScheduleProcessing(0);
        }
        // Any other status: the record stays in flight until it ages out.
    };
}

template <class Request, class Response, class List>
void FetchChildrenQueue<Request, Response, List>::ScheduleProcessing(double delaySeconds) {
    if (scheduled.exchange(1) == 1) {
        return;
    }
    const auto delayMilliseconds = static_cast<std::uint64_t>(delaySeconds / 0.001);
    std::function<void()> run = utility::WeakBindMemberFunction(WeakAs<FetchChildrenQueue>(),
                                                                &FetchChildrenQueue::ProcessQueue);
    executor->PostAfterDelay(std::move(run), delayMilliseconds);
}

template <class Request, class Response, class List>
void FetchChildrenQueue<Request, Response, List>::ProcessQueue() {
    const std::lock_guard lock(mutex);

    // 1. One reading of the clock for the whole run.
    const std::int64_t now = detail::NowInTicks();

    // 2. Forget requests that were never answered (or failed) once they leave the window.
    std::vector<FetchRecord, RecordAllocator> lost;
    for (const FetchRecord& record : inFlight) {
        if (windowSeconds.load() * detail::kTicksPerSecond < now - record.startTime) {
            lost.push_back(record);
        }
    }
    for (const FetchRecord& record : lost) {
        RetireRequest(record.node.lock());
    }

    // 3. Age the window. The deque is in order of retirement, so a young record at the front
    // shields older ones behind it until it ages out itself.
    while (!recent.empty()) {
        if (windowSeconds.load() * detail::kTicksPerSecond >= now - recent.front().startTime) {
            break;
        }
        recent.pop_front();
    }

    // 4. Send while the window has room.
    while (!pending.empty() && static_cast<std::uint64_t>(inFlight.size() + recent.size()) <
                                   static_cast<std::uint64_t>(maxRequests.load())) {
        FetchRecord record = std::move(pending.front());
        pending.pop_front();
        kelcore::async::Future<void> future;
        if (const std::shared_ptr<VantroNode> node = record.node.lock()) {
            future = IssueRequest(node, record.page,
                                  GetResponseHandler(node, record.page, record.onChildren));
        } else {
            // Sent nowhere, but it takes its place in the window like any other request.
            future = kelcore::async::MakeFailedFuture<void>(std::make_exception_ptr(
                kelcore::config::kel_exception(kExpiredNodeText, kResultExpiredNode)));
        }
        if (future.IsValid()) {
            record.startTime = detail::NowInTicks();
            record.future = std::move(future);
            inFlight.push_back(std::move(record));
        }
    }

    // 5. and 6. The tick goes on while anything is waiting, flying or counted; from here on no
    // request for a run with no delay can bring the tick forward.
    scheduled.store(0);
    if (!pending.empty() || !inFlight.empty() || !recent.empty()) {
        ScheduleProcessing(kTickSeconds);
    }
}

template <class Request, class Response, class List>
void FetchChildrenQueue<Request, Response, List>::RetireRequest(
    const std::shared_ptr<VantroNode>& node) {
    // The page is not compared: with two requests of one node in flight, the older goes.
    for (auto it = inFlight.begin(); it != inFlight.end(); ++it) {
        if (it->node.lock() == node) {
            recent.push_back(*it);
            inFlight.erase(it);
            break;
        }
    }
    ScheduleProcessing(0);
}

template <class Request, class Response, class List>
void FetchChildrenQueue<Request, Response, List>::ReadRateLimitHeaders(
    const std::shared_ptr<Response>& response) {
    const auto& header = response->GetHeader();
    const auto limitField = header.find(kRateLimitLimitHeader);
    const auto windowField = header.find(kRateLimitWindowHeader);
    if (limitField == header.end() || windowField == header.end()) {
        return;
    }
    // Milliseconds on the wire, whole seconds in the queue (truncated towards zero).
    const int seconds = std::stoi(windowField->second, nullptr, 10) / 1000;
    const int limit = std::stoi(limitField->second, nullptr, 10);
    if (limit == 0 || seconds < 1) {
        return;
    }
    maxRequests.store(static_cast<std::int64_t>(limit));
    windowSeconds.store(static_cast<std::int64_t>(seconds));
}

}  // namespace vantrokelui::model::VantroConnectorIntegration
