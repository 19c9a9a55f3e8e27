#include <kelcore/utility/DeleteOnMainThreadRefCountedObject.h>

#include <kelcore/threads/MainThread.h>

namespace kelcore::utility {

// boost::intrusive_ref_counter deletes on the releasing thread; toolkit nodes must die on the
// main thread, so the count is kept here.
void DeleteOnMainThreadRefCountedObject::AddRef() const noexcept {
    refCount.fetch_add(1, std::memory_order_relaxed);
}

void DeleteOnMainThreadRefCountedObject::Release() const {
    if (refCount.fetch_sub(1, std::memory_order_acq_rel) != 1) {
        return;
    }
    if (threads::CurrentThreadIsMainThread()) {
        delete this;
        return;
    }
    // The count is zero, so no reference remains: the closure is the object's only owner.
    threads::AsyncCallFromMainThread([object = this] { delete object; }, 0);
}

int DeleteOnMainThreadRefCountedObject::RefCount() const noexcept {
    return refCount.load(std::memory_order_relaxed);
}

}  // namespace kelcore::utility
