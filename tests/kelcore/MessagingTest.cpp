#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/config/kel_exception.h>
#include <kelcore/messaging/Messaging.h>

#include "support/MainThreadFixture.h"

namespace {

using kelcore::messaging::AddRawListener;
using kelcore::messaging::CountRawListeners;
using kelcore::messaging::Listener;
using kelcore::messaging::PostMessage;
using kelcore::messaging::RawMessage;
using kelcore::messaging::RemoveRawListener;
using kelcore::messaging::RemoveRawListenerFromAllStations;
using kelcore::messaging::SendMessage;
using kelcore::utility::ImmutableString;

struct Ping {
    int value = 0;
};
struct Note {
    std::string text;
};

// Records the Ping values it receives and runs an optional action on each message. Removes
// itself in its own destructor so that no call reaches a half-destroyed recorder.
class Recorder : public Listener {
public:
    explicit Recorder(std::function<void(const RawMessage&)> onReceive = {})
        : onReceive(std::move(onReceive)) {}
    ~Recorder() override { RemoveRawListenerFromAllStations(this); }

    void ReceiveRawMessage(const RawMessage& message) override {
        if (const Ping* ping = message.As<Ping>()) {
            values.push_back(ping->value);
        }
        ++calls;
        if (onReceive) {
            onReceive(message);
        }
    }

    std::vector<int> values;
    std::atomic<int> calls{0};
    std::function<void(const RawMessage&)> onReceive;
};

class Messaging : public testsupport::MainThreadFixture {
protected:
    void SetUp() override {
        MainThreadFixture::SetUp();
        kelcore::messaging::RemoveAllRawListenersForTesting();
    }
    void TearDown() override {
        MainThreadFixture::TearDown();
        kelcore::messaging::RemoveAllRawListenersForTesting();
    }

