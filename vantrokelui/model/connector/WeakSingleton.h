// The one live instance of T, for as long as someone holds it. The first caller makes it; every
// later caller gets the same object while any shared pointer to it lives; once the last holder
// lets go it dies, and the next caller makes a fresh one. The connector's page queues derive
// from it, so all nodes of a kind share one queue and the queue dies with the last of them.
// Each T has its own weak pointer and mutex. Any thread.
//
//   class FetchFolderChildrenQueue : public WeakSingleton<FetchFolderChildrenQueue> { ... };
//   std::shared_ptr<FetchFolderChildrenQueue> queue = FetchFolderChildrenQueue::GetInstance();
#pragma once

#include <memory>
#include <mutex>

namespace vantrokelui::model::VantroConnectorIntegration {

template <class T>
class WeakSingleton {
public:
    /// The live instance, or a new one (made with T's public default constructor) when none
    /// lives. Any thread.
    static std::shared_ptr<T> GetInstance() {
        const std::lock_guard lock(sMutex);
        std::shared_ptr<T> instance = sInstance.lock();
        if (!instance) {
            instance = std::make_shared<T>();
            sInstance = instance;
        }
        return instance;
    }

protected:
    WeakSingleton() = default;
    ~WeakSingleton() = default;

private:
    static inline std::mutex sMutex;
    static inline std::weak_ptr<T> sInstance;
};

}  // namespace vantrokelui::model::VantroConnectorIntegration
