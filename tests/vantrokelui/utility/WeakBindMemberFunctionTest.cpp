#include <vantrokelui/utility/WeakBindMemberFunction.h>

#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/string/String.h>
#include <support/MainThreadFixture.h>
#include <vantrokelui/utility/DataBindingTarget.h>
#include <vantrokelui/utility/NotifyingProperty.h>

namespace vantrokelui::utility {
namespace {

class Base {
public:
    virtual ~Base() = default;
    virtual void Receive(int value) { calls.push_back("Base " + std::to_string(value)); }
    void Plain(int value) { calls.push_back("Plain " + std::to_string(value)); }

    std::vector<std::string> calls;
};

class Middle : public Base {
public:
    void Receive(int value) override { calls.push_back("Middle " + std::to_string(value)); }
};

class MostDerived final : public Middle {
public:
    void Receive(int value) override { calls.push_back("MostDerived " + std::to_string(value)); }
};

class Text {
public:
    void SetText(const kelcore::string::string& text) { shown = text; }
    kelcore::string::string shown;
};

TEST(WeakBindMemberFunction, CallsTheMemberOnALiveObject) {
    auto object = std::make_shared<Base>();
    auto call = WeakBindMemberFunction(std::weak_ptr<Base>(object), &Base::Plain);
    call(3);
    EXPECT_EQ(object->calls, std::vector<std::string>{"Plain 3"});
}

TEST(WeakBindMemberFunction, DoesNothingOnceTheObjectHasDied) {
    auto object = std::make_shared<Base>();
    std::weak_ptr<Base> weak = object;
    auto call = WeakBindMemberFunction(weak, &Base::Receive);
    object.reset();
    EXPECT_NO_THROW(call(1));
}

TEST(WeakBindMemberFunction, AVirtualMemberOfABaseReachesTheMostDerivedOverride) {
    auto object = std::make_shared<MostDerived>();
    std::function<void(int)> call =
        WeakBindMemberFunction(std::weak_ptr<MostDerived>(object), &Base::Receive);
    call(5);
    EXPECT_EQ(object->calls, std::vector<std::string>{"MostDerived 5"});
}

TEST(WeakBindMemberFunction, AnOwnerHeldAsItsBaseStillCallsTheOverride) {
    std::shared_ptr<Base> object = std::make_shared<Middle>();
    auto call = WeakBindMemberFunction(std::weak_ptr<Base>(object), &Base::Receive);
    call(2);
    EXPECT_EQ(object->calls, std::vector<std::string>{"Middle 2"});
}

TEST(WeakBindMemberFunction, PassesReferenceArgumentsThrough) {
    auto object = std::make_shared<Text>();
    std::function<void(const kelcore::string::string&)> call =
        WeakBindMemberFunction(std::weak_ptr<Text>(object), &Text::SetText);
    call(u"hello");
    EXPECT_EQ(object->shown, u"hello");
}

TEST(WeakBindMemberFunction, KeepsTheObjectAliveForTheWholeCall) {
    // The member drops the last owner outside the call; the object must stay whole until the
    // member returns, and go with the call's own reference.
    struct SelfReleasing {
        void Run(int) {
            owner.reset();
            *ownedDuringCall = !weakSelf.expired();
        }
        std::shared_ptr<SelfReleasing> owner;
        std::weak_ptr<SelfReleasing> weakSelf;
        bool* ownedDuringCall = nullptr;
    };
    bool ownedDuringCall = false;
    auto object = std::make_shared<SelfReleasing>();
    object->owner = object;
    object->weakSelf = object;
    object->ownedDuringCall = &ownedDuringCall;
    std::weak_ptr<SelfReleasing> weak = object;
    auto call = WeakBindMemberFunction(weak, &SelfReleasing::Run);
    object.reset();
    ASSERT_FALSE(weak.expired());

    call(0);
    EXPECT_TRUE(ownedDuringCall);
    EXPECT_TRUE(weak.expired()) << "the call's reference was the last";
}

class Viewer : public DataBindingTarget {
public:
    virtual ~Viewer() override = default;
    virtual void OnValue(double value) { values.push_back(value); }
    std::vector<double> values;
};

class FilteringViewer final : public Viewer {
public:
    void OnValue(double value) override {
        if (value >= 0.0) {
            values.push_back(value);
        }
    }
};

class WeakBindMemberFunctionBindingTest : public testsupport::MainThreadFixture {};

TEST_F(WeakBindMemberFunctionBindingTest, ABindingMadeWithItFollowsTheObserversOverride) {
    auto property = std::make_shared<NotifyingProperty<double>>(1.0);
    auto viewer = std::make_shared<FilteringViewer>();
    viewer->bindings.push_back(property->AddBinding(
        WeakBindMemberFunction(std::weak_ptr<FilteringViewer>(viewer), &Viewer::OnValue)));
    property->SetValue(-1.0);
    property->SetValue(2.0);
    Pump();
    EXPECT_EQ(viewer->values, (std::vector<double>{1.0, 2.0}));
}

TEST_F(WeakBindMemberFunctionBindingTest, ADeliveryQueuedForADeadObserverDoesNothing) {
    auto property = std::make_shared<NotifyingProperty<double>>();
    auto viewer = std::make_shared<Viewer>();
    std::weak_ptr<Viewer> weakViewer = viewer;
    viewer->bindings.push_back(
        property->AddBinding(WeakBindMemberFunction(weakViewer, &Viewer::OnValue)));
    property->SetValue(1.0);
    viewer.reset();  // ends the subscription too, but the two deliveries are already queued
    EXPECT_EQ(queue->Size(), 2u);
    EXPECT_NO_THROW(Pump());
    EXPECT_TRUE(weakViewer.expired());
}

TEST_F(WeakBindMemberFunctionBindingTest, TheObserverCanDieOnAnotherThreadBeforeThePump) {
    auto property = std::make_shared<NotifyingProperty<double>>();
    auto viewer = std::make_shared<Viewer>();
    std::weak_ptr<Viewer> weakViewer = viewer;
    auto binding = property->AddBinding(WeakBindMemberFunction(weakViewer, &Viewer::OnValue));
    std::thread releaser([owned = std::move(viewer)]() mutable { owned.reset(); });
    releaser.join();
    EXPECT_NO_THROW(Pump());
    EXPECT_TRUE(weakViewer.expired());
}

}  // namespace
}  // namespace vantrokelui::utility
