#include <vantrokelui/utility/NotifyingProperty.h>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/string/String.h>
#include <kelcore/threads/MainThread.h>
#include <kelcore/utility/Guid.h>
#include <kelui/limner/ColorRGBA.h>
#include <kelui/limner/ImageInterface.h>
#include <support/MainThreadFixture.h>
#include <vantrokelui/model/EncodingStatus.h>
#include <vantrokelui/utility/DataBinding.h>
#include <vantrokelui/utility/WeakBindMemberFunction.h>

namespace vantrokelui::utility {
namespace {

using kelcore::string::string;

using DoubleProperty = NotifyingProperty<double>;
using BoolProperty = NotifyingProperty<bool>;
using StatusProperty = NotifyingProperty<EncodingStatus>;
using StringProperty = NotifyingProperty<string, const string&>;
using GuidProperty = NotifyingProperty<kelcore::utility::Guid, const kelcore::utility::Guid&>;
using ColorProperty = NotifyingProperty<limner::ColorRGBA, const limner::ColorRGBA&>;

struct Item {
    int number = 0;
};
using ItemPointer = std::shared_ptr<Item>;
using ItemProperty = NotifyingProperty<ItemPointer, const ItemPointer&>;
using ItemList = SharedPtrVector<Item>;
using ItemListProperty = NotifyingProperty<ItemList, const ItemList&>;

class TestImage final : public limner::ImageInterface {
public:
    explicit TestImage(float width) : width(width) {}
    float GetWidth() const override { return width; }
    float GetHeight() const override { return 1.0f; }

private:
    float width;
};
using ImagePointer = boost::intrusive_ptr<limner::ImageInterface>;
using ImageProperty = NotifyingProperty<ImagePointer, const ImagePointer&>;

// Records every value an observer receives, in order.
template <class Property>
struct Recorder {
    using Value = typename Property::ValueType;

    std::shared_ptr<DataBinding> Bind(Property& property) {
        return property.AddBinding(
            [this](typename Property::ArgumentType value) { values.push_back(value); });
    }

