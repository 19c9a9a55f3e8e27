#include "detail/EventInbox.h"

#include <utility>

namespace vantro::detail {

EventInbox::EventInbox(std::shared_ptr<kelcore::threads::AsyncExecutor> executor, Handler handler)
    : executor(std::move(executor)), handler(std::move(handler)) {}

void EventInbox::Push(Frames frames) {
    {
        std::lock_guard lock(mutex);
        for (auto& frame : frames) {
            queued.push_back(std::move(frame));
        }
        if (draining) {
            return;  // the running drain takes these too
        }
        draining = true;
    }
    executor->Post([self = shared_from_this()] { self->Drain(); });
}

void EventInbox::Drain() {
    for (;;) {
        Frames batch;
        {
            std::lock_guard lock(mutex);
            if (queued.empty()) {
                draining = false;
                return;
            }
            batch.swap(queued);
        }
        handler(batch);
    }
}

}  // namespace vantro::detail
