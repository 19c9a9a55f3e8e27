// The client's set-up and its tokens: one client per process, the bearer header, the 401
// refresh protocol against the real server, the expiry timer under virtual time, and where
// futures complete.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <boost/json/parse.hpp>

#include <kelcore/threads/ThreadPoolExecutor.h>
#include <kelcore/threads/VirtualTime.h>
#include <vantrocommon/ResultCodes.h>
#include <vantrosdk/Accounts.h>
#include <vantrosdk/GetCurrentUserRequest.h>
#include <vantrosdk/GetCurrentUserResponse.h>
#include <vantrosdk/TransferManager.h>
#include <vantrosdk/UploadRequest.h>
#include <vantrosdk/UploadResponse.h>
#include <vantrosdk/VantroClient.h>

#include "SdkTestSupport.h"

namespace sdktest {
namespace {

using kelcore::async::Future;
using vantrosdk::GetCurrentUserRequest;
using vantrosdk::GetCurrentUserResponse;
using vantrosdk::VantroClient;
using vantrosdk::VantroConfig;

vantrocommon::http::Reply Json(int status, std::string body) {
    vantrocommon::http::Reply reply;
    reply.status = status;
    reply.body = std::move(body);
    return reply;
}

class VantroClientTest : public SdkWorldFixture {};

TEST_F(VantroClientTest, IsNullBeforeInitializeAndRefusesASecondInitialize) {
    EXPECT_EQ(VantroClient::Get(), nullptr);
    ASSERT_TRUE(VantroClient::Initialize(VantroConfig("first"), {}).IsSuccess());
    const auto first = VantroClient::Get();
    ASSERT_NE(first, nullptr);

    const auto second = VantroClient::Initialize(VantroConfig("second"), {});

    EXPECT_FALSE(second.IsSuccess());
    EXPECT_EQ(VantroClient::Get(), first);
    VantroClient::ResetForTesting();
    EXPECT_EQ(VantroClient::Get(), nullptr);
}

TEST_F(VantroClientTest, RefusesAnEmptyClientIdAndAnEmptyToken) {
    EXPECT_EQ(VantroClient::Initialize(VantroConfig(""), {}).GetResult(),
              vantrocommon::kResultInvalidArgument);
    ASSERT_TRUE(VantroClient::Initialize(VantroConfig("id"), {}).IsSuccess());
    EXPECT_EQ(VantroClient::Get()->UpdateAccessToken("").GetResult(),
              vantrocommon::kResultInvalidArgument);
}

TEST_F(VantroClientTest, FailsARequestMadeBeforeAnyTokenWithNotReady) {
    auto pool = std::make_shared<kelcore::threads::ThreadPoolExecutor>(1);
    auto transport = std::make_shared<FakeTransport>(
        pool, [](const vantrocommon::http::Request&) { return Json(200, "{}"); });
    VantroConfig config("id");
    config.SetTransport(transport);
    config.SetExecutor(pool);
    ASSERT_TRUE(VantroClient::Initialize(config, {}).IsSuccess());

    const auto answer = VantroClient::Get()->GetAccounts()->GetCurrentUser({});

    EXPECT_EQ(AwaitResult(answer), vantrocommon::kResultNotReady);
    EXPECT_TRUE(transport->Requests().empty());
}

TEST_F(VantroClientTest, SendsTheTokenAsABearerHeader) {
    auto pool = std::make_shared<kelcore::threads::ThreadPoolExecutor>(1);
    auto transport = std::make_shared<FakeTransport>(
        pool, [](const vantrocommon::http::Request&) { return Json(200, "{}"); });
    VantroConfig config("id");
    config.SetTransport(transport);
    config.SetExecutor(pool);
    ASSERT_TRUE(VantroClient::Initialize(config, {}).IsSuccess());
    ASSERT_TRUE(VantroClient::Get()->UpdateAccessToken("abc.def.ghi").IsSuccess());

    Await(VantroClient::Get()->GetAccounts()->GetCurrentUser({}));

    const auto requests = transport->Requests();
    ASSERT_EQ(requests.size(), 1u);
    std::vector<std::string> authorization;
    for (const auto& [name, value] : requests[0].headers) {
        if (name == "Authorization") {
            authorization.push_back(value);
        }
    }
    EXPECT_EQ(authorization, std::vector<std::string>{"Bearer abc.def.ghi"});
}

/// Holds a one-thread executor busy until opened, so that nothing posted to it can run before.
class Gate {
public:
    explicit Gate(const std::shared_ptr<kelcore::threads::AsyncExecutor>& executor) {
        executor->Post([state = state] {
            std::unique_lock lock(state->mutex);
            state->changed.wait(lock, [&] { return state->open; });
        });
    }
    ~Gate() { Open(); }
    void Open() {
        std::lock_guard lock(state->mutex);
        state->open = true;
        state->changed.notify_all();
    }

private:
    struct State {
        std::mutex mutex;
        std::condition_variable changed;
        bool open = false;
    };
    std::shared_ptr<State> state = std::make_shared<State>();
};

/// Where a continuation attached while the future was pending ran.
struct Completion {
    std::thread::id thread;
    bool onExecutor = false;
    bool onTransport = false;
};

template <class T>
Completion CompletionOf(const Future<T>& answer,
                        const std::shared_ptr<kelcore::threads::ThreadPoolExecutor>& executor,
                        const std::shared_ptr<kelcore::threads::ThreadPoolExecutor>& transport,
                        Gate& gate) {
    auto seen = std::make_shared<Completion>();
    const auto observed = answer.Then([seen, executor, transport](const auto&) {
        seen->thread = std::this_thread::get_id();
        seen->onExecutor = executor->RunsTasksOnCurrentThread();
        seen->onTransport = transport->RunsTasksOnCurrentThread();
    });
    gate.Open();
    EXPECT_TRUE(WaitFor(observed));
    return *seen;
}

TEST_F(VantroClientTest, CompletesFuturesOnItsExecutorAndNeverInline) {
    auto executor = std::make_shared<kelcore::threads::ThreadPoolExecutor>(1);
    auto transportPool = std::make_shared<kelcore::threads::ThreadPoolExecutor>(1);
    auto transport = std::make_shared<FakeTransport>(
        transportPool, [](const vantrocommon::http::Request&) { return Json(200, "{}"); });
    VantroConfig config("id");
    config.SetTransport(transport);
    config.SetExecutor(executor);
    ASSERT_TRUE(VantroClient::Initialize(config, {}).IsSuccess());
    const auto client = VantroClient::Get();

    {
        Gate gate(executor);
        const auto beforeToken = client->GetAccounts()->GetCurrentUser({});
        EXPECT_FALSE(beforeToken.IsReady()) << "failed inline";
        const auto seen = CompletionOf(beforeToken, executor, transportPool, gate);
        EXPECT_NE(seen.thread, std::this_thread::get_id());
        EXPECT_TRUE(seen.onExecutor);
    }
    ASSERT_TRUE(client->UpdateAccessToken("abc.def.ghi").IsSuccess());
    for (int i = 0; i < 5; ++i) {
        Gate gate(executor);
        const auto answered = client->GetAccounts()->GetCurrentUser({});
        EXPECT_FALSE(answered.IsReady()) << "completed inline";
        const auto seen = CompletionOf(answered, executor, transportPool, gate);
        EXPECT_NE(seen.thread, std::this_thread::get_id());
        EXPECT_TRUE(seen.onExecutor);
        EXPECT_FALSE(seen.onTransport);
    }
    {
        Gate gate(executor);
        vantrocommon::Guid transfer;
        const auto uploaded = client->GetTransferManager()->Upload(
            vantrosdk::UploadRequest(vantrocommon::Guid::CreateUnique(), "/nonexistent/file", {}),
            transfer);
        EXPECT_FALSE(uploaded.IsReady()) << "failed inline";
        const auto seen = CompletionOf(uploaded, executor, transportPool, gate);
        EXPECT_TRUE(seen.onExecutor);
        EXPECT_EQ(kelcore::async::ResultOf(uploaded), vantrocommon::kResultFileError);
    }
}

TEST_F(VantroClientTest, RefusesASuccessfulAnswerThatIsNotJson) {
    auto pool = std::make_shared<kelcore::threads::ThreadPoolExecutor>(1);
    auto transport = std::make_shared<FakeTransport>(
        pool, [](const vantrocommon::http::Request&) { return Json(200, "<html>"); });
    VantroConfig config("id");
    config.SetTransport(transport);
    config.SetExecutor(pool);
    ASSERT_TRUE(VantroClient::Initialize(config, {}).IsSuccess());
    ASSERT_TRUE(VantroClient::Get()->UpdateAccessToken("abc.def.ghi").IsSuccess());

    EXPECT_EQ(AwaitResult(VantroClient::Get()->GetAccounts()->GetCurrentUser({})),
              vantrocommon::kResultBadResponse);
}

TEST_F(VantroClientTest, OnUnauthorizedAsksOnceForATokenAndSendsAgainWithIt) {
    StartWorld();
    std::atomic<int> asked{0};
    std::atomic<bool> askedUnderExecutor{true};
    auto pool = std::make_shared<kelcore::threads::ThreadPoolExecutor>(2);
    VantroConfig config = Config();
    config.SetExecutor(pool);
    ASSERT_TRUE(VantroClient::Initialize(config, [&, pool](const std::string& hint) {
                    EXPECT_TRUE(hint.empty());
                    askedUnderExecutor = askedUnderExecutor && pool->RunsTasksOnCurrentThread();
                    ++asked;
                    VantroClient::Get()->UpdateAccessToken(token);
                }).IsSuccess());
    ASSERT_TRUE(VantroClient::Get()->UpdateAccessToken("not-a-valid-token").IsSuccess());

    std::vector<Future<std::shared_ptr<GetCurrentUserResponse>>> answers;
    for (int i = 0; i < 3; ++i) {
        answers.push_back(VantroClient::Get()->GetAccounts()->GetCurrentUser({}));
    }

    for (const auto& answer : answers) {
        const auto response = Await(answer);
        EXPECT_EQ(response->GetHTTPStatusCode(), 200);
        EXPECT_EQ(response->GetUserObject().username, "ann");
    }
    EXPECT_EQ(asked.load(), 1);
    EXPECT_TRUE(askedUnderExecutor.load());
}

TEST_F(VantroClientTest, AnswersTheUnauthorizedResponseWhenNoTokenComes) {
    StartWorld();
    std::atomic<int> asked{0};
    VantroConfig config = Config();
    config.SetTokenRefreshWait(std::chrono::milliseconds(200));
    ASSERT_TRUE(VantroClient::Initialize(config, [&](const std::string&) { ++asked; }).IsSuccess());
    ASSERT_TRUE(VantroClient::Get()->UpdateAccessToken("not-a-valid-token").IsSuccess());

    const auto response = Await(VantroClient::Get()->GetAccounts()->GetCurrentUser({}));

    EXPECT_EQ(response->GetHTTPStatusCode(), 401);
    EXPECT_FALSE(response->IsSuccessful());
    EXPECT_EQ(asked.load(), 1);
}

TEST_F(VantroClientTest, AsksForANewTokenAheadOfTheServersExpiry) {
    AddUser("ann", "pw-ann");
    const auto issued =
        boost::json::parse(Admin({"token", "issue", "--user", "ann", "--access-token-ttl", "600"}));
    const std::string access(issued.at("access_token").as_string());
    kelcore::threads::VirtualTime time;
    int asked = 0;
    ASSERT_TRUE(VantroClient::Initialize(VantroConfig("id"), [&](const std::string&) {
                    ++asked;
                }).IsSuccess());

    ASSERT_TRUE(VantroClient::Get()->UpdateAccessToken(access).IsSuccess());
    // 600 s of life: asked 60 s before the end, a little under 540 s from now (the claims are
    // whole seconds).
    time.AdvanceBy(std::chrono::seconds(530));
    EXPECT_EQ(asked, 0);
    time.AdvanceBy(std::chrono::seconds(15));
    EXPECT_EQ(asked, 1);
    VantroClient::ResetForTesting();
}

TEST_F(VantroClientTest, AsksAheadOfExpiryByATenthOfAShortLife) {
    kelcore::threads::VirtualTime time;
    int asked = 0;
    ASSERT_TRUE(VantroClient::Initialize(VantroConfig("id"), [&](const std::string&) {
                    ++asked;
                }).IsSuccess());
    const auto now = std::chrono::duration_cast<std::chrono::seconds>(
                         std::chrono::system_clock::now().time_since_epoch())
                         .count();

    ASSERT_TRUE(VantroClient::Get()
                    ->UpdateAccessToken(MakeToken(R"({"iat":)" + std::to_string(now) +
                                                  R"(,"exp":)" + std::to_string(now + 100) + "}"))
                    .IsSuccess());
    // 100 s of life: asked 10 s before the end.
    time.AdvanceBy(std::chrono::seconds(88));
    EXPECT_EQ(asked, 0);
    time.AdvanceBy(std::chrono::seconds(3));
    EXPECT_EQ(asked, 1);
    VantroClient::ResetForTesting();
}

TEST_F(VantroClientTest, ANewTokenReplacesTheOldTokensExpiryTimer) {
    kelcore::threads::VirtualTime time;
    int asked = 0;
    ASSERT_TRUE(VantroClient::Initialize(VantroConfig("id"), [&](const std::string&) {
                    ++asked;
                }).IsSuccess());
    const auto now = std::chrono::duration_cast<std::chrono::seconds>(
                         std::chrono::system_clock::now().time_since_epoch())
                         .count();
    auto tokenFor = [&](std::int64_t life) {
        return MakeToken(R"({"iat":)" + std::to_string(now) + R"(,"exp":)" +
                         std::to_string(now + life) + "}");
    };
    ASSERT_TRUE(VantroClient::Get()->UpdateAccessToken(tokenFor(100)).IsSuccess());

    ASSERT_TRUE(VantroClient::Get()->UpdateAccessToken(tokenFor(3600)).IsSuccess());
    time.AdvanceBy(std::chrono::seconds(200));
    EXPECT_EQ(asked, 0);
    time.AdvanceBy(std::chrono::seconds(3600));
    EXPECT_EQ(asked, 1);
    VantroClient::ResetForTesting();
}

}  // namespace
}  // namespace sdktest
