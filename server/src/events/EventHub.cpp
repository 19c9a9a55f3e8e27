#include "events/EventHub.h"

#include <map>

namespace vantroserver::events {

EventHub::EventHub(Visibility visibility) : visibility(std::move(visibility)) {}

std::shared_ptr<EventSubscription> EventHub::Subscribe(std::string userId) {
    auto subscription = std::make_shared<EventSubscription>(std::move(userId));
    std::lock_guard lock(mutex);
    // Streams that closed are forgotten here too, so clients that come and go while nothing
    // changes do not grow the list.
    std::erase_if(subscriptions, [](const auto& weak) { return weak.expired(); });
    subscriptions.push_back(subscription);
    return subscription;
}

void EventHub::Publish(const Event& event) {
    std::vector<std::shared_ptr<EventSubscription>> live;
    {
        std::lock_guard lock(mutex);
        std::erase_if(subscriptions, [](const auto& weak) { return weak.expired(); });
        for (const auto& weak : subscriptions) {
            if (auto subscription = weak.lock()) {
                live.push_back(std::move(subscription));
            }
        }
    }
    // Visibility asks the database: outside the lock, once per user however many streams.
    std::map<std::string, bool, std::less<>> allowed;
    const std::string frame = event.Frame();
    for (const auto& subscription : live) {
        auto [entry, fresh] = allowed.try_emplace(subscription->UserId(), false);
        if (fresh) {
            entry->second = visibility(subscription->UserId(), event);
        }
        if (entry->second) {
            subscription->Push(frame);
        }
    }
}

std::size_t EventHub::SubscriberCount() {
    std::lock_guard lock(mutex);
    std::erase_if(subscriptions, [](const auto& weak) { return weak.expired(); });
    return subscriptions.size();
}

std::size_t EventHub::CloseAll() {
    std::vector<std::shared_ptr<EventSubscription>> live;
    {
        std::lock_guard lock(mutex);
        std::erase_if(subscriptions, [](const auto& weak) { return weak.expired(); });
        for (const auto& weak : subscriptions) {
            if (auto subscription = weak.lock()) {
                live.push_back(std::move(subscription));
            }
        }
    }
    std::size_t closed = 0;
    for (const auto& subscription : live) {
        closed += subscription->Close() ? 1 : 0;
    }
    return closed;
}

}  // namespace vantroserver::events
