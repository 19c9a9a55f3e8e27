// A weak reference to an intrusively counted object (see RefCountedObjectWithWeakPtr). It does
// not keep the object alive; Lock answers a strong boost::intrusive_ptr while the object lives
// and a null one for ever after it has gone. Locking races safely with the last release on
// another thread: either the lock wins and the object stays, or it answers null. A WeakPtr is a
// value like std::weak_ptr: one instance is not for concurrent mutation, but copies are
// independent, any thread.
//
//   kelcore::utility::WeakPtr<Manager> weak(manager);
//   if (auto strong = weak.Lock()) strong->Close();
#pragma once

#include <atomic>
#include <memory>
#include <type_traits>

#include <boost/smart_ptr/intrusive_ptr.hpp>

namespace kelcore::utility {

namespace detail {

/// The strong count of one object, kept apart from it so that weak references outlive it.
class WeakReferenceCount {
public:
    void AddRef() noexcept { count.fetch_add(1, std::memory_order_relaxed); }
    /// True when this drops the last reference.
    bool Release() noexcept { return count.fetch_sub(1, std::memory_order_acq_rel) == 1; }
    /// Adds a reference unless none is left; a count that reached zero never rises again.
    bool TryAddRef() noexcept {
        int current = count.load(std::memory_order_relaxed);
        while (current != 0) {
            if (count.compare_exchange_weak(current, current + 1, std::memory_order_acq_rel,
                                            std::memory_order_relaxed)) {
                return true;
            }
        }
        return false;
    }
    int Count() const noexcept { return count.load(std::memory_order_acquire); }

private:
    std::atomic<int> count{0};
};

}  // namespace detail

template <class T>
class WeakPtr {
public:
    /// Refers to nothing; Lock answers null.
    WeakPtr() noexcept = default;
    /// Observes `object`, which may be null. Any thread.
    WeakPtr(T* object)
        : object(object), count(object ? object->GetWeakReferenceCount() : nullptr) {}
    /// Observes what `strong` holds. Any thread.
    WeakPtr(const boost::intrusive_ptr<T>& strong) : WeakPtr(strong.get()) {}
    /// Converts from a weak pointer to a derived class. Any thread.
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    WeakPtr(const WeakPtr<U>& other) : object(other.object), count(other.count) {}

    /// A strong reference while the object lives; null after it has gone, for a default
    /// WeakPtr, and for an object no intrusive_ptr has held yet. Any thread.
    boost::intrusive_ptr<T> Lock() const {
        if (count && count->TryAddRef()) {
            return boost::intrusive_ptr<T>(object, false);
        }
        return {};
    }
    /// True when Lock would answer null at this moment. Any thread.
    bool Expired() const noexcept { return !count || count->Count() == 0; }
    /// Stops observing.
    void Reset() noexcept {
        object = nullptr;
        count.reset();
    }

private:
    template <class U>
    friend class WeakPtr;

    // Observes only: dereferenced solely under a reference that Lock has taken.
    T* object = nullptr;
    std::shared_ptr<detail::WeakReferenceCount> count;
};

}  // namespace kelcore::utility
