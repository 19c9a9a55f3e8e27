#include <gtest/gtest.h>

#include "events/EventHub.h"

namespace vantroserver::events {
namespace {

TEST(EventHub, DeliversOnlyToUsersWhoSeeTheParent) {
    EventHub hub([](const std::string& user, const Event& event) {
        return user == "ann" || event.parentId == "public";
    });
    auto ann = hub.Subscribe("ann");
    auto bob = hub.Subscribe("bob");
    int wakeUps = 0;
    ann->SetWakeUp([&] { ++wakeUps; });

    hub.Publish({"asset-list", "f1"});
    hub.Publish({"team-list", "public"});

    const auto annFrames = ann->TakePending();
    ASSERT_EQ(annFrames.size(), 2u);
    EXPECT_EQ(annFrames[0], "event: asset-list\ndata: {\"parent_id\":\"f1\"}\n\n");
    EXPECT_EQ(wakeUps, 2);
    const auto bobFrames = bob->TakePending();
    ASSERT_EQ(bobFrames.size(), 1u);
    EXPECT_EQ(bobFrames[0], "event: team-list\ndata: {\"parent_id\":\"public\"}\n\n");
}

TEST(EventHub, ForgetsClosedStreams) {
    EventHub hub([](const std::string&, const Event&) { return true; });
    auto kept = hub.Subscribe("a");
    hub.Subscribe("b");  // Dropped at once, like a connection that went away.
    EXPECT_EQ(hub.SubscriberCount(), 1u);
    hub.Publish({"account-list", "a"});
    EXPECT_EQ(kept->TakePending().size(), 1u);
}

TEST(EventSubscription, MarksOverflowInsteadOfBufferingWithoutEnd) {
    EventSubscription subscription("u");
    for (int i = 0; i < 5000; ++i) {
        subscription.Push("x");
    }
    EXPECT_TRUE(subscription.Overflowed());
    EXPECT_LE(subscription.TakePending().size(), 1000u);
}

}  // namespace
}  // namespace vantroserver::events