    std::vector<Value> values;
};

class NotifyingPropertyTest : public testsupport::MainThreadFixture {
protected:
    // Binds a recorder, lets its first delivery through and forgets it, so a test sees only
    // what its own sets deliver.
    template <class Property>
    std::shared_ptr<DataBinding> BindAfterFirstDelivery(Property& property,
                                                        Recorder<Property>& recorder) {
        auto binding = recorder.Bind(property);
        Pump();
        EXPECT_EQ(recorder.values.size(), 1u);
        recorder.values.clear();
        return binding;
    }
};

// --- When and where observers run -------------------------------------------------------------

TEST_F(NotifyingPropertyTest, ANewObserverOfADefaultPropertyReceivesTheDefaultOnce) {
    auto property = std::make_shared<DoubleProperty>();
    Recorder<DoubleProperty> recorder;
    auto binding = recorder.Bind(*property);
    EXPECT_TRUE(recorder.values.empty()) << "the first delivery must not be synchronous";
    Pump();
    EXPECT_EQ(recorder.values, std::vector<double>{0.0});
    Pump();
    EXPECT_EQ(recorder.values, std::vector<double>{0.0});
}

TEST_F(NotifyingPropertyTest, AnEmptyTextAndANullPointerAreDeliveredOnBinding) {
    auto text = std::make_shared<StringProperty>();
    auto item = std::make_shared<ItemProperty>();
    Recorder<StringProperty> texts;
    Recorder<ItemProperty> items;
    auto textBinding = texts.Bind(*text);
    auto itemBinding = items.Bind(*item);
    Pump();
    EXPECT_EQ(texts.values, std::vector<string>{string()});
    EXPECT_EQ(items.values, std::vector<ItemPointer>{nullptr});
}

TEST_F(NotifyingPropertyTest, TheFirstDeliveryOfABindingGoesOnlyToTheNewObserver) {
    auto property = std::make_shared<DoubleProperty>(4.0);
    Recorder<DoubleProperty> first;
    auto firstBinding = BindAfterFirstDelivery(*property, first);

    Recorder<DoubleProperty> second;
    auto secondBinding = second.Bind(*property);
    EXPECT_TRUE(second.values.empty());
    Pump();
    EXPECT_EQ(second.values, std::vector<double>{4.0});
    EXPECT_TRUE(first.values.empty());
}

TEST_F(NotifyingPropertyTest, TwoSetsOnTheMainThreadAreDeliveredAfterTheCallerInOrder) {
    auto property = std::make_shared<DoubleProperty>();
    std::vector<double> delivered;
    std::vector<double> heldAtDelivery;
    bool setterReturned = false;
    std::vector<bool> setterReturnedAtDelivery;
    auto binding = property->AddBinding([&](double value) {
        delivered.push_back(value);
        heldAtDelivery.push_back(property->GetValue());
        setterReturnedAtDelivery.push_back(setterReturned);
    });
    Pump();
    delivered.clear();
    heldAtDelivery.clear();
    setterReturnedAtDelivery.clear();

    property->SetValue(1.0);
    property->SetValue(2.0);
    setterReturned = true;
    EXPECT_TRUE(delivered.empty());
    Pump();

    EXPECT_EQ(delivered, (std::vector<double>{1.0, 2.0}));
    EXPECT_EQ(heldAtDelivery, (std::vector<double>{2.0, 2.0}));
    EXPECT_EQ(setterReturnedAtDelivery, (std::vector<bool>{true, true}));
}

TEST_F(NotifyingPropertyTest, ASetOnAnotherThreadIsDeliveredOnTheMainThreadAfterItReturned) {
    auto property = std::make_shared<DoubleProperty>();
    int calls = 0;
    std::vector<std::thread::id> threads;
    std::vector<bool> onMainThread;
    auto binding = property->AddBinding([&](double) {
        ++calls;
        threads.push_back(std::this_thread::get_id());
        onMainThread.push_back(kelcore::threads::CurrentThreadIsMainThread());
    });
    Pump();
    calls = 0;
    threads.clear();
    onMainThread.clear();

    int callsWhenSetterReturned = -1;
    std::thread writer([&] {
        property->SetValue(7.0);
        callsWhenSetterReturned = calls;  // the main thread is not pumping: join comes first
    });
    writer.join();
    EXPECT_EQ(callsWhenSetterReturned, 0);
    EXPECT_EQ(calls, 0);

    Pump();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(threads, std::vector<std::thread::id>{std::this_thread::get_id()});
    EXPECT_EQ(onMainThread, std::vector<bool>{true});
}

// --- The list of observers --------------------------------------------------------------------

TEST_F(NotifyingPropertyTest, ObserversAreCopiedAtSetTime) {
    auto property = std::make_shared<DoubleProperty>();
    Recorder<DoubleProperty> early;
    auto earlyBinding = BindAfterFirstDelivery(*property, early);

    property->SetValue(1.0);
    Recorder<DoubleProperty> late;
    auto lateBinding = late.Bind(*property);  // its first delivery carries 1.0
    earlyBinding.reset();
    property->SetValue(2.0);
    Pump();

    EXPECT_EQ(early.values, std::vector<double>{1.0}) << "dropped after the set of 1.0 only";
    EXPECT_EQ(late.values, (std::vector<double>{1.0, 2.0})) << "bound after the set of 1.0";
}

TEST_F(NotifyingPropertyTest, ObserversRunInTheOrderOfBinding) {
    auto property = std::make_shared<DoubleProperty>();
    std::vector<int> order;
    std::vector<std::shared_ptr<DataBinding>> bindings;
    for (int i = 0; i < 5; ++i) {
        bindings.push_back(property->AddBinding([&order, i](double) { order.push_back(i); }));
    }
    Pump();
    order.clear();
    property->SetValue(3.0);
    Pump();
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4}));

    bindings[1].reset();
    bindings[3].reset();
    order.clear();
    property->SetValue(4.0);
    Pump();
    EXPECT_EQ(order, (std::vector<int>{0, 2, 4}));
}

TEST_F(NotifyingPropertyTest, AnObserverDroppingItsOwnSubscriptionStillGetsWhatWasQueued) {
    auto property = std::make_shared<DoubleProperty>();
    std::shared_ptr<DataBinding> selfDropping;
    std::vector<double> droppingSaw;
    selfDropping = property->AddBinding([&](double value) {
        droppingSaw.push_back(value);
        selfDropping.reset();
    });
    Recorder<DoubleProperty> later;
    auto laterBinding = later.Bind(*property);
    property->SetValue(1.0);
    property->SetValue(2.0);

    Pump();
    EXPECT_EQ(selfDropping, nullptr);
    // It dropped itself at its first delivery (the initial 0); the sets queued before that still
    // reach it, and the observer behind it is not disturbed.
    EXPECT_EQ(droppingSaw, (std::vector<double>{0.0, 1.0, 2.0}));
    EXPECT_EQ(later.values, (std::vector<double>{0.0, 1.0, 2.0}));

    property->SetValue(3.0);
    Pump();
    EXPECT_EQ(droppingSaw, (std::vector<double>{0.0, 1.0, 2.0}));
    EXPECT_EQ(later.values, (std::vector<double>{0.0, 1.0, 2.0, 3.0}));
}

