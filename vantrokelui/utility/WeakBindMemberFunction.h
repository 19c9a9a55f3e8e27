// Makes a callback that calls a member function on an object it holds only weakly: once the
// object has died the callback does nothing. The standard way to make an observer for
// AddBinding, since a delivery may arrive after its subscriber has gone. `Base` may be a base of
// `Owner` that declares the member; a virtual member is called virtually. Any thread, as far as
// the member allows.
//
//   binding = model->AddIsLoggedInBinding(
//       utility::WeakBindMemberFunction(weakSignin, &IsLoggedInNotifyingProperty::SetIsLoggedIn));
#pragma once

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

namespace vantrokelui::utility {

template <class Owner, class Base, class... Args>
std::function<void(Args...)> WeakBindMemberFunction(const std::weak_ptr<Owner>& owner,
                                                    void (Base::*member)(Args...)) {
    static_assert(std::is_base_of_v<Base, Owner>, "the member must belong to the owner");
    return [owner, member](Args... args) {
        // The lock is held for the whole call, so the object cannot die inside its own member.
        if (const std::shared_ptr<Owner> locked = owner.lock()) {
            (static_cast<Base&>(*locked).*member)(std::forward<Args>(args)...);
        }
    };
}

}  // namespace vantrokelui::utility
