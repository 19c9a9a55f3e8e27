// A process-wide instance made on first use and destroyed when the application reaches a
// given state (see appstatemanager). Once that state is reached no instance is made again: a
// fetch raises the null pointer exception naming the type. Fetching is any thread; two threads
// never both construct. The caller of Get must not keep the reference past the state.
//
//   static auto sManager = kelcore::utility::detail::CreateLazySingleton<ShareManager>(9);
//   sManager.Get().Share(sequence);   // throws kel_exception (kResultNullPointer) from state 9
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <typeinfo>
#include <utility>

#include <kelcore/appstatemanager/AppStateManager.h>
#include <kelcore/config/ErrorHandling.h>

namespace kelcore::utility::detail {

/// Registers `destroy` to run when the application reaches `appState` (see
/// appstatemanager::SetAppState). When that state has been reached already it registers
/// nothing and answers false: the caller still owns what it meant to have destroyed. Any
/// thread.
[[nodiscard]] bool DestroyOnAppState(int appState, std::function<void()> destroy);

template <class T>
class LazySingletonStorage {
public:
    explicit LazySingletonStorage(int appState) : appState(appState) {}

    T& Get(const std::shared_ptr<LazySingletonStorage>& self) {
        if (T* existing = published.load(std::memory_order_acquire)) {
            return *existing;
        }
        // std::call_once cannot be re-armed, and after the state the fetch must refuse rather
        // than construct: so a double-checked lock.
        std::lock_guard lock(mutex);
        if (T* existing = published.load(std::memory_order_relaxed)) {
            return *existing;
        }
        if (appstatemanager::HasReachedAppStateAlready(appState)) {
            config::DoThrowNullPtrException(typeid(T));
        }
        auto made = std::make_unique<T>();
        if (!DestroyOnAppState(appState, [self] { self->Destroy(); })) {
            config::DoThrowNullPtrException(typeid(T));  // the state arrived while T was made
        }
        instance = std::move(made);
        published.store(instance.get(), std::memory_order_release);
        return *instance;
    }

    void Destroy() {
        std::unique_ptr<T> dying;
        {
            std::lock_guard lock(mutex);
            published.store(nullptr, std::memory_order_relaxed);
            dying = std::move(instance);
        }
        // Destroyed with no lock held, so its destructor may use other singletons.
    }

private:
    const int appState;
    std::mutex mutex;
    std::unique_ptr<T> instance;
    std::atomic<T*> published{nullptr};
};

/// The fetcher that CreateLazySingleton makes; copies share one instance.
template <class T>
class LazySingleton {
public:
    explicit LazySingleton(int appState)
        : storage(std::make_shared<LazySingletonStorage<T>>(appState)) {}

    /// The instance, made on the first call. Throws config::kel_exception (kResultNullPointer,
    /// naming T) once the application has reached the singleton's state. Any thread.
    T& Get() const { return storage->Get(storage); }
    T& operator*() const { return Get(); }
    T* operator->() const { return &Get(); }

private:
    std::shared_ptr<LazySingletonStorage<T>> storage;
};

/// A fetcher for a `T` made on first use, unless `appState` has been reached, and destroyed
/// when it is. `T` is default-constructed. Any thread.
template <class T>
LazySingleton<T> CreateLazySingleton(int appState) {
    return LazySingleton<T>(appState);
}

}  // namespace kelcore::utility::detail