TEST_F(NotifyingPropertyTest, AnObserverBoundDuringADeliveryGetsOnlyItsOwnFirstDelivery) {
    auto property = std::make_shared<DoubleProperty>();
    std::vector<std::string> log;
    std::shared_ptr<DataBinding> latecomer;
    auto binder = property->AddBinding([&](double value) {
        log.push_back("binder " + std::to_string(value));
        if (value == 1.0 && !latecomer) {
            latecomer = property->AddBinding(
                [&](double seen) { log.push_back("latecomer " + std::to_string(seen)); });
        }
    });
    auto behind = property->AddBinding(
        [&](double value) { log.push_back("behind " + std::to_string(value)); });
    Pump();
    log.clear();

    property->SetValue(1.0);
    Pump();
    EXPECT_EQ(log, (std::vector<std::string>{"binder " + std::to_string(1.0),
                                             "behind " + std::to_string(1.0),
                                             "latecomer " + std::to_string(1.0)}));
}

TEST_F(NotifyingPropertyTest, AnEmptyObserverThrowsFromThePumpAndEndsThatDelivery) {
    auto property = std::make_shared<DoubleProperty>();
    Recorder<DoubleProperty> before;
    auto beforeBinding = BindAfterFirstDelivery(*property, before);
    auto emptyBinding = property->AddBinding(DoubleProperty::Callback());
    EXPECT_THROW(Pump(), std::bad_function_call) << "its own first delivery";
    Recorder<DoubleProperty> after;
    auto afterBinding = BindAfterFirstDelivery(*property, after);

    property->SetValue(1.0);
    EXPECT_THROW(Pump(), std::bad_function_call);
    EXPECT_EQ(before.values, std::vector<double>{1.0});
    EXPECT_TRUE(after.values.empty());
    EXPECT_EQ(Pump(), 0u);

    emptyBinding.reset();
    property->SetValue(2.0);
    Pump();
    EXPECT_EQ(before.values, (std::vector<double>{1.0, 2.0}));
    EXPECT_EQ(after.values, std::vector<double>{2.0});
}

TEST_F(NotifyingPropertyTest, BindingAPropertyThatNoSharedPointerOwnsThrowsBadWeakPtr) {
    DoubleProperty property;
    int calls = 0;
    EXPECT_THROW(static_cast<void>(property.AddBinding([&](double) { ++calls; })),
                 std::bad_weak_ptr);
    Pump();
    EXPECT_EQ(calls, 1) << "the first delivery was queued before the failure";

    property.SetValue(1.0);
    Pump();
    EXPECT_EQ(calls, 1) << "no subscription was made, so no later set may reach the callback";
}

// --- Lifetimes --------------------------------------------------------------------------------

TEST_F(NotifyingPropertyTest, QueuedDeliveriesRunAfterThePropertyHasDied) {
    auto property = std::make_shared<StringProperty>();
    Recorder<StringProperty> recorder;
    auto binding = recorder.Bind(*property);
    property->SetValue(u"first");
    property->SetValue(u"second");
    std::weak_ptr<StringProperty> weak = property;
    property.reset();
    ASSERT_TRUE(weak.expired());

    Pump();
    EXPECT_EQ(recorder.values, (std::vector<string>{u"", u"first", u"second"}));
    binding.reset();  // unsubscribing from a dead property does nothing
}

TEST_F(NotifyingPropertyTest, AnObserverWhoseObjectDiedDoesNothing) {
    struct Viewer {
        void Show(double value) { shown.push_back(value); }
        std::vector<double> shown;
    };
    auto property = std::make_shared<DoubleProperty>();
    auto viewer = std::make_shared<Viewer>();
    std::weak_ptr<Viewer> weakViewer = viewer;
    auto binding = property->AddBinding(WeakBindMemberFunction(weakViewer, &Viewer::Show));
    Pump();
    EXPECT_EQ(viewer->shown, std::vector<double>{0.0});

    property->SetValue(5.0);
    viewer.reset();
    EXPECT_NO_THROW(Pump());
    EXPECT_TRUE(weakViewer.expired());
}

