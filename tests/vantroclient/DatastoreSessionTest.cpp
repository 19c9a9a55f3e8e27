// The service's datastore against the real server when things go wrong or end: a rate limit
// that is kept, an event stream the server closes, sign-outs, and a refused token.
#include <gtest/gtest.h>

#include <algorithm>

#include <boost/json/parse.hpp>

#include <kelcore/async/Future.h>
#include <vantroauth/ResultCodes.h>
#include <vantroauth/jwt/AuthManager.h>
#include <vantroclient/VantroAccountList.h>
#include <vantroclient/VantroAssetList.h>
#include <vantroclient/VantroTeamList.h>
#include <vantroclient/VantroUser.h>
#include <vantrocommon/ResultCodes.h>

#include "DatastoreServiceFixture.h"

namespace vantroclienttest {
namespace {

using kelcore::async::ResultOf;

class DatastoreSessionTest : public DatastoreServiceFixture {
protected:
    void Fault(const boost::json::object& fault) {
        const auto reply = client.PostJson(Url("/test/faults"), fault);
        ASSERT_EQ(reply.status, 201) << reply.body;
    }
    std::string RefreshTokenSignedInWith() const {
        return std::string(boost::json::parse(tokenAnswer).at("refresh_token").as_string());
    }
};

TEST_F(DatastoreSessionTest, UnderARateLimitAWholeListingArrivesAndNoWindowHoldsTooMany) {
    MakeWorld();
    AddFoldersThroughApi(root, 250);
    RestartServer({"--rate-limit", "5/2000"});
    // Pages of 25: ten page requests and the event stream against five per two seconds.
    OpenDatastore({.pageSize = 25});

    const auto assets = Await(datastore->GetAssetList(G(root)), std::chrono::seconds(60));
    ASSERT_EQ(ResultOf(assets), 0);
    EXPECT_EQ(assets.Get()->GetCount(), 250u);
    EXPECT_EQ(transport->CountSent("/children?"), 10u);

    // Counted on the client's side, as each request left: the server keeps no count.
    auto sent = transport->SentSoFar();
    std::sort(sent.begin(), sent.end(), [](const auto& a, const auto& b) { return a.at < b.at; });
    for (std::size_t i = 0; i < sent.size(); ++i) {
        const auto inWindow = std::count_if(
            sent.begin() + static_cast<std::ptrdiff_t>(i), sent.end(),
            [&](const auto& s) { return s.at - sent[i].at < std::chrono::milliseconds(2000); });
        EXPECT_LE(inWindow, 5) << "window starting at request " << i;
    }
    const auto statuses = transport->Statuses();
    EXPECT_EQ(std::count(statuses.begin(), statuses.end(), 429), 0);
}

TEST_F(DatastoreSessionTest, AClosedStreamReconnectsAnnouncesHeldListsAndLaterChangesArrive) {
    StartWorld();
    const auto user = Await(datastore->GetCurrentUser());
    ASSERT_EQ(ResultOf(user), 0);
    ASSERT_EQ(ResultOf(Await(datastore->GetAccountList())), 0);
    ASSERT_EQ(ResultOf(Await(datastore->GetAssetList(G(root)))), 0);
    ASSERT_TRUE(WaitForStream());
    const auto streamed = transport->StreamedBytes();

    const auto closed = client.Delete(Url("/test/events"));
    ASSERT_EQ(closed.status, 200) << closed.body;
    EXPECT_EQ(closed.Json().at("closed").as_int64(), 1);

    ASSERT_TRUE(PumpUntil([&] {
        return messages->Has("assets", G(root)) && messages->Has("accounts", user.Get()->GetID());
    }));
    EXPECT_EQ(transport->CountSent("/v2/events"), 2u);
    EXPECT_GT(transport->StreamedBytes(), streamed);

    // Forgotten: the next ask goes to the server.
    ASSERT_EQ(ResultOf(Await(datastore->GetAssetList(G(root)))), 0);
    EXPECT_EQ(transport->CountSent("/children?"), 2u);

    Admin({"folder", "add", "--parent", root, "--name", "After"});
    EXPECT_TRUE(PumpUntil([&] { return messages->Count("assets", G(root)) == 2; }));
}

TEST_F(DatastoreSessionTest, SignOutJwtFailsWhatIsUnderWayAndEmptiesTheStore) {
    StartWorld();
    ASSERT_EQ(ResultOf(Await(datastore->GetTeamList(G(studio)))), 0);
    Fault({{"route", "/v2/assets/*/children"}, {"delay_ms", 30000}});
    const auto pending = datastore->GetAssetList(G(root));

    datastore->SignOutJwt();
    const auto started = std::chrono::steady_clock::now();
    Await(pending);
    EXPECT_EQ(ResultOf(pending), vantrocommon::kResultCancelled);
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(10));

    const auto again = Await(datastore->GetTeamList(G(studio)));
    ASSERT_EQ(ResultOf(again), 0);
    EXPECT_EQ(again.Get()->GetCount(), 1u);
    EXPECT_EQ(transport->CountSent("/teams?"), 2u);
}

TEST_F(DatastoreSessionTest, SignOutOAuth2AlsoEndsTheSignInAtTheService) {
    StartWorld();
    ASSERT_EQ(ResultOf(Await(datastore->GetTeamList(G(studio)))), 0);
    Fault({{"route", "/v2/assets/*/children"}, {"delay_ms", 30000}});
    const auto pending = datastore->GetAssetList(G(root));

    datastore->SignOutOAuth2();
    Await(pending);
    EXPECT_EQ(ResultOf(pending), vantrocommon::kResultCancelled);
    EXPECT_EQ(RefreshStatus(RefreshTokenSignedInWith()), 400);

    // Nobody is signed in: the next ask fails without reaching the service's lists...
    const auto refused = Await(datastore->GetTeamList(G(studio)));
    EXPECT_EQ(ResultOf(refused), vantroauth::kResultNotSignedIn);
    EXPECT_EQ(transport->CountSent("/teams?"), 1u);

    // ...and after a new sign-in it starts afresh.
    const auto stored = vantroauth::jwt::StoreTokenAnswer(kUser, IssueTokenAnswer());
    ASSERT_TRUE(stored.IsSuccess());
    ASSERT_EQ(ResultOf(Await(datastore->GetTeamList(G(studio)))), 0);
    EXPECT_EQ(transport->CountSent("/teams?"), 2u);
}

TEST_F(DatastoreSessionTest, A401IsRetriedOnceWithAFreshToken) {
    StartWorld();
    Fault({{"route", "/v2/accounts"}, {"status", 401}});
    const auto accounts = Await(datastore->GetAccountList());
    ASSERT_EQ(ResultOf(accounts), 0);
    EXPECT_EQ(accounts.Get()->GetCount(), 1u);
    EXPECT_EQ(transport->CountSent("/v2/accounts?"), 2u);
}

TEST_F(DatastoreSessionTest, A401AfterTheFreshTokenFailsTheList) {
    StartWorld();
    Fault({{"route", "/v2/teams/*/projects"}, {"status", 401}, {"count", 2}});
    const auto projects = Await(datastore->GetProjectList(G(editors)));
    EXPECT_EQ(ResultOf(projects), vantrocommon::kResultHttpError);
    EXPECT_EQ(transport->CountSent("/projects?"), 2u);
}

}  // namespace
}  // namespace vantroclienttest
