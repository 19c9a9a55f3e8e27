#include <kelcore/utility/RefCountedObjectWithWeakPtr.h>

namespace kelcore::utility {

// The count lives in a block of its own so that a WeakPtr can still read it, and refuse to
// revive the object, after the object is gone.
RefCountedObjectWithWeakPtr::RefCountedObjectWithWeakPtr()
    : count(std::make_shared<detail::WeakReferenceCount>()) {}

RefCountedObjectWithWeakPtr::~RefCountedObjectWithWeakPtr() = default;

void RefCountedObjectWithWeakPtr::AddRef() const noexcept {
    count->AddRef();
}

void RefCountedObjectWithWeakPtr::Release() const {
    if (count->Release()) {
        delete this;
    }
}

int RefCountedObjectWithWeakPtr::RefCount() const noexcept {
    return count->Count();
}

}  // namespace kelcore::utility