TEST_F(NotifyingPropertyTest, ReleasingAPreviousValueMayDropASubscriptionToTheSameProperty) {
    // A value that owns a subscription to its own property: replacing the value ends the
    // subscription, which needs the property while its setter is still on the stack.
    struct Holder {
        std::shared_ptr<DataBinding> binding;
    };
    using HolderProperty =
        NotifyingProperty<std::shared_ptr<Holder>, const std::shared_ptr<Holder>&>;
    auto property = std::make_shared<HolderProperty>();
    int calls = 0;
    auto holder = std::make_shared<Holder>();
    holder->binding = property->AddBinding([&](const std::shared_ptr<Holder>&) { ++calls; });
    property->SetValue(holder);
    holder.reset();
    Pump();
    EXPECT_EQ(calls, 2);

    property->SetValue(std::make_shared<Holder>());  // destroys the old holder and its binding
    Pump();
    EXPECT_EQ(calls, 3) << "observers were copied before the old value was released";
    property->SetValue(nullptr);
    Pump();
    EXPECT_EQ(calls, 3) << "the subscription ended with the old value";
}

// --- The same-value test, by stored type --------------------------------------------------------

TEST_F(NotifyingPropertyTest, SettingFalseOnANewBoolPropertyDeliversNothing) {
    auto property = std::make_shared<BoolProperty>();
    Recorder<BoolProperty> recorder;
    auto binding = BindAfterFirstDelivery(*property, recorder);
    property->SetValue(false);
    EXPECT_EQ(Pump(), 0u);
    property->SetValue(true);
    property->SetValue(true);
    Pump();
    EXPECT_EQ(recorder.values, std::vector<bool>{true});
}

TEST_F(NotifyingPropertyTest, EnumsCompareByValue) {
    auto property = std::make_shared<StatusProperty>();
    Recorder<StatusProperty> recorder;
    auto binding = BindAfterFirstDelivery(*property, recorder);
    property->SetValue(EncodingStatus::None);
    property->SetValue(EncodingStatus::Uploading);
    property->SetValue(EncodingStatus::Uploading);
    property->SetValue(EncodingStatus::UploadDone);
    Pump();
    EXPECT_EQ(recorder.values,
              (std::vector<EncodingStatus>{EncodingStatus::Uploading, EncodingStatus::UploadDone}));
}

TEST_F(NotifyingPropertyTest, DoublesCompareWithEqualitySoNaNIsAlwaysDelivered) {
    auto property = std::make_shared<DoubleProperty>();
    Recorder<DoubleProperty> recorder;
    auto binding = BindAfterFirstDelivery(*property, recorder);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    property->SetValue(-0.0);  // equal to the default 0.0
    property->SetValue(0.25);
    property->SetValue(0.25);
    property->SetValue(nan);
    property->SetValue(nan);
    Pump();
    ASSERT_EQ(recorder.values.size(), 3u);
    EXPECT_EQ(recorder.values[0], 0.25);
    EXPECT_TRUE(std::isnan(recorder.values[1]));
    EXPECT_TRUE(std::isnan(recorder.values[2]));
}

TEST_F(NotifyingPropertyTest, TextComparesByLengthAndEveryUnit) {
    auto property = std::make_shared<StringProperty>(string(u"clip"));
    Recorder<StringProperty> recorder;
    auto binding = BindAfterFirstDelivery(*property, recorder);
    const string withNulA(u"a\0b", 3);
    const string withNulB(u"a\0c", 3);
    property->SetValue(string(u"clip"));  // another buffer, same units
    property->SetValue(u"clip 2");
    property->SetValue(u"clip");
    property->SetValue(withNulA);
    property->SetValue(withNulA);
    property->SetValue(withNulB);  // differs only behind an embedded NUL
    property->SetValue(u"Clip");
    Pump();
    EXPECT_EQ(recorder.values,
              (std::vector<string>{u"clip 2", u"clip", withNulA, withNulB, u"Clip"}));
}

TEST_F(NotifyingPropertyTest, GuidsCompareByBothHalves) {
    using kelcore::utility::Guid;
    auto property = std::make_shared<GuidProperty>();
    Recorder<GuidProperty> recorder;
    auto binding = BindAfterFirstDelivery(*property, recorder);
    property->SetValue(Guid());
    property->SetValue(Guid(1, 2));
    property->SetValue(Guid(1, 2));
    property->SetValue(Guid(1, 3));
    property->SetValue(Guid(4, 3));
    Pump();
    EXPECT_EQ(recorder.values, (std::vector<Guid>{Guid(1, 2), Guid(1, 3), Guid(4, 3)}));
}

