// Objects that inherit several named properties, as the view models and nodes do: separate
// values per named class, one control block, weak writers reaching the owner's overrides, and
// one owner following another's value through a binding.
#include <memory>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/string/String.h>
#include <support/MainThreadFixture.h>
#include <vantrokelui/utility/ActiveAssetNameNotifyingProperty.h>
#include <vantrokelui/utility/CreateNewLinkModeNotifyingProperty.h>
#include <vantrokelui/utility/DataBinding.h>
#include <vantrokelui/utility/DataBindingTarget.h>
#include <vantrokelui/utility/IsLoggedInNotifyingProperty.h>
#include <vantrokelui/utility/IsNetworkConnectedNotifyingProperty.h>
#include <vantrokelui/utility/WeakBindMemberFunction.h>

namespace vantrokelui {
namespace {

using kelcore::string::string;

// Stands for the panel's view model: three bool properties, one of them with its own rule.
class PanelModel final : public IsLoggedInNotifyingProperty,
                         public IsNetworkConnectedNotifyingProperty,
                         public CreateNewLinkModeNotifyingProperty,
                         public ActiveAssetNameNotifyingProperty {
public:
    void SetIsNetworkConnected(bool connected) override {
        ++viewDecisions;  // the real one re-decides its screen here
        IsNetworkConnectedNotifyingProperty::SetIsNetworkConnected(connected);
    }

    int viewDecisions = 0;
};

// Stands for the sign-in view model: holds its own IsLoggedIn and follows the panel's.
class SigninModel final : public IsLoggedInNotifyingProperty,
                          public ActiveAssetNameNotifyingProperty,
                          public utility::DataBindingTarget {
public:
    void Follow(PanelModel& panel) {
        bindings.push_back(panel.AddIsLoggedInBinding(utility::WeakBindMemberFunction(
            WeakAs<SigninModel>(), &IsLoggedInNotifyingProperty::SetIsLoggedIn)));
        bindings.push_back(panel.AddActiveAssetNameBinding(utility::WeakBindMemberFunction(
            WeakAs<SigninModel>(), &ActiveAssetNameNotifyingProperty::SetActiveAssetName)));
    }

    void SetIsLoggedIn(bool loggedIn) override {
        loggedInSets.push_back(loggedIn);
        IsLoggedInNotifyingProperty::SetIsLoggedIn(loggedIn);
    }

    std::vector<bool> loggedInSets;
};

// Binds to itself while it is being built, which cannot work: nothing owns it yet.
class SelfBindingModel final : public IsLoggedInNotifyingProperty {
public:
    SelfBindingModel() {
        binding = AddIsLoggedInBinding([](bool) {});
    }

