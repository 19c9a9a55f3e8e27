// Declares one named property class: `<Name>NotifyingProperty`, a NotifyingProperty<T, Arg>
// whose value operations carry the property's name, so that one object can inherit several
// properties of the same stored type and a weak pointer can aim at a single value of it.
// Get<Name> and Set<Name> are virtual: an owner overrides the setter to add its own rule, and a
// writer holding only a weak pointer to the named class still reaches that override.
// Add<Name>Binding subscribes (see NotifyingProperty::AddBinding).
//
//   VANTROKELUI_NAMED_NOTIFYING_PROPERTY(IsLoggedIn, bool, bool);
//   // -> class IsLoggedInNotifyingProperty { GetIsLoggedIn, SetIsLoggedIn, AddIsLoggedInBinding }
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include <vantrokelui/utility/DataBinding.h>
#include <vantrokelui/utility/NotifyingProperty.h>

#define VANTROKELUI_NAMED_NOTIFYING_PROPERTY(Name, T, Arg)                                     \
    class Name##NotifyingProperty : public ::vantrokelui::utility::NotifyingProperty<T, Arg> { \
    public:                                                                                    \
        using ::vantrokelui::utility::NotifyingProperty<T, Arg>::NotifyingProperty;            \
        /** The value; any thread. */                                                          \
        virtual T Get##Name() const { return this->GetValue(); }                               \
        /** Stores and notifies unless unchanged; any thread. Owners may add rules. */         \
        virtual void Set##Name(Arg newValue) { this->SetValue(std::forward<Arg>(newValue)); }  \
        /** Subscribes; main thread. */                                                        \
        std::shared_ptr<::vantrokelui::utility::DataBinding> Add##Name##Binding(               \
            std::function<void(Arg)> callback) {                                               \
            return this->AddBinding(std::move(callback));                                      \
        }                                                                                      \
    }
