// Fans list changes out to the open event streams, each only to users allowed to see the list's
// parent. Owned by the server; Subscribe and Publish from any thread.
//
//   auto subscription = hub.Subscribe(userId);      // kept by the connection
//   hub.Publish({"asset-list", folderId});           // from the change watcher
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "events/Event.h"
#include "events/EventSubscription.h"

namespace vantroserver::events {

class EventHub {
public:
    /// Whether `userId` may see the parent of `event`. Called on the publishing thread.
    using Visibility = std::function<bool(const std::string& userId, const Event& event)>;

    explicit EventHub(Visibility visibility);

    std::shared_ptr<EventSubscription> Subscribe(std::string userId);
    /// Pushes the event's frame to every live subscription whose user may see it; forgets
    /// subscriptions whose connection has gone.
    void Publish(const Event& event);
    std::size_t SubscriberCount();
    /// Asks every open stream to end; answers how many were open. Any thread.
    std::size_t CloseAll();

private:
    const Visibility visibility;
    std::mutex mutex;
    std::vector<std::weak_ptr<EventSubscription>> subscriptions;
};

}  // namespace vantroserver::events
