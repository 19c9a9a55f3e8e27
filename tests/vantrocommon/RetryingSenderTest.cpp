// SendWithRetry under virtual time with a scripted transport: what is retried, how long each
// wait lasts, what ends the loop and what the caller gets at the end.
#include <gtest/gtest.h>

#include <kelcore/async/Future.h>
#include <kelcore/config/ErrorHandling.h>
#include <kelcore/threads/VirtualTime.h>

#include <vantrocommon/ResultCodes.h>
#include <vantrocommon/RetryingSender.h>

#include "ScriptedTransport.h"

namespace {

using namespace std::chrono_literals;
using kelcore::async::Future;
using kelcore::async::ResultOf;
using vantrocommon::RetryPolicy;
using vantrocommon::SendWithRetry;
using vantrocommon::http::CancellationToken;
using vantrocommon::http::Reply;
using vantrocommon::http::Request;
using vantrocommontest::ScriptedTransport;

class SendWithRetryTest : public ::testing::Test {
protected:
    /// Jitter fixed at `jitter` of the ceiling, so every wait is known.
    Future<Reply> Send(RetryPolicy policy, CancellationToken cancel = CancellationToken(),
                       double jitter = 0.5) {
        return SendWithRetry(transport, request, policy, time.GetExecutor(), std::move(cancel),
                             [jitter] { return jitter; });
    }

    /// The virtual times between consecutive sends.
    std::vector<std::chrono::milliseconds> Gaps() const {
        std::vector<std::chrono::milliseconds> gaps;
        const auto sent = transport->SentSoFar();
        for (std::size_t i = 1; i < sent.size(); ++i) {
            gaps.push_back(
                std::chrono::duration_cast<std::chrono::milliseconds>(sent[i].at - sent[i - 1].at));
        }
        return gaps;
    }

    std::size_t SendCount() const { return transport->SentSoFar().size(); }

