#include <vantrokelui/utility/DataBinding.h>
#include <vantrokelui/utility/DataBindingTarget.h>

#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include <support/MainThreadFixture.h>
#include <vantrokelui/utility/NotifyingProperty.h>

namespace vantrokelui::utility {
namespace {

using DoubleProperty = NotifyingProperty<double>;

// A subscription that only reports when it ends, to see the order a target releases in.
class RecordingBinding final : public DataBinding {
public:
    RecordingBinding(int id, std::vector<int>& released) : id(id), released(released) {}
    ~RecordingBinding() override { released.push_back(id); }

private:
    int id;
    std::vector<int>& released;
};

class DataBindingTest : public testsupport::MainThreadFixture {};

TEST_F(DataBindingTest, ReleasingTheSubscriptionStopsLaterSets) {
    auto property = std::make_shared<DoubleProperty>();
    std::vector<double> seen;
    auto binding = property->AddBinding([&](double value) { seen.push_back(value); });
    property->SetValue(1.0);
    Pump();
    binding.reset();
    property->SetValue(2.0);
    Pump();
    EXPECT_EQ(seen, (std::vector<double>{0.0, 1.0}));
}

TEST_F(DataBindingTest, ACopyOfTheSubscriptionKeepsItAlive) {
    auto property = std::make_shared<DoubleProperty>();
    std::vector<double> seen;
    auto binding = property->AddBinding([&](double value) { seen.push_back(value); });
    auto copy = binding;
    binding.reset();
    property->SetValue(1.0);
    Pump();
    EXPECT_EQ(seen, (std::vector<double>{0.0, 1.0}));
    copy.reset();
    property->SetValue(2.0);
    Pump();
    EXPECT_EQ(seen, (std::vector<double>{0.0, 1.0}));
}

TEST_F(DataBindingTest, NeitherTheSubscriptionNorThePropertyKeepsTheOtherAlive) {
    auto property = std::make_shared<DoubleProperty>();
    std::weak_ptr<DoubleProperty> weakProperty = property;
    auto binding = property->AddBinding([](double) {});
    property.reset();
    EXPECT_TRUE(weakProperty.expired());

    auto other = std::make_shared<DoubleProperty>();
    std::weak_ptr<DataBinding> weakBinding = other->AddBinding([](double) {});
    EXPECT_TRUE(weakBinding.expired());
}

TEST_F(DataBindingTest, TheCallbackLivesWhileASubscriptionOrAQueuedDeliveryHoldsIt) {
    auto property = std::make_shared<DoubleProperty>();
    auto token = std::make_shared<int>(0);
    std::weak_ptr<int> weakToken = token;
    auto binding = property->AddBinding([token](double) {});
    token.reset();
    property->SetValue(1.0);
    binding.reset();
    EXPECT_FALSE(weakToken.expired()) << "the queued deliveries still hold the callback";
    Pump();
    EXPECT_TRUE(weakToken.expired());
}

TEST_F(DataBindingTest, AnUnsubscribedCallbackIsReleasedByTheProperty) {
    auto property = std::make_shared<DoubleProperty>();
    auto token = std::make_shared<int>(0);
    std::weak_ptr<int> weakToken = token;
    auto binding = property->AddBinding([token](double) {});
    token.reset();
    Pump();
    binding.reset();
    EXPECT_TRUE(weakToken.expired()) << "the property must not keep a copy of the callback";
}

TEST_F(DataBindingTest, ASubscriptionOutlivingItsPropertyEndsQuietly) {
    auto property = std::make_shared<DoubleProperty>();
    int calls = 0;
    DataBindingTarget target;
    target.bindings.push_back(property->AddBinding([&](double) { ++calls; }));
    Pump();
    property.reset();
    target.bindings.clear();
    EXPECT_EQ(calls, 1);
}

TEST_F(DataBindingTest, TheSubscriptionsOfATargetEndWithIt) {
    auto first = std::make_shared<DoubleProperty>();
    auto second = std::make_shared<DoubleProperty>();
    std::vector<double> seen;
    auto target = std::make_unique<DataBindingTarget>();
    target->bindings.push_back(first->AddBinding([&](double value) { seen.push_back(value); }));
    target->bindings.push_back(
        second->AddBinding([&](double value) { seen.push_back(100.0 + value); }));
    first->SetValue(1.0);
    second->SetValue(2.0);
    Pump();
    EXPECT_EQ(seen, (std::vector<double>{0.0, 100.0, 1.0, 102.0}));

    target.reset();
    first->SetValue(3.0);
    second->SetValue(4.0);
    EXPECT_EQ(Pump(), 2u) << "the sets still queue, with no observer";
    EXPECT_EQ(seen, (std::vector<double>{0.0, 100.0, 1.0, 102.0}));
}

TEST_F(DataBindingTest, ATargetReleasesItsSubscriptionsFromFirstToLast) {
    std::vector<int> released;
    {
        DataBindingTarget target;
        for (int id = 0; id < 6; ++id) {
            target.bindings.push_back(std::make_shared<RecordingBinding>(id, released));
        }
        EXPECT_TRUE(released.empty());
    }
    EXPECT_EQ(released, (std::vector<int>{0, 1, 2, 3, 4, 5}));
}

TEST_F(DataBindingTest, ATargetReleasesOnlyItsOwnReference) {
    std::vector<int> released;
    std::shared_ptr<DataBinding> kept;
    {
        DataBindingTarget target;
        target.bindings.push_back(std::make_shared<RecordingBinding>(0, released));
        target.bindings.push_back(std::make_shared<RecordingBinding>(1, released));
        kept = target.bindings[0];
    }
    EXPECT_EQ(released, std::vector<int>{1});
    kept.reset();
    EXPECT_EQ(released, (std::vector<int>{1, 0}));
}

TEST_F(DataBindingTest, ADerivedTargetIsDestroyedThroughItsBase) {
    struct View : DataBindingTarget {
        explicit View(std::vector<int>& released) {
            bindings.push_back(std::make_shared<RecordingBinding>(7, released));
        }
    };
    std::vector<int> released;
    std::unique_ptr<DataBindingTarget> view = std::make_unique<View>(released);
    view.reset();
    EXPECT_EQ(released, std::vector<int>{7});
}

}  // namespace
}  // namespace vantrokelui::utility
