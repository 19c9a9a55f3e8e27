// A weak reference to itself for an object owned by std::shared_ptr, usable from any of its
// bases. Each "property" class inherits EnableSharedAs virtually, so an object made of many
// properties has one self-reference and one control block for all of them. The object must be
// owned by a shared_ptr before anything asks for it; until then SharedAs throws
// std::bad_weak_ptr. Any thread, as far as the owning shared_ptr's control block is.
//
//   struct NameProperty : virtual public kelcore::utility::EnableSharedAs { ... };
//   struct Node : NameProperty, IDProperty { ... };
//   std::weak_ptr<Node> self = node->WeakAs<Node>();   // from inside a property, too
#pragma once

#include <memory>

namespace kelcore::utility {

namespace detail {

/// The one enable_shared_from_this of an object, shared through virtual inheritance.
class SharedAsVirtualBase : public std::enable_shared_from_this<SharedAsVirtualBase> {
public:
    virtual ~SharedAsVirtualBase() = default;

protected:
    SharedAsVirtualBase() = default;
    // A copy is a new object: it must not share the original's owner.
    SharedAsVirtualBase(const SharedAsVirtualBase&) noexcept : enable_shared_from_this() {}
    SharedAsVirtualBase& operator=(const SharedAsVirtualBase&) noexcept { return *this; }
};

}  // namespace detail

class EnableSharedAs : public virtual detail::SharedAsVirtualBase {
public:
    /// A shared pointer to this object as a `T`, on the object's own control block. Null when
    /// the object is not a `T`. Throws std::bad_weak_ptr when no shared_ptr owns the object
    /// (before it is wrapped, or while it is being destroyed). Any thread.
    template <class T>
    std::shared_ptr<T> SharedAs() {
        return std::dynamic_pointer_cast<T>(shared_from_this());
    }
    /// The const form of SharedAs. Any thread.
    template <class T>
    std::shared_ptr<const T> SharedAs() const {
        return std::dynamic_pointer_cast<const T>(shared_from_this());
    }

    /// A weak pointer to this object as a `T`; empty when the object is not a `T`. Throws
    /// std::bad_weak_ptr when no shared_ptr owns the object, as SharedAs does. Any thread.
    template <class T>
    std::weak_ptr<T> WeakAs() {
        return SharedAs<T>();
    }
    /// The const form of WeakAs. Any thread.
    template <class T>
    std::weak_ptr<const T> WeakAs() const {
        return SharedAs<T>();
    }

protected:
    EnableSharedAs() = default;
    EnableSharedAs(const EnableSharedAs&) = default;
    EnableSharedAs& operator=(const EnableSharedAs&) = default;
    ~EnableSharedAs() override = default;
};

}  // namespace kelcore::utility
