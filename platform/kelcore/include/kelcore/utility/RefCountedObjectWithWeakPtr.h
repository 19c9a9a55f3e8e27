// An intrusive reference count, for boost::intrusive_ptr, that also hands out weak references
// (WeakPtr). The object is deleted on the thread that drops its last strong reference; weak
// references outlive it and then lock to null. Counting and locking are any thread.
//
//   class Manager : public kelcore::utility::RefCountedObjectWithWeakPtr { ... };
//   boost::intrusive_ptr<Manager> manager(new Manager);
//   kelcore::utility::WeakPtr<Manager> weak(manager);   // weak.Lock() is null once it is gone
#pragma once

#include <memory>

#include <kelcore/utility/WeakPtr.h>

namespace kelcore::utility {

class RefCountedObjectWithWeakPtr {
public:
    RefCountedObjectWithWeakPtr(const RefCountedObjectWithWeakPtr&) = delete;
    RefCountedObjectWithWeakPtr& operator=(const RefCountedObjectWithWeakPtr&) = delete;

    /// Adds a strong reference. Any thread.
    void AddRef() const noexcept;
    /// Drops a strong reference; the last one deletes the object, on the calling thread.
    /// Any thread.
    void Release() const;
    /// The strong references held now; only a hint while other threads hold some. Any thread.
    int RefCount() const noexcept;

    /// The count that WeakPtr shares with this object. Any thread.
    const std::shared_ptr<detail::WeakReferenceCount>& GetWeakReferenceCount() const noexcept {
        return count;
    }

protected:
    RefCountedObjectWithWeakPtr();
    virtual ~RefCountedObjectWithWeakPtr();

private:
    std::shared_ptr<detail::WeakReferenceCount> count;
};

/// Found by argument-dependent lookup for boost::intrusive_ptr. Any thread.
inline void intrusive_ptr_add_ref(const RefCountedObjectWithWeakPtr* object) noexcept {
    object->AddRef();
}
/// Found by argument-dependent lookup for boost::intrusive_ptr. Any thread.
inline void intrusive_ptr_release(const RefCountedObjectWithWeakPtr* object) {
    object->Release();
}

}  // namespace kelcore::utility
