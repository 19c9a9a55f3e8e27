// An intrusive reference count for toolkit nodes held by boost::intrusive_ptr. Toolkit objects
// may only be destroyed on the main thread, yet references are dropped on any thread; when the
// last one goes on another thread, the deletion is queued to the main thread instead. A deletion
// that is queued but never run (its dispatcher dropped unpumped) leaks the object. Counting is
// any thread.
//
//   class UI_Node : public kelcore::utility::DeleteOnMainThreadRefCountedObject { ... };
//   boost::intrusive_ptr<UI_Node> node(new UI_Node);   // released anywhere, deleted on main
#pragma once

#include <atomic>

namespace kelcore::utility {

class DeleteOnMainThreadRefCountedObject {
public:
    DeleteOnMainThreadRefCountedObject(const DeleteOnMainThreadRefCountedObject&) = delete;
    DeleteOnMainThreadRefCountedObject& operator=(const DeleteOnMainThreadRefCountedObject&) =
        delete;

    /// Adds a reference. Any thread.
    void AddRef() const noexcept;
    /// Drops a reference. The last one deletes the object at once on the main thread; on any
    /// other thread it queues the deletion to the main thread and returns. Any thread.
    void Release() const;
    /// The references held now; only a hint while other threads hold some. Any thread.
    int RefCount() const noexcept;

protected:
    DeleteOnMainThreadRefCountedObject() = default;
    virtual ~DeleteOnMainThreadRefCountedObject() = default;

private:
    mutable std::atomic<int> refCount{0};
};

/// Found by argument-dependent lookup for boost::intrusive_ptr. Any thread.
inline void intrusive_ptr_add_ref(const DeleteOnMainThreadRefCountedObject* object) noexcept {
    object->AddRef();
}
/// Found by argument-dependent lookup for boost::intrusive_ptr. Any thread.
inline void intrusive_ptr_release(const DeleteOnMainThreadRefCountedObject* object) {
    object->Release();
}

}  // namespace kelcore::utility
