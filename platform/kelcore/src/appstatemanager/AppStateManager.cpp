#include <kelcore/appstatemanager/AppStateManager.h>

#include <atomic>
#include <climits>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include <kelcore/appstatemanager/PrepareToQuitService.h>
#include <kelcore/logging/Logging.h>
#include <kelcore/utility/LazySingleton.h>

namespace kelcore::appstatemanager {
namespace {

struct DestroyRegistration {
    int appState;
    std::function<void()> destroy;
};

// The state, the destroy-registrations and the quit factories live together: ResetForTesting
// clears them all at once.
struct Registry {
    std::mutex mutex;
    std::atomic<int> appState{0};
    std::vector<DestroyRegistration> registrations;
    std::vector<PrepareToQuitWorkFactory> quitFactories;
    bool quitRunning = false;  // main thread only
};

Registry& TheRegistry() {
    // Leaked on purpose: states may still be set and registrations made by static destructors.
    static auto* registry = new Registry;
    return *registry;
}

void RunNewestFirst(std::vector<std::function<void()>>& due, std::string_view where) {
    for (auto it = due.rbegin(); it != due.rend(); ++it) {
        try {
            (*it)();
        } catch (...) {
            logging::LogException(where, std::current_exception());
        }
    }
}

// Takes out, in registration order, every registration due at `appState`.
std::vector<std::function<void()>> TakeDueLocked(Registry& registry, int appState) {
    std::vector<std::function<void()>> due;
    std::vector<DestroyRegistration> kept;
    for (auto& registration : registry.registrations) {
        if (registration.appState <= appState) {
            due.push_back(std::move(registration.destroy));
        } else {
            kept.push_back(std::move(registration));
        }
    }
    registry.registrations = std::move(kept);
    return due;
}

}  // namespace

void SetAppState(int appState) {
    auto& registry = TheRegistry();
    std::vector<std::function<void()>> due;
    {
        std::lock_guard lock(registry.mutex);
        if (appState <= registry.appState.load(std::memory_order_relaxed)) {
            return;
        }
        registry.appState.store(appState, std::memory_order_release);
        due = TakeDueLocked(registry, appState);
    }
    RunNewestFirst(due, "appstatemanager::SetAppState");
}

int GetAppState() {
    return TheRegistry().appState.load(std::memory_order_acquire);
}

bool HasReachedAppStateAlready(int appState) {
    return GetAppState() >= appState;
}

void ResetForTesting() {
    auto& registry = TheRegistry();
    std::vector<std::function<void()>> due;
    {
        std::lock_guard lock(registry.mutex);
        // Past every state while the pending registrations run, so none can be added meanwhile.
        registry.appState.store(INT_MAX, std::memory_order_release);
        due = TakeDueLocked(registry, INT_MAX);
        registry.quitFactories.clear();
    }
    RunNewestFirst(due, "appstatemanager::ResetForTesting");
    std::lock_guard lock(registry.mutex);
    registry.appState.store(0, std::memory_order_release);
}

void RegisterPrepareToQuitWork(PrepareToQuitWorkFactory factory) {
    if (!factory) {
        return;
    }
    auto& registry = TheRegistry();
    std::lock_guard lock(registry.mutex);
    registry.quitFactories.push_back(std::move(factory));
}

namespace {

// Answers true when the item calls off the quit. An item that throws is logged and let go.
bool PreparePreventsQuit(PrepareToQuitWorkItem& item) {
    try {
        return item.PrepareToQuit() == 0 || item.WantsToPreventAppTermination();
    } catch (...) {
        logging::LogException("appstatemanager::RunPrepareToQuit", std::current_exception());
        item.MarkDone();
        return false;
    }
}

// Waits for every item still working. Answers true when one calls off the quit meanwhile.
bool WaitPreventsQuit(const std::vector<std::shared_ptr<PrepareToQuitWorkItem>>& items) {
    for (const auto& item : items) {
        try {
            while (!item->IsFinished() && !item->HasTimedOut() &&
                   !item->WantsToPreventAppTermination()) {
                item->DoWork();
            }
            if (item->WantsToPreventAppTermination()) {
                return true;
            }
        } catch (...) {
            logging::LogException("appstatemanager::RunPrepareToQuit", std::current_exception());
        }
    }
    return false;
}

}  // namespace

bool RunPrepareToQuit() {
    auto& registry = TheRegistry();
    std::vector<PrepareToQuitWorkFactory> factories;
    {
        std::lock_guard lock(registry.mutex);
        if (registry.quitRunning) {
            return false;
        }
        registry.quitRunning = true;
        factories = registry.quitFactories;
    }

    std::vector<std::shared_ptr<PrepareToQuitWorkItem>> items;
    for (const auto& factory : factories) {
        try {
            if (auto item = factory()) {
                items.push_back(std::move(item));
            }
        } catch (...) {
            logging::LogException("appstatemanager::RunPrepareToQuit", std::current_exception());
        }
    }

    bool prevented = false;
    for (const auto& item : items) {
        if (PreparePreventsQuit(*item)) {
            prevented = true;
            break;
        }
    }
    prevented = prevented || WaitPreventsQuit(items);

    for (const auto& item : items) {
        item->MarkDone();
    }
    std::lock_guard lock(registry.mutex);
    registry.quitRunning = false;
    return !prevented;
}

}  // namespace kelcore::appstatemanager

namespace kelcore::utility::detail {

// Defined beside the state it registers with, so that the check and the registration are one
// step under one lock.
bool DestroyOnAppState(int appState, std::function<void()> destroy) {
    auto& registry = appstatemanager::TheRegistry();
    std::lock_guard lock(registry.mutex);
    if (registry.appState.load(std::memory_order_relaxed) >= appState) {
        return false;
    }
    registry.registrations.push_back({appState, std::move(destroy)});
    return true;
}

}  // namespace kelcore::utility::detail
