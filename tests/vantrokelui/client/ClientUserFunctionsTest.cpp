// The client back end's entries against a scripted datastore: the signed-in user asked for once
// per process and answered on the future's executor (a failure stays for good), a node for a
// user the host already has, and sign-out's two calls. GetCurrentUser keeps its future in a
// function-local static, so each of these tests relies on running in a process of its own, as
// ctest runs them.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include <kelcore/config/ResultCode.h>
#include <kelcore/config/kel_exception.h>
#include <vantrokelui/model/client/UserFunctions.h>
#include <vantrokelui/model/client/VantroClientUser.h>

#include "FakeDatastore.h"
#include "ScopedDatastore.h"
#include "support/MainThreadFixture.h"

namespace {

using clienttest::FakeDatastore;
using kelcore::utility::Guid;
using vantrokelui::FetchChildrenState;
using vantrokelui::VantroUser;
using Kind = clienttest::FakeDatastore::Kind;
namespace client = vantrokelui::model::VantroClientIntegration;

class ClientUserFunctionsTest : public testsupport::MainThreadFixture {
protected:
    /// Calls GetCurrentUser, recording each answer in `answers`.
    void AskForUser() {
        client::GetCurrentUser(
            [this](const std::shared_ptr<VantroUser>& user) { answers.push_back(user); });
    }

    std::shared_ptr<FakeDatastore> fake = std::make_shared<FakeDatastore>();
    clienttest::ScopedDatastore installed{fake};
    std::vector<std::shared_ptr<VantroUser>> answers;
};

std::u16string NameOf(const VantroUser& user) {
    const auto name = user.GetName();
    return {name.begin(), name.end()};
}

TEST_F(ClientUserFunctionsTest, GetCurrentUserAnswersOnTheFuturesExecutorWithAClientUser) {
    const Guid id = Guid::CreateUnique();
    fake->SetCurrentUser(clienttest::MakeUser("Ann \xC3\x85sa", id));

    AskForUser();
    EXPECT_TRUE(answers.empty()) << "answered inline, not on the future's executor";
    Pump();

    ASSERT_EQ(answers.size(), 1u);
    const auto user = std::dynamic_pointer_cast<client::VantroClientUser>(answers[0]);
    ASSERT_NE(user, nullptr);
    EXPECT_EQ(user->GetID(), id);
    EXPECT_EQ(NameOf(*user), u"Ann \u00C5sa");
    EXPECT_EQ(user->GetParent(), nullptr);
    EXPECT_EQ(user->GetFetchChildrenState(), FetchChildrenState::NotFetched);
}

TEST_F(ClientUserFunctionsTest, TheUserIsAskedForOncePerProcessAndEveryCallIsAnswered) {
    const Guid id = Guid::CreateUnique();
    fake->HoldAnswers(true);
    AskForUser();
    AskForUser();
    fake->SetCurrentUser(clienttest::MakeUser("Ann", id));
    ASSERT_EQ(fake->AnswerWaiting(), 1u);
    AskForUser();
    Pump();

    EXPECT_EQ(fake->CountRequests(Kind::CurrentUser), 1u);
    ASSERT_EQ(answers.size(), 3u);
    for (const auto& user : answers) {
        EXPECT_EQ(user->GetID(), id);
    }
    // Each call gets a node of its own.
    EXPECT_NE(answers[0], answers[1]);
    EXPECT_NE(answers[1], answers[2]);
}

TEST_F(ClientUserFunctionsTest, AfterAFailedFirstGetCurrentUserEveryLaterCallStaysUnanswered) {
    fake->HoldAnswers(true);
    AskForUser();
    ASSERT_EQ(fake->FailWaiting(static_cast<kelcore::config::ResultCode>(0xBB580011)), 1u);
    Pump();
    ASSERT_TRUE(answers.empty());

    // The datastore would answer now, but the failed future is what every call sees.
    fake->HoldAnswers(false);
    fake->SetCurrentUser(clienttest::MakeUser("Ann"));
    AskForUser();
    AskForUser();
    Pump();

    EXPECT_TRUE(answers.empty());
    EXPECT_EQ(fake->CountRequests(Kind::CurrentUser), 1u);
    EXPECT_EQ(fake->CountWaiting(), 0u);
}

TEST_F(ClientUserFunctionsTest, ANullUserFromTheDatastoreAnswersNobody) {
    fake->HoldAnswers(true);
    AskForUser();
    ASSERT_EQ(fake->AnswerWaitingWithNull(), 1u);
    Pump();
    AskForUser();
    Pump();

    EXPECT_TRUE(answers.empty());
    EXPECT_EQ(fake->CountRequests(Kind::CurrentUser), 1u);
}

TEST_F(ClientUserFunctionsTest, CreateClientUserMakesAClientUserWithTheIdAndName) {
    const Guid id = Guid::CreateUnique();

    const auto user = client::CreateClientUser(clienttest::MakeUser("Bea \xE2\x9C\x93", id));

    ASSERT_NE(std::dynamic_pointer_cast<client::VantroClientUser>(user), nullptr);
    EXPECT_EQ(user->GetID(), id);
    EXPECT_EQ(NameOf(*user), u"Bea \u2713");
    EXPECT_EQ(user->GetFetchChildrenState(), FetchChildrenState::NotFetched);
    EXPECT_TRUE(fake->Requests().empty()) << "making the node asked the datastore";

    // It is a whole user of this back end: its fetch goes to the datastore.
    fake->SetAccounts({clienttest::MakeAccount("Studio")});
    user->FetchChildren();
    Pump();
    EXPECT_EQ(user->GetAccounts().size(), 1u);
}

TEST_F(ClientUserFunctionsTest, CreateClientUserRefusesANullUser) {
    try {
        client::CreateClientUser(nullptr);
        FAIL() << "no exception";
    } catch (const kelcore::config::kel_exception& e) {
        EXPECT_EQ(e.GetCode(), kelcore::config::kResultNullPointer);
    }
}

TEST_F(ClientUserFunctionsTest, SignOutEndsTheJwtSessionThenTheOAuth2SignIn) {
    client::SignOut();

    EXPECT_EQ(fake->SignOuts(),
              (std::vector<std::string>{"fake:SignOutJwt", "fake:SignOutOAuth2"}));
}

TEST_F(ClientUserFunctionsTest, SignOutLooksTheDatastoreUpAgainForTheSecondCall) {
    auto second = std::make_shared<FakeDatastore>();
    second->SetName("second");
    // Whatever stands under the name when SignOutJwt has returned gets SignOutOAuth2.
    fake->OnSignOutJwt([second] {
        vantro::VantroDatastore::SetDatastore(kelcore::utility::ImmutableString(), second);
    });

    client::SignOut();

    EXPECT_EQ(fake->SignOuts(), std::vector<std::string>{"fake:SignOutJwt"});
    EXPECT_EQ(second->SignOuts(), std::vector<std::string>{"second:SignOutOAuth2"});
}

TEST_F(ClientUserFunctionsTest, SignOutKeepsTheUserFuture) {
    const Guid first = Guid::CreateUnique();
    fake->SetCurrentUser(clienttest::MakeUser("Ann", first));
    AskForUser();
    Pump();
    ASSERT_EQ(answers.size(), 1u);

    client::SignOut();
    fake->SetCurrentUser(clienttest::MakeUser("Bea"));
    AskForUser();
    Pump();

    ASSERT_EQ(answers.size(), 2u);
    EXPECT_EQ(answers[1]->GetID(), first);
    EXPECT_EQ(fake->CountRequests(Kind::CurrentUser), 1u);
}

}  // namespace