    const ImmutableString station = ImmutableString::Intern("test.station");
    const ImmutableString otherStation = ImmutableString::Intern("test.other");
};

TEST_F(Messaging, DeliversToListenersInTheOrderTheyWereAdded) {
    std::vector<int> order;
    Recorder first([&](const RawMessage&) { order.push_back(1); });
    Recorder second([&](const RawMessage&) { order.push_back(2); });
    Recorder third([&](const RawMessage&) { order.push_back(3); });
    AddRawListener(station, &second);
    AddRawListener(station, &first);
    AddRawListener(station, &third);

    SendMessage(station, Ping{1});

    EXPECT_EQ(order, (std::vector<int>{2, 1, 3}));
}

TEST_F(Messaging, DeliversOnlyToTheStationSentTo) {
    Recorder here;
    Recorder there;
    AddRawListener(station, &here);
    AddRawListener(otherStation, &there);

    SendMessage(station, Ping{1});
    SendMessage(otherStation, Ping{2});
    SendMessage(ImmutableString("test.nobody"), Ping{3});

    EXPECT_EQ(here.values, std::vector<int>{1});
    EXPECT_EQ(there.values, std::vector<int>{2});
}

TEST_F(Messaging, StationsAreMatchedByTextNotByBuffer) {
    Recorder recorder;
    AddRawListener(ImmutableString(std::string("test.station")), &recorder);

    SendMessage(ImmutableString::Intern("test.station"), Ping{4});

    EXPECT_EQ(recorder.values, std::vector<int>{4});
}

TEST_F(Messaging, AddingTwiceToOneStationDeliversOnce) {
    Recorder recorder;
    AddRawListener(station, &recorder);
    AddRawListener(station, &recorder);

    SendMessage(station, Ping{1});

    EXPECT_EQ(recorder.calls, 1);
    EXPECT_EQ(CountRawListeners(station), 1u);
}

TEST_F(Messaging, AddingANullListenerThrows) {
    try {
        AddRawListener(station, nullptr);
        FAIL() << "no exception";
    } catch (const kelcore::config::kel_exception& error) {
        EXPECT_EQ(error.GetCode(), kelcore::config::kResultNullPointer);
    }
    EXPECT_EQ(CountRawListeners(station), 0u);
}

TEST_F(Messaging, RemovedListenerIsNotCalled) {
    Recorder kept;
    Recorder removed;
    AddRawListener(station, &kept);
    AddRawListener(station, &removed);

    RemoveRawListener(station, &removed);
    SendMessage(station, Ping{1});

    EXPECT_EQ(kept.calls, 1);
    EXPECT_EQ(removed.calls, 0);
}

TEST_F(Messaging, RemovingFromOneStationKeepsTheOthers) {
    Recorder recorder;
    AddRawListener(station, &recorder);
    AddRawListener(otherStation, &recorder);

    RemoveRawListener(station, &recorder);
    RemoveRawListener(station, &recorder);
    SendMessage(station, Ping{1});
    SendMessage(otherStation, Ping{2});

    EXPECT_EQ(recorder.values, std::vector<int>{2});
}

TEST_F(Messaging, ListenerRemovedByAnEarlierOneDuringADeliveryIsNotCalled) {
    Recorder victim;
    Recorder remover([&](const RawMessage&) { RemoveRawListener(station, &victim); });
    AddRawListener(station, &remover);
    AddRawListener(station, &victim);

    SendMessage(station, Ping{1});

    EXPECT_EQ(victim.calls, 0);
    EXPECT_EQ(CountRawListeners(station), 1u);
}

TEST_F(Messaging, ListenerDestroyedDuringADeliveryIsNotCalled) {
    int doomedCalls = 0;
    auto doomed = std::make_unique<Recorder>([&](const RawMessage&) { ++doomedCalls; });
    Recorder destroyer([&](const RawMessage&) { doomed.reset(); });
    AddRawListener(station, &destroyer);
    AddRawListener(station, doomed.get());

    SendMessage(station, Ping{1});

    EXPECT_EQ(doomedCalls, 0);
    EXPECT_EQ(CountRawListeners(station), 1u);
}

TEST_F(Messaging, ListenerMayRemoveItselfFromItsOwnReceive) {
    Recorder self;
    self.onReceive = [&](const RawMessage&) { RemoveRawListener(station, &self); };
    Recorder after;
    AddRawListener(station, &self);
    AddRawListener(station, &after);

    SendMessage(station, Ping{1});
    SendMessage(station, Ping{2});

    EXPECT_EQ(self.values, std::vector<int>{1});
    EXPECT_EQ(after.values, (std::vector<int>{1, 2}));
}

TEST_F(Messaging, ListenerAddedDuringADeliveryReceivesOnlyLaterMessages) {
    Recorder late;
    Recorder adder([&](const RawMessage&) { AddRawListener(station, &late); });
    AddRawListener(station, &adder);

    SendMessage(station, Ping{1});
    SendMessage(station, Ping{2});

    EXPECT_EQ(late.values, std::vector<int>{2});
}

TEST_F(Messaging, ListenerMaySendFromItsReceive) {
    Recorder downstream;
    Recorder relay([&](const RawMessage& message) {
        const Ping* ping = message.As<Ping>();
        if (ping != nullptr && ping->value < 3) {
            SendMessage(otherStation, Ping{ping->value * 10});
            SendMessage(station, Ping{ping->value + 1});
        }
    });
    AddRawListener(station, &relay);
    AddRawListener(otherStation, &downstream);

    SendMessage(station, Ping{1});

    EXPECT_EQ(relay.values, (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(downstream.values, (std::vector<int>{10, 20}));
}

TEST_F(Messaging, DestructorRemovesTheListenerFromEveryStation) {
    // A bare Listener relies on the base destructor alone.
    auto listener = std::make_unique<Listener>();
    AddRawListener(station, listener.get());
    AddRawListener(otherStation, listener.get());

    listener.reset();

    EXPECT_EQ(CountRawListeners(station), 0u);
    EXPECT_EQ(CountRawListeners(otherStation), 0u);
    SendMessage(station, Ping{1});
}

TEST_F(Messaging, ThrowingListenerPropagatesAndCanStillBeRemoved) {
    Recorder thrower([](const RawMessage&) { throw std::runtime_error("refused"); });
    AddRawListener(station, &thrower);

    EXPECT_THROW(SendMessage(station, Ping{1}), std::runtime_error);
    RemoveRawListener(station, &thrower);

    EXPECT_EQ(CountRawListeners(station), 0u);
}

TEST_F(Messaging, RemovalFromAnotherThreadWaitsForTheCallInProgress) {
    std::promise<void> entered;
    std::promise<void> release;
    std::promise<void> removed;
    std::shared_future<void> removedFuture = removed.get_future().share();
    bool removalReturnedDuringTheCall = true;
    Recorder slow([&](const RawMessage&) {
        entered.set_value();
        release.get_future().wait();
        removalReturnedDuringTheCall =
            removedFuture.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    });
    AddRawListener(station, &slow);
    std::thread sender([&] { SendMessage(station, Ping{1}); });
    entered.get_future().wait();

    std::thread remover([&] {
        RemoveRawListener(station, &slow);
        removed.set_value();
    });
    // The removal takes the listener off the station before it waits for the call.
    while (CountRawListeners(station) != 0) {
        std::this_thread::yield();
    }
    // Checks that the removal is still blocked; this bounds an absence, it awaits nothing.
    EXPECT_EQ(removedFuture.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    release.set_value();
    sender.join();
    remover.join();
    SendMessage(station, Ping{2});

    EXPECT_FALSE(removalReturnedDuringTheCall);
    EXPECT_EQ(slow.values, std::vector<int>{1});
}

// A listener that counts any call that starts after its owner saw RemoveRawListener return.
class Guarded : public Listener {
public:
    Guarded(std::atomic<int>& callsAfterRemoval, const std::array<ImmutableString, 3>& stations)
        : callsAfterRemoval(callsAfterRemoval), stations(stations) {}
    ~Guarded() override { RemoveRawListenerFromAllStations(this); }

    void ReceiveRawMessage(const RawMessage& message) override {
        if (removed.load()) {
            ++callsAfterRemoval;
        }
        ++calls;
        // Some deliveries send on, so that sends nest inside deliveries on every thread.
        const Ping* ping = message.As<Ping>();
        if (ping != nullptr && ping->value % 5 == 0) {
            SendMessage(stations[static_cast<std::size_t>(ping->value) % 3], Ping{ping->value + 1});
        }
    }

    std::atomic<bool> removed{false};
    std::atomic<int> calls{0};

private:
    std::atomic<int>& callsAfterRemoval;
    const std::array<ImmutableString, 3>& stations;
};

TEST_F(Messaging, ConcurrentAddRemoveAndSendFromEightThreadsNeverCallAfterRemoval) {
    constexpr int kThreads = 8;
    constexpr int kRounds = 300;
    const std::array<ImmutableString, 3> stations{ImmutableString("s0"), ImmutableString("s1"),
                                                  ImmutableString("s2")};
    std::atomic<int> callsAfterRemoval{0};
    std::atomic<int> missedOwnSends{0};
    std::vector<std::vector<std::unique_ptr<Guarded>>> removedListeners(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int round = 0; round < kRounds; ++round) {
                auto listener = std::make_unique<Guarded>(callsAfterRemoval, stations);
                const ImmutableString& mine = stations[static_cast<std::size_t>(t + round) % 3];
                AddRawListener(mine, listener.get());
                if (round % 3 == 0) {
                    AddRawListener(stations[static_cast<std::size_t>(round) % 3], listener.get());
                }
                SendMessage(mine, Ping{round});
                if (listener->calls.load() == 0) {
                    ++missedOwnSends;
                }
                if (round % 2 == 0) {
                    RemoveRawListenerFromAllStations(listener.get());
                    listener->removed = true;
                    SendMessage(mine, Ping{round + 1});
                    // Kept alive so that a late call is counted rather than undefined.
                    removedListeners[static_cast<std::size_t>(t)].push_back(std::move(listener));
                } else {
                    listener.reset();
                }
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }

    EXPECT_EQ(callsAfterRemoval, 0);
    EXPECT_EQ(missedOwnSends, 0);
    for (const auto& name : stations) {
        EXPECT_EQ(CountRawListeners(name), 0u);
    }
}

TEST_F(Messaging, PostMessageDeliversOnlyWhenTheMainThreadPumps) {
    Recorder recorder;
    AddRawListener(station, &recorder);

    PostMessage(station, Ping{5});
    EXPECT_EQ(recorder.calls, 0);
    Pump();

    EXPECT_EQ(recorder.values, std::vector<int>{5});
}

TEST_F(Messaging, PostMessageSendsACopyOfThePayload) {
    std::string received;
    Recorder recorder([&](const RawMessage& message) {
        if (const Note* note = message.As<Note>()) {
            received = note->text;
        }
    });
    AddRawListener(station, &recorder);
    Note note{"before"};

    PostMessage(station, note);
    note.text = "after";
    Pump();

    EXPECT_EQ(received, "before");
}

TEST_F(Messaging, PostMessageFromAnotherThreadIsDeliveredOnTheMainThread) {
    std::atomic<bool> deliveredOnMain{false};
    Recorder recorder([&](const RawMessage&) {
        deliveredOnMain = kelcore::threads::CurrentThreadIsMainThread();
    });
    AddRawListener(station, &recorder);

    std::thread([&] { PostMessage(station, Ping{9}); }).join();
    EXPECT_EQ(recorder.calls, 0);
    Pump();

    EXPECT_EQ(recorder.calls, 1);
    EXPECT_TRUE(deliveredOnMain);
}

TEST_F(Messaging, PostedMessageGoesToTheListenersTheStationHasWhenItIsDelivered) {
    Recorder removedBeforePump;
    Recorder addedBeforePump;
    AddRawListener(station, &removedBeforePump);

    PostMessage(station, Ping{1});
    RemoveRawListener(station, &removedBeforePump);
    AddRawListener(station, &addedBeforePump);
    Pump();

    EXPECT_EQ(removedBeforePump.calls, 0);
    EXPECT_EQ(addedBeforePump.values, std::vector<int>{1});
}

TEST_F(Messaging, ResetForTestingEmptiesEveryStation) {
    Recorder recorder;
    AddRawListener(station, &recorder);
    AddRawListener(otherStation, &recorder);

    kelcore::messaging::RemoveAllRawListenersForTesting();
    SendMessage(station, Ping{1});

    EXPECT_EQ(recorder.calls, 0);
    EXPECT_EQ(CountRawListeners(otherStation), 0u);
}

}  // namespace