TEST_F(NotifyingPropertyTest, ColoursCompareEveryChannelAsFloats) {
    using limner::ColorRGBA;
    auto property = std::make_shared<ColorProperty>();
    Recorder<ColorProperty> recorder;
    auto binding = BindAfterFirstDelivery(*property, recorder);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    property->SetValue(ColorRGBA{});
    property->SetValue(ColorRGBA{0.0f, 0.0f, 0.0f, -0.0f});  // equal as floats
    property->SetValue(ColorRGBA{1, 0, 0, 0});
    property->SetValue(ColorRGBA{1, 0, 0, 0});
    property->SetValue(ColorRGBA{1, 1, 0, 0});
    property->SetValue(ColorRGBA{1, 1, 1, 0});
    property->SetValue(ColorRGBA{1, 1, 1, 1});
    property->SetValue(ColorRGBA{1, 1, 1, nan});
    property->SetValue(ColorRGBA{1, 1, 1, nan});
    Pump();
    ASSERT_EQ(recorder.values.size(), 6u);
    EXPECT_EQ(recorder.values[0], (ColorRGBA{1, 0, 0, 0}));
    EXPECT_EQ(recorder.values[1], (ColorRGBA{1, 1, 0, 0}));
    EXPECT_EQ(recorder.values[2], (ColorRGBA{1, 1, 1, 0}));
    EXPECT_EQ(recorder.values[3], (ColorRGBA{1, 1, 1, 1}));
    EXPECT_TRUE(std::isnan(recorder.values[4].alpha));
    EXPECT_TRUE(std::isnan(recorder.values[5].alpha));
}

TEST_F(NotifyingPropertyTest, SharedPointersCompareByRawPointerNotByPointee) {
    auto property = std::make_shared<ItemProperty>();
    Recorder<ItemProperty> recorder;
    auto binding = BindAfterFirstDelivery(*property, recorder);
    auto item = std::make_shared<Item>(Item{1});
    auto twin = std::make_shared<Item>(Item{1});
    auto owner = std::make_shared<int>(0);
    const ItemPointer aliasOfItem(owner, item.get());  // another control block, same object

    property->SetValue(nullptr);
    property->SetValue(item);
    property->SetValue(ItemPointer(item));
    property->SetValue(aliasOfItem);
    property->SetValue(twin);
    property->SetValue(nullptr);
    Pump();
    EXPECT_EQ(recorder.values, (std::vector<ItemPointer>{item, twin, nullptr}));
}

TEST_F(NotifyingPropertyTest, IntrusivePointersCompareByRawPointerNotByPointee) {
    auto property = std::make_shared<ImageProperty>();
    Recorder<ImageProperty> recorder;
    auto binding = BindAfterFirstDelivery(*property, recorder);
    const ImagePointer image(new TestImage(10.0f));
    const ImagePointer twin(new TestImage(10.0f));

    property->SetValue(ImagePointer());
    property->SetValue(image);
    property->SetValue(ImagePointer(image.get()));
    property->SetValue(twin);
    Pump();
    EXPECT_EQ(recorder.values, (std::vector<ImagePointer>{image, twin}));
}

TEST_F(NotifyingPropertyTest, ListsCompareBySizeAndPointersInOrder) {
    auto property = std::make_shared<ItemListProperty>();
    Recorder<ItemListProperty> recorder;
    auto binding = BindAfterFirstDelivery(*property, recorder);
    auto a = std::make_shared<Item>(Item{1});
    auto b = std::make_shared<Item>(Item{2});
    auto aTwin = std::make_shared<Item>(Item{1});

    property->SetValue(ItemList{});  // two empty lists are the same
    property->SetValue(ItemList{a, b});
    property->SetValue(ItemList{a, b});      // rebuilt, same objects, same order
    property->SetValue(ItemList{b, a});      // reordered
    property->SetValue(ItemList{aTwin, a});  // rebuilt with a new object describing the same
    property->SetValue(ItemList{aTwin, a, b});
    property->SetValue(ItemList{aTwin, a});
    Pump();
    EXPECT_EQ(recorder.values,
              (std::vector<ItemList>{{a, b}, {b, a}, {aTwin, a}, {aTwin, a, b}, {aTwin, a}}));
}

TEST_F(NotifyingPropertyTest, ASameValueSetStoresNothing) {
    auto property = std::make_shared<ItemProperty>();
    auto item = std::make_shared<Item>(Item{1});
    property->SetValue(item);
    const ItemPointer alias(std::make_shared<int>(0), item.get());
    property->SetValue(alias);
    // Had the alias been stored, the property would share the alias's control block.
    EXPECT_EQ(item.use_count(), 3) << "item, the stored value and the queued delivery";
    Pump();
    EXPECT_EQ(item.use_count(), 2);
}

}  // namespace
}  // namespace vantrokelui::utility
