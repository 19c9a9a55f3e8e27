// What the datastore does with the event stream's frames, under virtual time against a fake
// transport: a change empties the list before its message goes out, a change during a fetch
// keeps that fetch's answer out of memory, malformed frames are skipped, items stay one object
// per id, a reconnect forgets and announces what was held, and what sign-out and destruction
// cancel.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <kelcore/async/Future.h>
#include <kelcore/messaging/Messaging.h>
#include <kelcore/threads/VirtualTime.h>
#include <vantroclient/ServiceDatastore.h>
#include <vantroclient/VantroAssetList.h>
#include <vantroclient/VantroTeamList.h>
#include <vantrocommon/ResultCodes.h>

#include "FakeTransport.h"
#include "MessageRecorder.h"

namespace vantroclienttest {
namespace {

using kelcore::async::ResultOf;
using kelcore::utility::Guid;
using vantrocommon::http::Reply;
using vantrocommon::http::Request;

const Guid kFolder(0x1111, 0x2222);
const Guid kOtherFolder(0x1111, 0x3333);
const Guid kAccount(0x4444, 0x5555);
const Guid kChild(0xABC, 0x1);

Reply ChildrenReply(const std::string& name) {
    Reply reply;
    reply.status = 200;
    reply.body =
        R"([{"id":")" + kChild.AsStdString() + R"(","type":"folder","name":")" + name + R"("}])";
    reply.headers["TOTAL-PAGES"] = "1";
    return reply;
}

std::string Event(const std::string& type, const Guid& parent) {
    return "event: " + type + "\ndata: {\"parent_id\":\"" + parent.AsStdString() + "\"}\n\n";
}

class DatastoreEventsTest : public ::testing::Test {
public:
    void SetUp() override {
        transport->SetResponder([this](const Request& request) -> FakeTransport::Outcome {
            if (request.url.find("/v2/events") != std::string::npos || holdLists) {
                return FakeTransport::Pending{};
            }
            if (request.url.find("/teams") != std::string::npos) {
                Reply reply;
                reply.status = 200;
                reply.body = "[]";
                return reply;
            }
            return ChildrenReply(childName);
        });
        vantro::ServiceDatastoreOptions options;
        options.executor = time.GetExecutor();
        options.transport = transport;
        options.apiBase = "http://service.test";
        options.accessToken = [](bool) {
            return kelcore::async::MakeReadyFuture(std::string("t"));
        };
        options.logout = [this] { ++logouts; };
        datastore = vantro::CreateServiceDatastore(std::move(options));
        messages = std::make_unique<MessageRecorder>(datastore->GetStationID());
    }

    void TearDown() override {
        messages.reset();
        datastore.reset();
        time.RunUntilIdle();
    }

    /// Asks for the folder's children and runs what is due; the future.
    kelcore::async::Future<kelcore::classref::InterfaceRef<vantro::VantroAssetList>> Children() {
        auto future = datastore->GetAssetList(kFolder);
        time.RunUntilIdle();
        return future;
    }
    /// The open event stream; opens it with its greeting the first time.
    FakeTransport::Exchange Stream() {
        const auto streams = transport->SentTo("/v2/events");
        EXPECT_FALSE(streams.empty());
        return streams.back();
    }
    void Say(const std::string& bytes) {
        FakeTransport::Stream(Stream(), bytes);
        time.RunUntilIdle();
    }
    std::size_t ChildRequests() const { return transport->SentTo("/children").size(); }

