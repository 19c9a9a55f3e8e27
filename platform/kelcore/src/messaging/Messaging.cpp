#include <kelcore/messaging/Messaging.h>

#include <algorithm>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <typeinfo>
#include <unordered_map>
#include <utility>
#include <vector>

#include <kelcore/config/ErrorHandling.h>

namespace kelcore::messaging {

namespace {

using utility::ImmutableString;

// One listener's place on one station. A delivery holds it by shared pointer, so a removal
// while the delivery runs only marks it, and the delivery skips it from then on.
struct Subscription {
    Subscription(ImmutableString station, Listener* listener)
        : station(std::move(station)), listener(listener) {}

    const ImmutableString station;
    // Observed, not owned: the listener's destructor retires each of its subscriptions before
    // its memory goes, and a call is made only while `removed` is false.
    Listener* const listener;

    std::mutex mutex;
    std::condition_variable callFinished;
    bool removed = false;
    int callsInProgress = 0;
};

using SubscriptionPtr = std::shared_ptr<Subscription>;

struct Stations {
    std::mutex mutex;
    std::unordered_map<ImmutableString, std::vector<SubscriptionPtr>> listenersByStation;
    std::unordered_map<const Listener*, std::vector<SubscriptionPtr>> subscriptionsByListener;
};

// Never destroyed, so that listeners with static storage can still unsubscribe at exit.
Stations& GetStations() {
    static Stations& stations = *new Stations;
    return stations;
}

// Subscriptions whose listener is being called on this thread, innermost last. Removal does
// not wait for these: they are further up this thread's own stack.
thread_local std::vector<const Subscription*> tCallsOnThisThread;

// Marks the call begun; undone even when the listener throws.
class CallInProgress {
public:
    explicit CallInProgress(Subscription& subscription) : subscription(subscription) {
        tCallsOnThisThread.push_back(&subscription);
    }
    ~CallInProgress() {
        tCallsOnThisThread.pop_back();
        {
            std::lock_guard lock(subscription.mutex);
            --subscription.callsInProgress;
        }
        subscription.callFinished.notify_all();
    }
    CallInProgress(const CallInProgress&) = delete;
    CallInProgress& operator=(const CallInProgress&) = delete;

private:
    Subscription& subscription;
};

// Takes `subscription` off its station, and the station off the registry when it is left empty.
// Call with the registry locked.
void DetachFromStation(Stations& stations, const Subscription& subscription) {
    const auto onStation = stations.listenersByStation.find(subscription.station);
    std::erase_if(onStation->second,
                  [&](const SubscriptionPtr& entry) { return entry.get() == &subscription; });
    if (onStation->second.empty()) {
        stations.listenersByStation.erase(onStation);
    }
}

// Call with the registry unlocked: waits for calls on other threads to finish.
void Retire(Subscription& subscription) {
    const auto ownCalls =
        std::count(tCallsOnThisThread.begin(), tCallsOnThisThread.end(), &subscription);
    std::unique_lock lock(subscription.mutex);
    subscription.removed = true;
    subscription.callFinished.wait(lock, [&] { return subscription.callsInProgress == ownCalls; });
}

}  // namespace

void AddRawListener(const ImmutableString& station, Listener* listener) {
    if (listener == nullptr) {
        config::DoThrowNullPtrException(typeid(Listener));
    }
    Stations& stations = GetStations();
    std::lock_guard lock(stations.mutex);
    auto& subscriptions = stations.subscriptionsByListener[listener];
    const bool alreadyThere =
        std::any_of(subscriptions.begin(), subscriptions.end(),
                    [&](const SubscriptionPtr& entry) { return entry->station == station; });
    if (alreadyThere) {
        return;
    }
    auto subscription = std::make_shared<Subscription>(station, listener);
    stations.listenersByStation[station].push_back(subscription);
    subscriptions.push_back(std::move(subscription));
}

void RemoveRawListener(const ImmutableString& station, Listener* listener) {
    SubscriptionPtr removed;
    {
        Stations& stations = GetStations();
        std::lock_guard lock(stations.mutex);
        const auto mine = stations.subscriptionsByListener.find(listener);
        if (mine == stations.subscriptionsByListener.end()) {
            return;
        }
        const auto found =
            std::find_if(mine->second.begin(), mine->second.end(),
                         [&](const SubscriptionPtr& entry) { return entry->station == station; });
        if (found == mine->second.end()) {
            return;
        }
        removed = *found;
        mine->second.erase(found);
        if (mine->second.empty()) {
            stations.subscriptionsByListener.erase(mine);
        }
        DetachFromStation(stations, *removed);
    }
    Retire(*removed);
}

void SendRawMessage(const ImmutableString& station, const RawMessage& message) {
    std::vector<SubscriptionPtr> listeners;
    {
        Stations& stations = GetStations();
        std::lock_guard lock(stations.mutex);
        const auto found = stations.listenersByStation.find(station);
        if (found == stations.listenersByStation.end()) {
            return;
        }
        listeners = found->second;
    }
    for (const auto& subscription : listeners) {
        {
            std::lock_guard lock(subscription->mutex);
            if (subscription->removed) {
                continue;
            }
            ++subscription->callsInProgress;
        }
        const CallInProgress call(*subscription);
        subscription->listener->ReceiveRawMessage(message);
    }
}

std::size_t CountRawListeners(const ImmutableString& station) {
    Stations& stations = GetStations();
    std::lock_guard lock(stations.mutex);
    const auto found = stations.listenersByStation.find(station);
    return found == stations.listenersByStation.end() ? 0 : found->second.size();
}

void RemoveAllRawListenersForTesting() {
    decltype(Stations::listenersByStation) forgotten;
    {
        Stations& stations = GetStations();
        std::lock_guard lock(stations.mutex);
        forgotten.swap(stations.listenersByStation);
        stations.subscriptionsByListener.clear();
    }
    for (auto& [station, subscriptions] : forgotten) {
        for (auto& subscription : subscriptions) {
            std::lock_guard lock(subscription->mutex);
            subscription->removed = true;
        }
    }
}

void RemoveRawListenerFromAllStations(Listener* listener) {
    std::vector<SubscriptionPtr> removed;
    {
        Stations& stations = GetStations();
        std::lock_guard lock(stations.mutex);
        const auto mine = stations.subscriptionsByListener.find(listener);
        if (mine == stations.subscriptionsByListener.end()) {
            return;
        }
        removed = std::move(mine->second);
        stations.subscriptionsByListener.erase(mine);
        for (const auto& subscription : removed) {
            DetachFromStation(stations, *subscription);
        }
    }
    for (const auto& subscription : removed) {
        Retire(*subscription);
    }
}

}  // namespace kelcore::messaging
