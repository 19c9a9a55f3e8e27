// A member function of a toolkit node as a std::function that holds the node only weakly, for
// bindings and notifications that may arrive after the node has gone: they then do nothing.
// Nodes are held by intrusive pointer, so WeakBindMemberFunction's std::weak_ptr does not fit.
// Takes no reference until a call, so a node may bind itself inside its own constructor.
// Main thread, as nodes are.
//
//   bindings.push_back(viewModel->AddIsNetworkConnectedBinding(
//       kelui::ui::WeakNodeFunction(this, &CopyLinkSectionView::OnNetworkChanged)));
#pragma once

#include <functional>
#include <type_traits>
#include <utility>

#include <kelui/ui/UI_WeakNodePtr.h>

namespace kelui::ui {

template <class Node, class Base, class... Args>
std::function<void(Args...)> WeakNodeFunction(Node* node, void (Base::*member)(Args...)) {
    static_assert(std::is_base_of_v<Base, Node>, "the member must belong to the node");
    const UI_WeakNodePtr<Node> weakNode(node);
    return [weakNode, member](Args... args) {
        // The lock keeps the node alive for the whole call.
        if (const auto locked = weakNode.Lock()) {
            (static_cast<Base&>(*locked).*member)(std::forward<Args>(args)...);
        }
    };
}

}  // namespace kelui::ui
