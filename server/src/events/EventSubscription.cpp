#include "events/EventSubscription.h"

#include <utility>

namespace vantroserver::events {

namespace {
// A client that stops reading must not make the server buffer without end.
constexpr std::size_t kMaxPending = 1000;
}  // namespace

void EventSubscription::Push(std::string frame) {
    std::function<void()> wake;
    {
        std::lock_guard lock(mutex);
        if (pending.size() >= kMaxPending) {
            overflowed = true;
        } else {
            pending.push_back(std::move(frame));
        }
        wake = wakeUp;
    }
    if (wake) {
        wake();
    }
}

std::vector<std::string> EventSubscription::TakePending() {
    std::lock_guard lock(mutex);
    return std::exchange(pending, {});
}

bool EventSubscription::Overflowed() {
    std::lock_guard lock(mutex);
    return overflowed;
}

bool EventSubscription::Close() {
    std::function<void()> wake;
    {
        std::lock_guard lock(mutex);
        if (closeRequested) {
            return false;
        }
        closeRequested = true;
        wake = wakeUp;
    }
    if (wake) {
        wake();
    }
    return true;
}

bool EventSubscription::CloseRequested() {
    std::lock_guard lock(mutex);
    return closeRequested;
}

void EventSubscription::SetWakeUp(std::function<void()> value) {
    std::lock_guard lock(mutex);
    wakeUp = std::move(value);
}

}  // namespace vantroserver::events
