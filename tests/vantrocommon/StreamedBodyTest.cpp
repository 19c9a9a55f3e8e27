// A response body handed over as it arrives (Request::onBodyData), tried on the server's event
// stream: the bytes come while the exchange runs, the reply completes when the server ends the
// stream, an error answer keeps its body, and a cancellation ends a stream that never would.
#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>
#include <string>

#include <kelcore/async/Future.h>
#include <kelcore/threads/ThreadPoolExecutor.h>

#include <vantrocommon/ResultCodes.h>
#include <vantrocommon/http/CurlTransport.h>

#include "FutureWaiting.h"
#include "support/VantroServerFixture.h"

namespace vantrocommontest {
namespace {

using kelcore::async::ResultOf;
using vantrocommon::http::CancellationToken;
using vantrocommon::http::CurlTransport;
using vantrocommon::http::Request;

/// Collects streamed bytes from the I/O thread and lets the test wait for a piece of text.
class Collected {
public:
    void Append(std::string_view chunk) {
        std::lock_guard lock(mutex);
        text.append(chunk);
        ++chunks;
        grown.notify_all();
    }
    bool WaitForText(const std::string& wanted) {
        std::unique_lock lock(mutex);
        return grown.wait_for(lock, std::chrono::seconds(20),
                              [&] { return text.find(wanted) != std::string::npos; });
    }
    std::string Text() {
        std::lock_guard lock(mutex);
        return text;
    }
    int Chunks() {
        std::lock_guard lock(mutex);
        return chunks;
    }

private:
    std::mutex mutex;
    std::condition_variable grown;
    std::string text;
    int chunks = 0;
};

class StreamedBodyTest : public testsupport::VantroServerFixture {
protected:
    void SetUp() override {
        AddUser("ann");
        StartServer({"--enable-test-hooks"});
        token = SignIn("ann").access;
        transport = CurlTransport::Create({.executor = pool});
    }

    void TearDown() override {
        transport.reset();
        VantroServerFixture::TearDown();
    }

    Request Events(const std::string& bearer) {
        return {.url = Url("/v2/events"),
                .headers = {{"Authorization", "Bearer " + bearer}},
                .stallTimeout = std::chrono::milliseconds(0),
                .onBodyData = [this](std::string_view chunk) { collected.Append(chunk); }};
    }

    std::shared_ptr<kelcore::threads::ThreadPoolExecutor> pool =
        std::make_shared<kelcore::threads::ThreadPoolExecutor>(2);
    std::shared_ptr<CurlTransport> transport;
    std::string token;
    Collected collected;
};

TEST_F(StreamedBodyTest, HandsOverTheBodyWhileTheExchangeRunsAndCompletesWhenItEnds) {
    const auto stream = transport->Send(Events(token));
    ASSERT_TRUE(collected.WaitForText(": connected"));
    EXPECT_FALSE(stream.IsReady());

    Admin({"account", "add", "--name", "Later", "--owner", "ann", "--storage-limit", "10"});
    ASSERT_TRUE(collected.WaitForText("event: account-list"));
    EXPECT_FALSE(stream.IsReady());
    EXPECT_GE(collected.Chunks(), 2);

    const auto closed = client.Delete(Url("/test/events"));
    ASSERT_EQ(closed.status, 200) << closed.body;
    AwaitFuture(stream);
    ASSERT_EQ(ResultOf(stream), 0) << FailureText(stream);
    EXPECT_EQ(stream.Get().status, 200);
    EXPECT_TRUE(stream.Get().body.empty());
    ASSERT_NE(stream.Get().Header("Content-Type"), nullptr);
    EXPECT_EQ(*stream.Get().Header("Content-Type"), "text/event-stream");
}

TEST_F(StreamedBodyTest, AnErrorAnswerKeepsItsBodyInTheReply) {
    const auto refused = AwaitFuture(transport->Send(Events("not-a-token")));
    ASSERT_EQ(ResultOf(refused), 0) << FailureText(refused);
    EXPECT_EQ(refused.Get().status, 401);
    EXPECT_NE(refused.Get().body.find("invalid_token"), std::string::npos);
    EXPECT_EQ(collected.Chunks(), 0);
}

TEST_F(StreamedBodyTest, CancellingAStreamEndsItAsCancelled) {
    CancellationToken cancel;
    const auto stream = transport->Send(Events(token), cancel);
    ASSERT_TRUE(collected.WaitForText(": connected"));
    cancel.Cancel();
    AwaitFuture(stream);
    EXPECT_EQ(ResultOf(stream), vantrocommon::kResultCancelled) << FailureText(stream);
}

TEST_F(StreamedBodyTest, WithoutTheCallbackTheBodyIsKeptAsBefore) {
    Request request{.url = Url("/v2/me"), .headers = {{"Authorization", "Bearer " + token}}};
    const auto answer = AwaitFuture(transport->Send(std::move(request)));
    ASSERT_EQ(ResultOf(answer), 0) << FailureText(answer);
    EXPECT_NE(answer.Get().body.find("\"username\":\"ann\""), std::string::npos);
}

}  // namespace
}  // namespace vantrocommontest