    kelcore::threads::VirtualTime time;
    std::shared_ptr<ScriptedTransport> transport =
        std::make_shared<ScriptedTransport>(time.GetExecutor());
    Request request{.method = "POST",
                    .url = "http://127.0.0.1:8080/v2/assets/a/children?token=t",
                    .headers = {{"Content-Type", "application/json"}},
                    .body = std::string(R"({"name": "Cuts", "type": "folder"})")};
    RetryPolicy policy{.maxAttempts = 5};
};

TEST_F(SendWithRetryTest, RetriesA503AndAnswersTheFollowing200) {
    transport->Then(ScriptedTransport::Status(503));
    transport->Then(ScriptedTransport::Status(200));
    const auto answer = Send(policy);
    time.RunUntilIdle();
    EXPECT_EQ(SendCount(), 1u);
    EXPECT_FALSE(answer.IsReady());
    time.AdvanceBy(124ms);
    EXPECT_EQ(SendCount(), 1u);
    time.AdvanceBy(1ms);
    ASSERT_TRUE(answer.IsReady());
    ASSERT_EQ(ResultOf(answer), 0);
    EXPECT_EQ(answer.Get().status, 200);
    EXPECT_EQ(answer.Get().body, "answer 200");
    EXPECT_EQ(SendCount(), 2u);
    EXPECT_EQ(answer.GetExecutor(), time.GetExecutor());
}

TEST_F(SendWithRetryTest, WaitsExactlyTheFullJitterDelay) {
    transport->Then(ScriptedTransport::Status(503));
    transport->Then(ScriptedTransport::Status(502));
    transport->Then(ScriptedTransport::Status(200));
    const auto answer = Send(policy);
    time.AdvanceBy(10s);
    ASSERT_EQ(ResultOf(answer), 0);
    EXPECT_EQ(answer.Get().status, 200);
    // Half of 250 ms, then half of 500 ms.
    EXPECT_EQ(Gaps(), (std::vector<std::chrono::milliseconds>{125ms, 250ms}));
}

TEST_F(SendWithRetryTest, TheRealJitterKeepsEachWaitUnderItsCeiling) {
    transport->Then(ScriptedTransport::Status(503));
    transport->Then(ScriptedTransport::Status(502));
    transport->Then(ScriptedTransport::Status(200));
    const auto answer = SendWithRetry(transport, request, policy, time.GetExecutor());
    time.AdvanceBy(10s);
    ASSERT_EQ(ResultOf(answer), 0);
    EXPECT_EQ(answer.Get().status, 200);
    const auto gaps = Gaps();
    ASSERT_EQ(gaps.size(), 2u);
    EXPECT_LE(gaps[0], 250ms);
    EXPECT_LE(gaps[1], 500ms);
}

TEST_F(SendWithRetryTest, A429WithRetryAfterWaitsExactlyTwoSeconds) {
    transport->Then(ScriptedTransport::Status(429, "2"));
    transport->Then(ScriptedTransport::Status(200));
    const auto answer = Send(policy);
    time.RunUntilIdle();
    time.AdvanceBy(1999ms);
    EXPECT_EQ(SendCount(), 1u);
    EXPECT_FALSE(answer.IsReady());
    time.AdvanceBy(1ms);
    EXPECT_EQ(SendCount(), 2u);
    ASSERT_TRUE(answer.IsReady());
    EXPECT_EQ(answer.Get().status, 200);
    EXPECT_EQ(Gaps(), (std::vector<std::chrono::milliseconds>{2000ms}));
}

TEST_F(SendWithRetryTest, TheBudgetEndsTheLoopWithTheLastReply) {
    transport->Then(ScriptedTransport::Status(503));
    // Full ceilings: 1 s, then 2 s (which spends the budget exactly), then 4 s would pass it.
    const auto answer =
        Send({.maxAttempts = 100, .initialDelay = 1s, .maxDelay = 60s, .budget = 3s},
             CancellationToken(), 1.0);
    time.AdvanceBy(1h);
    ASSERT_TRUE(answer.IsReady());
    ASSERT_EQ(ResultOf(answer), 0);
    EXPECT_EQ(answer.Get().status, 503);
    EXPECT_EQ(Gaps(), (std::vector<std::chrono::milliseconds>{1000ms, 2000ms}));
}

TEST_F(SendWithRetryTest, MaxAttemptsEndsTheLoop) {
    transport->Then(ScriptedTransport::Status(500));
    const auto answer = Send({.maxAttempts = 3});
    time.AdvanceBy(1h);
    ASSERT_EQ(ResultOf(answer), 0);
    EXPECT_EQ(answer.Get().status, 500);
    EXPECT_EQ(SendCount(), 3u);
}

TEST_F(SendWithRetryTest, A404IsAnsweredWithoutRetrying) {
    transport->Then(ScriptedTransport::Status(404));
    transport->Then(ScriptedTransport::Status(200));
    const auto answer = Send(policy);
    time.RunUntilIdle();
    ASSERT_TRUE(answer.IsReady());
    EXPECT_EQ(answer.Get().status, 404);
    time.AdvanceBy(1h);
    EXPECT_EQ(SendCount(), 1u);
}

TEST_F(SendWithRetryTest, RetriesNetworkFailuresAndEndsWithTheLastFailuresCode) {
    transport->Then(vantrocommon::kResultNetworkFailure);
    transport->Then(vantrocommon::kResultTimedOut);
    const auto answer = Send({.maxAttempts = 3});
    time.AdvanceBy(1h);
    ASSERT_TRUE(answer.IsReady());
    EXPECT_EQ(ResultOf(answer), vantrocommon::kResultTimedOut);
    EXPECT_EQ(SendCount(), 3u);
}

TEST_F(SendWithRetryTest, ANetworkFailureThenASuccessAnswersTheReply) {
    transport->Then(vantrocommon::kResultNetworkFailure);
    transport->Then(ScriptedTransport::Status(201));
    const auto answer = Send(policy);
    time.AdvanceBy(1h);
    ASSERT_EQ(ResultOf(answer), 0);
    EXPECT_EQ(answer.Get().status, 201);
}

TEST_F(SendWithRetryTest, ATlsFailureIsNotRetried) {
    transport->Then(vantrocommon::kResultTlsFailure);
    const auto answer = Send(policy);
    time.AdvanceBy(1h);
    EXPECT_EQ(ResultOf(answer), vantrocommon::kResultTlsFailure);
    EXPECT_EQ(SendCount(), 1u);
}

TEST_F(SendWithRetryTest, EachTrySendsTheSameRequestAgain) {
    transport->Then(ScriptedTransport::Status(503));
    transport->Then(ScriptedTransport::Status(504));
    transport->Then(ScriptedTransport::Status(200));
    const auto answer = Send(policy);
    time.AdvanceBy(1h);
    ASSERT_EQ(answer.Get().status, 200);
    const auto sent = transport->SentSoFar();
    ASSERT_EQ(sent.size(), 3u);
    for (const auto& each : sent) {
        EXPECT_EQ(each.request.method, request.method);
        EXPECT_EQ(each.request.url, request.url);
        EXPECT_EQ(each.request.headers, request.headers);
        EXPECT_EQ(std::get<std::string>(each.request.body), std::get<std::string>(request.body));
    }
}

TEST_F(SendWithRetryTest, CancellingDuringAWaitEndsItAtOnce) {
    transport->Then(ScriptedTransport::Status(503, "30"));
    transport->Then(ScriptedTransport::Status(200));
    CancellationToken cancel;
    const auto answer = Send(policy, cancel);
    time.AdvanceBy(1s);
    EXPECT_EQ(SendCount(), 1u);
    EXPECT_FALSE(answer.IsReady());
    cancel.Cancel();
    EXPECT_FALSE(answer.IsReady());  // the failure is posted, not completed on this thread
    time.RunUntilIdle();
    ASSERT_TRUE(answer.IsReady());
    EXPECT_EQ(ResultOf(answer), vantrocommon::kResultCancelled);
    time.AdvanceBy(1h);
    EXPECT_EQ(SendCount(), 1u);
}

TEST_F(SendWithRetryTest, CancellingTheTryInFlightEndsTheLoop) {
    transport->Then(ScriptedTransport::Hang{});
    CancellationToken cancel;
    const auto answer = Send(policy, cancel);
    time.AdvanceBy(1h);
    EXPECT_FALSE(answer.IsReady());
    cancel.Cancel();
    time.RunUntilIdle();
    EXPECT_EQ(ResultOf(answer), vantrocommon::kResultCancelled);
    time.AdvanceBy(1h);
    EXPECT_EQ(SendCount(), 1u);
}

TEST_F(SendWithRetryTest, AnAlreadyCancelledTokenSendsNothing) {
    transport->Then(ScriptedTransport::Status(200));
    CancellationToken cancel;
    cancel.Cancel();
    const auto answer = Send(policy, cancel);
    EXPECT_FALSE(answer.IsReady());
    time.RunUntilIdle();
    EXPECT_EQ(ResultOf(answer), vantrocommon::kResultCancelled);
    EXPECT_EQ(SendCount(), 0u);
}

}  // namespace
