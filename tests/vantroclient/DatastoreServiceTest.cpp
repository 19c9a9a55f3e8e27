// The service's datastore against the real server on loopback: the five calls, whole lists
// across pages, answers from memory, shared fetches, and change messages from the event stream.
#include <gtest/gtest.h>

#include <set>

#include <kelcore/async/Future.h>
#include <vantroclient/VantroAccountList.h>
#include <vantroclient/VantroAssetList.h>
#include <vantroclient/VantroProjectList.h>
#include <vantroclient/VantroTeamList.h>
#include <vantroclient/VantroUser.h>

#include "DatastoreServiceFixture.h"

namespace vantroclienttest {
namespace {

using kelcore::async::ResultOf;

class DatastoreServiceTest : public DatastoreServiceFixture {};

TEST_F(DatastoreServiceTest, AnswersTheUserAndEachKindOfList) {
    StartWorld();
    const auto folder = AdminId({"folder", "add", "--parent", root, "--name", "Cuts"});

    const auto user = Await(datastore->GetCurrentUser());
    ASSERT_EQ(ResultOf(user), 0);
    EXPECT_EQ(user.Get()->GetRecord(user.Get()->Lock()).username, kUser);
    EXPECT_FALSE(user.Get()->GetID().IsNil());

    const auto accounts = Await(datastore->GetAccountList());
    ASSERT_EQ(ResultOf(accounts), 0);
    ASSERT_EQ(accounts.Get()->GetCount(), 1u);
    EXPECT_EQ(accounts.Get()->GetAccount(0)->GetID(), G(studio));
    EXPECT_EQ(accounts.Get()->GetAccount(0)->GetName(), "Studio");

    const auto teams = Await(datastore->GetTeamList(G(studio)));
    ASSERT_EQ(ResultOf(teams), 0);
    ASSERT_EQ(teams.Get()->GetCount(), 1u);
    const auto team = teams.Get()->GetTeam(0);
    EXPECT_EQ(team->GetID(), G(editors));
    EXPECT_EQ(team->GetName(team->Lock()), "Editors");

    const auto projects = Await(datastore->GetProjectList(G(editors)));
    ASSERT_EQ(ResultOf(projects), 0);
    ASSERT_EQ(projects.Get()->GetCount(), 1u);
    EXPECT_EQ(projects.Get()->GetProject(0)->GetID(), G(alpha));
    EXPECT_EQ(projects.Get()->GetProject(0)->GetRootAssetID(), G(root));

    const auto assets = Await(datastore->GetAssetList(G(root)));
    ASSERT_EQ(ResultOf(assets), 0);
    ASSERT_EQ(assets.Get()->GetCount(), 1u);
    EXPECT_EQ(assets.Get()->GetAsset(0)->GetID(), G(folder));
    EXPECT_EQ(assets.Get()->GetAsset(0)->GetType(), vantro::VantroAsset::kFolder);
    EXPECT_EQ(NamesOf(assets.Get()), std::vector<std::string>{"Cuts"});

    EXPECT_EQ(transport->CountSent("/v2/me"), 1u);
    EXPECT_EQ(transport->CountSent("/v2/accounts?"), 1u);
}

TEST_F(DatastoreServiceTest, AFolderOf250ChildrenArrivesWholeInPagesOf100) {
    MakeWorld();
    AddFoldersThroughApi(root, 250);
    OpenDatastore({.pageSize = 100});

    const auto assets = Await(datastore->GetAssetList(G(root)));
    ASSERT_EQ(ResultOf(assets), 0);
    const auto names = NamesOf(assets.Get());
    EXPECT_EQ(names.size(), 250u);
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), 250u);
    EXPECT_EQ(transport->CountSent("/children?"), 3u);
    EXPECT_EQ(transport->CountSent("page=3"), 1u);
}

TEST_F(DatastoreServiceTest, ASecondAskIsAnsweredFromMemory) {
    StartWorld();
    const auto first = Await(datastore->GetTeamList(G(studio)));
    ASSERT_EQ(ResultOf(first), 0);
    const auto sent = transport->SentSoFar().size();

    const auto second = Await(datastore->GetTeamList(G(studio)));
    ASSERT_EQ(ResultOf(second), 0);
    EXPECT_EQ(second.Get().get(), first.Get().get());
    EXPECT_EQ(transport->SentSoFar().size(), sent);
}

TEST_F(DatastoreServiceTest, TwoAsksDuringOneFetchShareIt) {
    StartWorld();
    const auto first = datastore->GetProjectList(G(editors));
    const auto second = datastore->GetProjectList(G(editors));
    Await(first);
    Await(second);
    ASSERT_EQ(ResultOf(first), 0);
    ASSERT_EQ(ResultOf(second), 0);
    EXPECT_EQ(first.Get().get(), second.Get().get());
    EXPECT_EQ(transport->CountSent("/projects?"), 1u);
}

TEST_F(DatastoreServiceTest, AFolderMadeByAnotherClientIsAnnouncedAndTheNextListHasIt) {
    MakeWorld();
    AddFoldersThroughApi(root, 3);
    OpenDatastore();
    const auto before = Await(datastore->GetAssetList(G(root)));
    ASSERT_EQ(ResultOf(before), 0);
    ASSERT_EQ(before.Get()->GetCount(), 3u);
    ASSERT_TRUE(WaitForStream());

    const auto other = SignIn(kUser, kPassword).access;
    const auto created =
        client.PostJson(Url("/v2/assets/" + root + "/children"),
                        {{"name", "Late"}, {"type", "folder"}}, testsupport::Bearer(other));
    ASSERT_EQ(created.status, 201) << created.body;
    EXPECT_TRUE(
        PumpUntil([&] { return messages->Has("assets", G(root)); }, std::chrono::seconds(1)));

    const auto after = Await(datastore->GetAssetList(G(root)));
    ASSERT_EQ(ResultOf(after), 0);
    ASSERT_EQ(after.Get()->GetCount(), 4u);
    EXPECT_EQ(transport->CountSent("/children?"), 2u);
    for (std::uint64_t i = 0; i < before.Get()->GetCount(); ++i) {
        const auto old = before.Get()->GetAsset(i);
        bool same = false;
        for (std::uint64_t j = 0; j < after.Get()->GetCount(); ++j) {
            same = same || after.Get()->GetAsset(j).get() == old.get();
        }
        EXPECT_TRUE(same) << "a new object for " << old->GetID();
    }
    const auto names = NamesOf(after.Get());
    EXPECT_NE(std::find(names.begin(), names.end(), "Late"), names.end());
}

TEST_F(DatastoreServiceTest, TeamAndProjectChangesFromAdminCommandsAreAnnounced) {
    StartWorld();
    ASSERT_EQ(ResultOf(Await(datastore->GetTeamList(G(studio)))), 0);
    ASSERT_TRUE(WaitForStream());

    const auto team =
        AdminId({"team", "add", "--account", studio, "--name", "Later", "--member", kUser});
    EXPECT_TRUE(PumpUntil([&] { return messages->Has("teams", G(studio)); }));
    Admin({"project", "add", "--team", editors, "--name", "Beta"});
    EXPECT_TRUE(PumpUntil([&] { return messages->Has("projects", G(editors)); }));

    const auto teams = Await(datastore->GetTeamList(G(studio)));
    ASSERT_EQ(ResultOf(teams), 0);
    EXPECT_EQ(teams.Get()->GetCount(), 2u);
    EXPECT_EQ(transport->CountSent("/teams?"), 2u);
    static_cast<void>(team);
}

}  // namespace
}  // namespace vantroclienttest
