// An observable value. A writer on any thread calls SetValue; every observer then runs later,
// on the main thread, in the order of the sets, each call with the value as it was set. Three
// rules carry everything built on it:
//  - observers are never called from inside the setter, not even on the main thread;
//  - a delivery carries the value of its own set, not what the property holds when it arrives;
//  - observers are copied at set time, so subscribing or unsubscribing never disturbs a
//    delivery already on its way.
// The owner must be held by a std::shared_ptr before anything binds (AddBinding needs the weak
// self-reference of the virtual base EnableSharedAs). Named property classes derive from this
// template; one object may inherit many of them and shares one control block.
//
// SetValue and GetValue: any thread. AddBinding, releasing subscriptions and deliveries: main
// thread.
//
//   auto binding = property->AddBinding([](double value) { Show(value); });  // gets the current
//   property->SetValue(0.5);                                                 // then 0.5, later
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include <kelcore/allocator/STLAllocator.h>
#include <kelcore/threads/MainThread.h>
#include <kelcore/utility/EnableSharedAs.h>
#include <vantrokelui/utility/DataBinding.h>

namespace vantrokelui::utility {

/// A list of shared objects in the platform allocator, as list-valued properties store them.
template <class U>
using SharedPtrVector =
    std::vector<std::shared_ptr<U>, kelcore::allocator::STLAllocator<std::shared_ptr<U>>>;

template <class T, class Arg = T>
class NotifyingProperty : public virtual kelcore::utility::EnableSharedAs {
public:
    using ValueType = T;
    using ArgumentType = Arg;
    using Callback = std::function<void(Arg)>;
    using CallbackList = SharedPtrVector<Callback>;

    class DataBindingImpl;

    NotifyingProperty() : value() {}
    explicit NotifyingProperty(T initial) : value(std::move(initial)) {}
    // A property's identity is its observers; copying one would have to either share or drop
    // them, and neither is a copy.
    NotifyingProperty(const NotifyingProperty&) = delete;
    NotifyingProperty& operator=(const NotifyingProperty&) = delete;
    ~NotifyingProperty() override = default;

    /// A copy of the value. Any thread; another thread's set may already be newer than the last
    /// delivery.
    T GetValue() const {
        const std::lock_guard lock(mutex);
        return value;
    }

    /// Stores `newValue` and queues its delivery to every current observer. Does nothing when it
    /// is the same as the stored value: equal for plain values and text, the same raw pointer for
    /// pointers, the same pointers in the same order for lists; a NaN is always new. Any thread.
    void SetValue(Arg newValue) {
        [[maybe_unused]] T previous;  // released after the lock, see below
        {
            const std::lock_guard lock(mutex);
            if (value == newValue) {
                return;
            }
            previous = std::exchange(value, std::forward<Arg>(newValue));
            // Queued under the lock, so deliveries leave in the order the values were stored,
            // whichever threads set them.
            DispatchBindings(value, callbacks);
        }
        // `previous` dies here, outside the lock: it may own objects whose subscriptions to this
        // very property end with them.
    }

    /// Subscribes `callback`. It receives the current value once, asynchronously, and then every
    /// change. Throws std::bad_weak_ptr when no shared_ptr owns the property yet (the callback
    /// then still gets its first delivery but no subscription exists). Main thread.
    std::shared_ptr<DataBinding> AddBinding(Callback callback) {
        auto shared = std::allocate_shared<Callback>(kelcore::allocator::STLAllocator<Callback>(),
                                                     std::move(callback));
        {
            const std::lock_guard lock(mutex);
            DispatchBindings(value, CallbackList{shared});
            callbacks.push_back(shared);
        }
        std::weak_ptr<NotifyingProperty> self;
        try {
            // Aliasing the object's one control block: a dynamic cast could not tell apart two
            // properties of the same type inherited by one owner.
            self = std::shared_ptr<NotifyingProperty>(shared_from_this(), this);
        } catch (const std::bad_weak_ptr&) {
            // No subscription will exist to take the callback out again, so it must not stay.
            RemoveCallback(shared.get());
            throw;
        }
        return std::allocate_shared<DataBindingImpl>(
            kelcore::allocator::STLAllocator<DataBindingImpl>(), std::move(self),
            std::move(shared));
    }

private:
    // Touches nothing of the property, so a queued delivery stays valid after it has died.
    static void DispatchBindings(T deliveredValue, CallbackList observers) {
        kelcore::threads::AsyncCallFromMainThread(
            [deliveredValue = std::move(deliveredValue), observers = std::move(observers)] {
                // An empty function throws std::bad_function_call and ends the walk.
                for (const std::shared_ptr<Callback>& observer : observers) {
                    (*observer)(deliveredValue);
                }
            },
            0);
    }

    void RemoveCallback(const Callback* callback) {
        const std::lock_guard lock(mutex);
        for (auto it = callbacks.begin(); it != callbacks.end(); ++it) {
            if (it->get() == callback) {
                // The subscription still holds the callback, so this never destroys it under
                // the lock.
                callbacks.erase(it);
                return;
            }
        }
    }

    // Guards value and callbacks; never held while an observer runs or a value is destroyed.
    mutable std::mutex mutex;
    T value;
    // Not named `bindings`: owners also inherit DataBindingTarget, whose public `bindings` would
    // then be ambiguous in them.
    CallbackList callbacks;
};

/// A subscription: a weak reference to the property and the callback it shares with it.
template <class T, class Arg>
class NotifyingProperty<T, Arg>::DataBindingImpl final : public DataBinding {
public:
    DataBindingImpl(std::weak_ptr<NotifyingProperty> property, std::shared_ptr<Callback> callback)
        : property(std::move(property)), callback(std::move(callback)) {}

    /// Unsubscribes; a no-op when the property has already died.
    ~DataBindingImpl() override {
        if (const std::shared_ptr<NotifyingProperty> locked = property.lock()) {
            locked->RemoveCallback(callback.get());
        }
    }

private:
    std::weak_ptr<NotifyingProperty> property;
    std::shared_ptr<Callback> callback;
};

}  // namespace vantrokelui::utility