    std::shared_ptr<utility::DataBinding> binding;
};

// A weak pointer to one named class of `owner`, as the share pipeline keeps them.
template <class Named, class Owner>
std::weak_ptr<Named> WeakProperty(const std::shared_ptr<Owner>& owner) {
    return std::shared_ptr<Named>(owner, static_cast<Named*>(owner.get()));
}

// How a writer holding only a weak pointer sets a value. Returns whether the owner was alive.
bool WriteNetwork(const std::weak_ptr<IsNetworkConnectedNotifyingProperty>& weak, bool value) {
    if (const auto property = weak.lock()) {
        property->SetIsNetworkConnected(value);
        return true;
    }
    return false;
}

class PropertyOwnerTest : public testsupport::MainThreadFixture {};

TEST_F(PropertyOwnerTest, SeveralBoolPropertiesOfOneOwnerKeepSeparateValuesAndObservers) {
    auto panel = std::make_shared<PanelModel>();
    std::vector<bool> loggedIn;
    std::vector<bool> connected;
    std::vector<bool> newLink;
    utility::DataBindingTarget target;
    target.bindings.push_back(panel->AddIsLoggedInBinding([&](bool v) { loggedIn.push_back(v); }));
    target.bindings.push_back(
        panel->AddIsNetworkConnectedBinding([&](bool v) { connected.push_back(v); }));
    target.bindings.push_back(
        panel->AddCreateNewLinkModeBinding([&](bool v) { newLink.push_back(v); }));
    Pump();

    panel->SetIsNetworkConnected(true);
    Pump();
    EXPECT_EQ(loggedIn, std::vector<bool>{false});
    EXPECT_EQ(connected, (std::vector<bool>{false, true}));
    EXPECT_EQ(newLink, std::vector<bool>{false});

    panel->SetCreateNewLinkMode(true);
    panel->SetIsLoggedIn(true);
    panel->SetIsLoggedIn(false);
    Pump();
    EXPECT_EQ(loggedIn, (std::vector<bool>{false, true, false}));
    EXPECT_EQ(connected, (std::vector<bool>{false, true}));
    EXPECT_EQ(newLink, (std::vector<bool>{false, true}));
    EXPECT_FALSE(panel->GetIsLoggedIn());
    EXPECT_TRUE(panel->GetIsNetworkConnected());
    EXPECT_TRUE(panel->GetCreateNewLinkMode());
}

TEST_F(PropertyOwnerTest, EveryPropertyOfAnOwnerSharesItsControlBlock) {
    auto panel = std::make_shared<PanelModel>();
    auto loggedIn = WeakProperty<IsLoggedInNotifyingProperty>(panel);
    auto connected = WeakProperty<IsNetworkConnectedNotifyingProperty>(panel);
    auto newLink = WeakProperty<CreateNewLinkModeNotifyingProperty>(panel);
    EXPECT_NE(static_cast<const void*>(loggedIn.lock().get()),
              static_cast<const void*>(connected.lock().get()));
    EXPECT_NE(static_cast<const void*>(connected.lock().get()),
              static_cast<const void*>(newLink.lock().get()));

    auto binding = panel->AddIsLoggedInBinding([](bool) {});
    EXPECT_EQ(panel.use_count(), 1) << "neither weak pointers nor bindings own the owner";
    EXPECT_EQ(panel->WeakAs<IsNetworkConnectedNotifyingProperty>().lock().get(),
              connected.lock().get());

    panel.reset();
    EXPECT_TRUE(loggedIn.expired());
    EXPECT_TRUE(connected.expired());
    EXPECT_TRUE(newLink.expired());
    binding.reset();  // its property died with the owner
}

TEST_F(PropertyOwnerTest, AWeakPointerToANamedClassReachesTheOwnersOverride) {
    auto panel = std::make_shared<PanelModel>();
    auto connected = WeakProperty<IsNetworkConnectedNotifyingProperty>(panel);
    std::vector<bool> seen;
    auto binding = panel->AddIsNetworkConnectedBinding([&](bool v) { seen.push_back(v); });

    EXPECT_TRUE(WriteNetwork(connected, true));
    EXPECT_EQ(panel->viewDecisions, 1);
    EXPECT_TRUE(panel->GetIsNetworkConnected());
    EXPECT_FALSE(panel->GetIsLoggedIn());
    Pump();
    EXPECT_EQ(seen, (std::vector<bool>{false, true}));
}

TEST_F(PropertyOwnerTest, AWeakPointerToAPropertyOfADeadOwnerWritesNothing) {
    auto panel = std::make_shared<PanelModel>();
    auto connected = WeakProperty<IsNetworkConnectedNotifyingProperty>(panel);
    panel.reset();
    EXPECT_EQ(connected.lock(), nullptr);
    EXPECT_FALSE(WriteNetwork(connected, true));
    EXPECT_EQ(Pump(), 0u);
}

TEST_F(PropertyOwnerTest, AnOwnersConstructorCannotBindToItsOwnProperty) {
    EXPECT_THROW(static_cast<void>(std::make_shared<SelfBindingModel>()), std::bad_weak_ptr);
}

TEST_F(PropertyOwnerTest, TheSigninModelFollowsThePanelsLoginThroughABinding) {
    auto panel = std::make_shared<PanelModel>();
    auto signin = std::make_shared<SigninModel>();
    signin->Follow(*panel);
    Pump();  // the first deliveries copy the panel's current values
    EXPECT_EQ(signin->loggedInSets, std::vector<bool>{false});

    std::vector<bool> signinSeen;
    auto viewBinding = signin->AddIsLoggedInBinding([&](bool v) { signinSeen.push_back(v); });
    Pump();
    signinSeen.clear();

    panel->SetIsLoggedIn(true);
    panel->SetActiveAssetName(u"Sequence 01");
    EXPECT_FALSE(signin->GetIsLoggedIn()) << "two values, not one";
    Pump();
    EXPECT_TRUE(signin->GetIsLoggedIn());
    EXPECT_EQ(signin->GetActiveAssetName(), u"Sequence 01");
    EXPECT_EQ(signin->loggedInSets, (std::vector<bool>{false, true})) << "through the override";
    EXPECT_EQ(signinSeen, std::vector<bool>{true}) << "the sign-in model's own observers follow";

    signin->SetIsLoggedIn(false);
    EXPECT_TRUE(panel->GetIsLoggedIn()) << "following is one way";
    Pump();
}

TEST_F(PropertyOwnerTest, ADeadSigninModelNoLongerFollows) {
    auto panel = std::make_shared<PanelModel>();
    auto signin = std::make_shared<SigninModel>();
    std::weak_ptr<SigninModel> weakSignin = signin;
    signin->Follow(*panel);
    Pump();

    panel->SetIsLoggedIn(true);  // queued for the sign-in model
    signin.reset();
    EXPECT_TRUE(weakSignin.expired());
    EXPECT_NO_THROW(Pump());
    panel->SetIsLoggedIn(false);
    EXPECT_NO_THROW(Pump());
}

}  // namespace
}  // namespace vantrokelui
