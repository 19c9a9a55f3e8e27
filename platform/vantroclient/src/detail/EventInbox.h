// Carries the frames of one event stream from the transport's I/O thread to an executor, in the
// order they arrived, one batch at a time: a pool would otherwise run two posted batches at
// once and in either order. The I/O thread only queues and posts here; it never runs the
// handler, so it never holds what the handler touches. Shared by the stream's callbacks; any
// thread.
//
//   auto inbox = std::make_shared<EventInbox>(executor, [weak](auto frames) { ... });
//   inbox->Push(parser.Feed(bytes));   // the I/O thread
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include <kelcore/threads/AsyncExecutor.h>

#include "detail/EventStreamParser.h"

namespace vantro::detail {

class EventInbox : public std::enable_shared_from_this<EventInbox> {
public:
    using Frames = std::vector<EventStreamParser::Frame>;
    using Handler = std::function<void(const Frames&)>;

    EventInbox(std::shared_ptr<kelcore::threads::AsyncExecutor> executor, Handler handler);

    /// Queues `frames` and makes sure a drain is posted. Any thread.
    void Push(Frames frames);

private:
    void Drain();

    const std::shared_ptr<kelcore::threads::AsyncExecutor> executor;
    const Handler handler;
    std::mutex mutex;
    Frames queued;          // guarded by mutex
    bool draining = false;  // guarded by mutex
};

}  // namespace vantro::detail
