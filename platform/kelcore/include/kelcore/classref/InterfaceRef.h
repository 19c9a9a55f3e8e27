// A counted reference to an object of a closed library that hands out interfaces rather than
// values (the client library's lists and items). The object keeps its own count
// (RefCountedObjectWithWeakPtr or the like), so a raw pointer received from such a library can
// be held again safely. Null is a valid value: callers check before use. Any thread.
//
//   kelcore::classref::InterfaceRef<vantro::VantroAccountList> list = future.Get();
//   if (!list) { kelcore::config::DoThrowNullPtrException(typeid(vantro::VantroAccountList)); }
#pragma once

#include <utility>

#include <boost/smart_ptr/intrusive_ptr.hpp>

namespace kelcore::classref {

template <typename T>
using InterfaceRef = boost::intrusive_ptr<T>;

/// A new `T` made from `args`, held by the returned reference.
template <typename T, typename... Args>
InterfaceRef<T> MakeInterfaceRef(Args&&... args) {
    return InterfaceRef<T>(new T(std::forward<Args>(args)...));
}

}  // namespace kelcore::classref