    kelcore::threads::VirtualTime time;
    std::shared_ptr<FakeTransport> transport = std::make_shared<FakeTransport>(time.GetExecutor());
    std::shared_ptr<vantro::VantroDatastore> datastore;
    std::unique_ptr<MessageRecorder> messages;
    std::string childName = "A";
    bool holdLists = false;
    int logouts = 0;
};

TEST_F(DatastoreEventsTest, AChangeEmptiesTheListBeforeItsMessageIsSent) {
    ASSERT_EQ(ResultOf(Children()), 0);
    Say(": connected\n\n");

    // A listener that asks again from inside the message must reach the service.
    class AsksAgain final : public kelcore::messaging::Listener {
    public:
        explicit AsksAgain(DatastoreEventsTest& test) : test(test) {}
        void ReceiveRawMessage(const kelcore::messaging::RawMessage& message) override {
            if (message.As<vantro::VantroDatastore::AssetListChanged>()) {
                sentBefore = test.ChildRequests();
                answer = test.datastore->GetAssetList(kFolder);
            }
        }
        DatastoreEventsTest& test;
        std::size_t sentBefore = 0;
        kelcore::async::Future<kelcore::classref::InterfaceRef<vantro::VantroAssetList>> answer;
    } listener(*this);
    kelcore::messaging::AddRawListener(datastore->GetStationID(), &listener);

    Say(Event("asset-list", kFolder));
    kelcore::messaging::RemoveRawListener(datastore->GetStationID(), &listener);
    ASSERT_TRUE(listener.answer.IsValid());
    EXPECT_EQ(listener.sentBefore, 1u);
    EXPECT_EQ(ChildRequests(), 2u);
    EXPECT_EQ(ResultOf(listener.answer), 0);
    EXPECT_TRUE(messages->Has("assets", kFolder));
}

TEST_F(DatastoreEventsTest, EachKindOfEventSendsItsMessageWithTheParent) {
    ASSERT_EQ(ResultOf(Children()), 0);
    Say(": connected\n\n" + Event("account-list", kAccount) + Event("team-list", kAccount) +
        Event("project-list", kOtherFolder) + Event("asset-list", kOtherFolder));
    EXPECT_EQ(messages->Messages(),
              (std::vector<MessageRecorder::Message>{{"accounts", kAccount},
                                                     {"teams", kAccount},
                                                     {"projects", kOtherFolder},
                                                     {"assets", kOtherFolder}}));
    // Another folder's change leaves this one in memory.
    ASSERT_EQ(ResultOf(Children()), 0);
    EXPECT_EQ(ChildRequests(), 1u);
}

TEST_F(DatastoreEventsTest, AChangeDuringAFetchReachesItsWaitersButIsNotKept) {
    holdLists = true;
    const auto first = Children();
    Say(": connected\n\n" + Event("asset-list", kFolder));
    EXPECT_TRUE(messages->Has("assets", kFolder));
    transport->Answer(transport->SentTo("/children").back(), ChildrenReply("A"));
    time.RunUntilIdle();
    ASSERT_EQ(ResultOf(first), 0);
    EXPECT_EQ(first.Get()->GetCount(), 1u);

    holdLists = false;
    ASSERT_EQ(ResultOf(Children()), 0);
    EXPECT_EQ(ChildRequests(), 2u);
}

TEST_F(DatastoreEventsTest, MalformedEventsAreSkipped) {
    ASSERT_EQ(ResultOf(Children()), 0);
    Say(": connected\n\n"
        "event: asset-list\ndata: not json\n\n"
        "event: asset-list\ndata: {\"parent_id\":\"not-an-id\"}\n\n"
        "event: asset-list\ndata: {}\n\n"
        "event: something-else\ndata: {\"parent_id\":\"" +
        kFolder.AsStdString() +
        "\"}\n\n"
        "data: {\"parent_id\":\"" +
        kFolder.AsStdString() + "\"}\n\n");
    EXPECT_TRUE(messages->Messages().empty());
    ASSERT_EQ(ResultOf(Children()), 0);
    EXPECT_EQ(ChildRequests(), 1u);

    // A good one after them still counts, with CRLF line ends and split inside one of them.
    std::string good = Event("asset-list", kFolder);
    for (std::size_t at = good.find('\n'); at != std::string::npos; at = good.find('\n', at + 2)) {
        good.insert(at, "\r");
    }
    const auto split = good.find('\n');
    Say(good.substr(0, split));
    EXPECT_TRUE(messages->Messages().empty());
    Say(good.substr(split));
    EXPECT_TRUE(messages->Has("assets", kFolder));
}

TEST_F(DatastoreEventsTest, AnItemSeenAgainIsTheSameObjectWithItsNewValues) {
    const auto first = Children();
    ASSERT_EQ(ResultOf(first), 0);
    Say(": connected\n\n" + Event("asset-list", kFolder));
    childName = "Renamed";
    const auto second = Children();
    ASSERT_EQ(ResultOf(second), 0);
    const auto item = first.Get()->GetAsset(0);
    EXPECT_EQ(second.Get()->GetAsset(0).get(), item.get());
    EXPECT_EQ(item->GetName(item->Lock()), "Renamed");
}

TEST_F(DatastoreEventsTest, AReconnectForgetsAndAnnouncesEveryListHeld) {
    ASSERT_EQ(ResultOf(Children()), 0);
    ASSERT_EQ(ResultOf(datastore->GetTeamList(kAccount)),
              ResultOf(datastore->GetTeamList(kAccount)));
    time.RunUntilIdle();
    Say(": connected\n\n");
    EXPECT_TRUE(messages->Messages().empty());

    Reply ended;
    ended.status = 200;
    transport->Answer(Stream(), ended);
    time.AdvanceBy(std::chrono::seconds(1));
    ASSERT_EQ(transport->SentTo("/v2/events").size(), 2u);
    EXPECT_TRUE(messages->Messages().empty());  // nothing is known to be missed until it opens
    Say(": connected\n\n");
    EXPECT_TRUE(messages->Has("assets", kFolder));
    EXPECT_TRUE(messages->Has("teams", kAccount));
    ASSERT_EQ(ResultOf(Children()), 0);
    EXPECT_EQ(ChildRequests(), 2u);
}

TEST_F(DatastoreEventsTest, SignOutFailsWaitersAsCancelledAndClosesTheStream) {
    holdLists = true;
    const auto waiting = Children();
    datastore->SignOutOAuth2();
    time.RunUntilIdle();
    EXPECT_EQ(ResultOf(waiting), vantrocommon::kResultCancelled);
    EXPECT_EQ(logouts, 1);
    // Both the list's request and the stream were cancelled: a late reply changes nothing.
    transport->Answer(transport->SentTo("/children").back(), ChildrenReply("Late"));
    time.AdvanceBy(std::chrono::minutes(1));
    EXPECT_EQ(transport->SentTo("/v2/events").size(), 1u);

    // The next ask starts afresh, stream included.
    holdLists = false;
    ASSERT_EQ(ResultOf(Children()), 0);
    EXPECT_EQ(ChildRequests(), 2u);
    EXPECT_EQ(transport->SentTo("/v2/events").size(), 2u);
}

TEST_F(DatastoreEventsTest, DestroyingTheDatastoreCancelsWhatWaitsAndLateRepliesTouchNothing) {
    holdLists = true;
    const auto waiting = Children();
    messages.reset();
    datastore.reset();
    time.RunUntilIdle();
    EXPECT_EQ(ResultOf(waiting), vantrocommon::kResultCancelled);
    transport->Answer(transport->SentTo("/children").back(), ChildrenReply("Late"));
    FakeTransport::Stream(transport->SentTo("/v2/events").back(), Event("asset-list", kFolder));
    time.AdvanceBy(std::chrono::minutes(1));
    EXPECT_EQ(transport->Sent().size(), 2u);
}

}  // namespace
}  // namespace vantroclienttest
