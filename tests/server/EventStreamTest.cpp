#include <gtest/gtest.h>

#include <boost/json/parse.hpp>

#include "ServerWorldFixture.h"
#include "support/EventStreamClient.h"

namespace servertest {
namespace {

using testsupport::Bearer;
using testsupport::EventStreamClient;

class EventStreamTest : public ServerWorldFixture {
protected:
    void SetUp() override {
        BuildWorld();
        StartServer();
        annToken = SignIn("ann", "pw-ann").access;
        bobToken = SignIn("bob", "pw-bob").access;
        alphaRoot = RootOf(annToken, editors, alpha);
        bobRoot = RootOf(bobToken, bobTeam, bobProject);
    }

    /// Matches an event of `type` about `parent`.
    static std::function<bool(const EventStreamClient::Event&)> Is(std::string type,
                                                                   std::string parent) {
        return [type = std::move(type), parent = std::move(parent)](const auto& event) {
            return event.type == type &&
                   boost::json::parse(event.data).at("parent_id").as_string() == parent;
        };
    }

    std::string annToken, bobToken;
    std::string alphaRoot, bobRoot;
};

TEST_F(EventStreamTest, AFolderMadeThroughTheApiAnnouncesItsParentsList) {
    EventStreamClient events(Url("/v2/events"), Bearer(annToken));
    ASSERT_TRUE(events.WaitForComment());
    EXPECT_EQ(events.Status(), 200);
    EXPECT_EQ(events.ContentType(), "text/event-stream");

    const auto created = client.PostJson(Url("/v2/assets/" + alphaRoot + "/children"),
                                         {{"name", "new"}, {"type", "folder"}}, Bearer(annToken));
    ASSERT_EQ(created.status, 201);
    EXPECT_TRUE(events.WaitFor(Is("asset-list", alphaRoot)));
}

TEST_F(EventStreamTest, AdminCommandsWhileServingAreAnnouncedToo) {
    EventStreamClient events(Url("/v2/events"), Bearer(annToken));
    ASSERT_TRUE(events.WaitForComment());

    Admin({"folder", "add", "--parent", alphaRoot, "--name", "from-admin"});
    EXPECT_TRUE(events.WaitFor(Is("asset-list", alphaRoot)));
    const auto team =
        AdminId({"team", "add", "--account", acme, "--name", "Late", "--member", "ann"});
    EXPECT_TRUE(events.WaitFor(Is("team-list", acme)));
    Admin({"project", "add", "--team", team, "--name", "Later"});
    EXPECT_TRUE(events.WaitFor(Is("project-list", team)));
    Admin({"account", "add", "--name", "Newco", "--owner", "ann", "--storage-limit", "10"});
    EXPECT_TRUE(events.WaitFor(Is("account-list", ann)));
}

TEST_F(EventStreamTest, ASharedProjectIsAnnouncedToItsNewViewer) {
    const auto carolToken = SignIn("carol", "pw-carol").access;
    EventStreamClient events(Url("/v2/events"), Bearer(carolToken));
    ASSERT_TRUE(events.WaitForComment());
    Admin({"share", "project", "--project", alpha, "--user", "carol"});
    EXPECT_TRUE(events.WaitFor(Is("project-list", acme)));
}

TEST_F(EventStreamTest, UsersWhoCannotSeeTheParentHearNothing) {
    EventStreamClient annEvents(Url("/v2/events"), Bearer(annToken));
    EventStreamClient bobEvents(Url("/v2/events"), Bearer(bobToken));
    ASSERT_TRUE(annEvents.WaitForComment());
    ASSERT_TRUE(bobEvents.WaitForComment());

    Admin({"folder", "add", "--parent", alphaRoot, "--name", "ann-only"});
    ASSERT_TRUE(annEvents.WaitFor(Is("asset-list", alphaRoot)));
    // Changes are published in journal order: once bob hears of his own later change, he would
    // already have heard of ann's if it had been sent to him.
    Admin({"folder", "add", "--parent", bobRoot, "--name", "bob-only"});
    ASSERT_TRUE(bobEvents.WaitFor(Is("asset-list", bobRoot)));
    EXPECT_FALSE(bobEvents.WaitFor(Is("asset-list", alphaRoot), std::chrono::milliseconds(0)));
    EXPECT_EQ(bobEvents.Events().size(), 1u);
}

TEST_F(EventStreamTest, TheStreamNeedsAToken) {
    EventStreamClient events(Url("/v2/events"), Bearer("not-a-token"));
    ASSERT_TRUE(events.WaitForEnd());
    EXPECT_EQ(events.Status(), 401);
}

}  // namespace
}  // namespace servertest
