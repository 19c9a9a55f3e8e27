// A weak reference to a node: it does not keep the node alive and locks to null once the node
// is gone (or is on its way to deletion). How a popup host remembers its anchor without owning
// a piece of the host's window. Main thread, like the nodes themselves.
//
//   kelui::ui::UI_WeakNodePtr<UI_Node> anchor(node);
//   if (auto locked = anchor.Lock()) { ... }
#pragma once

#include <memory>

#include <boost/intrusive_ptr.hpp>

#include <kelui/ui/UI_Node.h>

namespace kelui::ui {

template <class T>
class UI_WeakNodePtr {
public:
    UI_WeakNodePtr() = default;
    UI_WeakNodePtr(const boost::intrusive_ptr<T>& node)  // NOLINT: converts like weak_ptr does
        : UI_WeakNodePtr(node.get()) {}
    /// From a raw node: takes no reference, so it is safe inside the node's own constructor.
    explicit UI_WeakNodePtr(T* node)
        : token(node ? node->GetLifetimeToken() : std::weak_ptr<void>{}), raw(node) {}

    /// The node while it lives; null after it died, or when it was never set.
    boost::intrusive_ptr<T> Lock() const {
        // The token dies with the node; a count of 0 is a node whose deletion is already queued.
        if (token.expired() || !raw || raw->RefCount() <= 0) {
            return nullptr;
        }
        return boost::intrusive_ptr<T>(raw);
    }
    bool Expired() const { return !Lock(); }
    void Reset() { *this = UI_WeakNodePtr(); }

private:
    std::weak_ptr<void> token;
    T* raw = nullptr;
};

}  // namespace kelui::ui
