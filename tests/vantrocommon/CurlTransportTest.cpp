// CurlTransport against the real server on loopback: replies and their headers, connection
// reuse, parallel exchanges, streamed file bodies, injected faults, cancellation, where futures
// complete, and TLS with a throwaway authority.
#include <gtest/gtest.h>

#include <atomic>
#include <boost/json/parse.hpp>
#include <fstream>
#include <random>
#include <thread>

#include <kelcore/async/Future.h>
#include <kelcore/config/ErrorHandling.h>
#include <kelcore/threads/ThreadPoolExecutor.h>

#include <vantrocommon/ResultCodes.h>
#include <vantrocommon/RetryingSender.h>
#include <vantrocommon/http/CurlTransport.h>

#include "FutureWaiting.h"
#include "NodeHttp2Server.h"
#include "QueueExecutor.h"
#include "TestCertificates.h"
#include "support/ClosedPort.h"
#include "support/PartUploader.h"
#include "support/TemporaryDirectory.h"
#include "support/VantroServerFixture.h"

namespace vantrocommontest {
namespace {

using kelcore::async::Future;
using kelcore::async::ResultOf;
using testsupport::Bearer;
using vantrocommon::http::CancellationToken;
using vantrocommon::http::CurlTransport;
using vantrocommon::http::FileRange;
using vantrocommon::http::Reply;
using vantrocommon::http::Request;

constexpr std::uint64_t kMiB = 1024 * 1024;

/// A file of `size` pseudo-random bytes.
std::filesystem::path RandomFile(const std::filesystem::path& path, std::uint64_t size) {
    std::mt19937_64 random(size);
    std::ofstream out(path, std::ios::binary);
    std::vector<std::uint64_t> block(1 << 15);
    for (std::uint64_t written = 0; written < size;) {
        for (auto& word : block) {
            word = random();
        }
        const auto count = std::min<std::uint64_t>(size - written, block.size() * 8);
        out.write(reinterpret_cast<const char*>(block.data()), static_cast<std::streamsize>(count));
        written += count;
    }
    return path;
}

class CurlTransportTest : public testsupport::VantroServerFixture {
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

    Request Get(const std::string& path) {
        return {.url = Url(path), .headers = {{"Authorization", "Bearer " + token}}};
    }

    void Fault(const boost::json::object& fault) {
        const auto reply = client.PostJson(Url("/test/faults"), fault);
        ASSERT_EQ(reply.status, 201) << reply.body;
    }

    Future<Reply> Send(Request request, CancellationToken cancel = CancellationToken()) {
        return AwaitFuture(transport->Send(std::move(request), std::move(cancel)));
    }

    /// Sends a quick request and waits for it: once it is answered, every request sent
    /// before it has been handed to libcurl and is on its way.
    void WaitUntilEarlierRequestsAreUnderWay() {
        const auto probe = Send(Get("/v2/accounts"));
        ASSERT_EQ(ResultOf(probe), 0) << FailureText(probe);
    }

    std::shared_ptr<kelcore::threads::ThreadPoolExecutor> pool =
        std::make_shared<kelcore::threads::ThreadPoolExecutor>(2);
    std::shared_ptr<CurlTransport> transport;
    std::string token;
    testsupport::TemporaryDirectory files;
};

TEST_F(CurlTransportTest, AnswersStatusHeadersAndBodyWithUpperCaseHeaderNames) {
    const auto answer = Send(Get("/v2/me?fields=all"));
    ASSERT_EQ(ResultOf(answer), 0) << FailureText(answer);
    const Reply& reply = answer.Get();
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.httpVersion, "1.1");
    EXPECT_EQ(boost::json::parse(reply.body).at("username").as_string(), "ann");
    ASSERT_EQ(reply.headers.count("X-RATELIMIT-LIMIT"), 1u);
    EXPECT_EQ(reply.headers.at("X-RATELIMIT-LIMIT"), "100000");
    ASSERT_NE(reply.Header("x-ratelimit-window"), nullptr);
    EXPECT_EQ(*reply.Header("x-ratelimit-window"), "60000");
    ASSERT_NE(reply.Header("Content-Type"), nullptr);
    EXPECT_NE(reply.Header("Content-Type")->find("application/json"), std::string::npos);
    for (const auto& [name, value] : reply.headers) {
        for (const char c : name) {
            EXPECT_FALSE(c >= 'a' && c <= 'z') << name;
        }
    }
}

TEST_F(CurlTransportTest, AnErrorStatusIsAReplyNotAFailure) {
    const auto answer = Send(Get("/v2/nothing-here"));
    ASSERT_EQ(ResultOf(answer), 0) << FailureText(answer);
    EXPECT_EQ(answer.Get().status, 404);
    EXPECT_FALSE(answer.Get().IsSuccessStatus());
    EXPECT_EQ(boost::json::parse(answer.Get().body).at("error").as_string(), "not_found");
}

TEST_F(CurlTransportTest, SequentialRequestsReuseOneConnection) {
    for (int i = 0; i < 20; ++i) {
        const auto answer = Send(Get("/v2/me"));
        ASSERT_EQ(ResultOf(answer), 0) << FailureText(answer);
        ASSERT_EQ(answer.Get().status, 200);
    }
    EXPECT_EQ(transport->ConnectionsOpened(), 1);
}

TEST_F(CurlTransportTest, RunsRequestsInParallel) {
    constexpr int kRequests = 4;
    constexpr auto kDelay = std::chrono::milliseconds(1500);
    Fault({{"route", "/v2/me"}, {"count", kRequests}, {"delay_ms", kDelay.count()}});
    const auto started = std::chrono::steady_clock::now();
    std::vector<Future<Reply>> answers;
    for (int i = 0; i < kRequests; ++i) {
        answers.push_back(transport->Send(Get("/v2/me")));
    }
    for (const auto& answer : answers) {
        AwaitFuture(answer);
        ASSERT_EQ(ResultOf(answer), 0) << FailureText(answer);
        EXPECT_EQ(answer.Get().status, 200);
    }
    // One after another they would take kRequests delays; side by side, about one.
    EXPECT_LT(std::chrono::steady_clock::now() - started, kDelay * kRequests);
    EXPECT_EQ(transport->ConnectionsOpened(), kRequests);
}

TEST_F(CurlTransportTest, StreamsAFileRangeAsTheBodyAndReportsProgress) {
    constexpr std::uint64_t kOffset = 12345;
    constexpr std::uint64_t kLength = 20 * kMiB;
    const auto file = RandomFile(files.Path() / "source.bin", kOffset + kLength + 999);
    std::atomic<std::uint64_t> progress{0};
    std::atomic<bool> wentBackwards{false};
    Request request{.method = "PUT",
                    .url = Url("/test/sink"),
                    .body = FileRange{file.string(), kOffset, kLength},
                    .onBodyProgress = [&](std::uint64_t sent) {
                        if (sent < progress.load()) {
                            wentBackwards = true;
                        }
                        progress = sent;
                    }};
    const auto answer = Send(std::move(request));
    ASSERT_EQ(ResultOf(answer), 0) << FailureText(answer);
    EXPECT_EQ(answer.Get().status, 201) << answer.Get().body;
    EXPECT_EQ(boost::json::parse(answer.Get().body).at("bytes").as_int64(),
              static_cast<std::int64_t>(kLength));
    EXPECT_EQ(progress.load(), kLength);
    EXPECT_FALSE(wentBackwards.load());
}

TEST_F(CurlTransportTest, UploadsPartsFromFileRangesWithTheirChecksums) {
    const auto studio = AdminId({"account", "add", "--name", "Studio", "--owner", "ann",
                                 "--storage-limit", std::to_string(64 * kMiB)});
    const auto team =
        AdminId({"team", "add", "--account", studio, "--name", "Editors", "--member", "ann"});
    const auto project = AdminId({"project", "add", "--team", team, "--name", "Alpha"});
    const auto projectAnswer = Send(Get("/v2/projects/" + project));
    ASSERT_EQ(ResultOf(projectAnswer), 0) << FailureText(projectAnswer);
    const std::string root(
        boost::json::parse(projectAnswer.Get().body).at("root_asset_id").as_string());

    constexpr std::uint64_t kPartSize = 5 * kMiB;
    constexpr std::uint64_t kFileSize = kPartSize + 777;
    const auto file = RandomFile(files.Path() / "clip.mov", kFileSize);
    Request create = Get("/v2/assets/" + root + "/uploads");
    create.method = "POST";
    create.headers.emplace_back("Content-Type", "application/json");
    create.body = R"({"name": "clip.mov", "filesize": )" + std::to_string(kFileSize) +
                  R"(, "part_size": )" + std::to_string(kPartSize) + "}";
    const auto created = Send(create);
    ASSERT_EQ(ResultOf(created), 0) << FailureText(created);
    ASSERT_EQ(created.Get().status, 201) << created.Get().body;
    const std::string upload(boost::json::parse(created.Get().body).at("upload_id").as_string());

    std::vector<Future<Reply>> parts;
    for (std::uint64_t part = 0; part < 2; ++part) {
        const std::uint64_t offset = part * kPartSize;
        const std::uint64_t size = std::min(kPartSize, kFileSize - offset);
        Request put = Get("/v2/uploads/" + upload + "/parts/" + std::to_string(part + 1));
        put.method = "PUT";
        put.headers.emplace_back("X-Content-SHA256",
                                 testsupport::PartUploader::Sha256OfFile(file, offset, size));
        put.body = FileRange{file.string(), offset, size};
        parts.push_back(transport->Send(std::move(put)));
    }
    for (const auto& part : parts) {
        AwaitFuture(part);
        ASSERT_EQ(ResultOf(part), 0) << FailureText(part);
        EXPECT_EQ(part.Get().status, 200) << part.Get().body;
    }

    Request complete = Get("/v2/uploads/" + upload + "/complete");
    complete.method = "POST";
    complete.headers.emplace_back("Content-Type", "application/json");
    complete.body =
        R"({"sha256": ")" + testsupport::PartUploader::Sha256OfFile(file, 0, kFileSize) + R"("})";
    const auto completed = Send(complete);
    ASSERT_EQ(ResultOf(completed), 0) << FailureText(completed);
    EXPECT_EQ(completed.Get().status, 201) << completed.Get().body;
    EXPECT_EQ(boost::json::parse(completed.Get().body).at("filesize").as_int64(),
              static_cast<std::int64_t>(kFileSize));
}

TEST_F(CurlTransportTest, AMissingBodyFileFailsWithFileError) {
    const auto answer = Send({.method = "PUT",
                              .url = Url("/test/sink"),
                              .body = FileRange{(files.Path() / "absent.bin").string(), 0, 10}});
    EXPECT_EQ(ResultOf(answer), vantrocommon::kResultFileError);
    EXPECT_NE(FailureText(answer).find("PUT " + Url("/test/sink")), std::string::npos)
        << FailureText(answer);
}

TEST_F(CurlTransportTest, ABodyFileShorterThanItsRangeFailsWithFileError) {
    const auto file = RandomFile(files.Path() / "short.bin", 1000);
    const auto answer = Send(
        {.method = "PUT", .url = Url("/test/sink"), .body = FileRange{file.string(), 500, 501}});
    EXPECT_EQ(ResultOf(answer), vantrocommon::kResultFileError);
}

TEST_F(CurlTransportTest, ADroppedConnectionIsANetworkFailure) {
    Fault({{"route", "/v2/me"}, {"drop", true}});
    const auto answer = Send(Get("/v2/me?secret=do-not-log"));
    EXPECT_EQ(ResultOf(answer), vantrocommon::kResultNetworkFailure);
    const auto text = FailureText(answer);
    EXPECT_NE(text.find("GET " + Url("/v2/me")), std::string::npos) << text;
    EXPECT_EQ(text.find("do-not-log"), std::string::npos) << text;
    EXPECT_EQ(text.find(token), std::string::npos) << text;
}

TEST_F(CurlTransportTest, AnAnswerSlowerThanTheTimeoutIsTimedOut) {
    Fault({{"route", "/v2/me"}, {"delay_ms", 30000}});
    Request request = Get("/v2/me");
    request.timeout = std::chrono::milliseconds(300);
    const auto started = std::chrono::steady_clock::now();
    const auto answer = Send(std::move(request));
    EXPECT_EQ(ResultOf(answer), vantrocommon::kResultTimedOut) << FailureText(answer);
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(20));
}

TEST_F(CurlTransportTest, AnAnswerThatStallsIsTimedOut) {
    Fault({{"route", "/v2/me"}, {"delay_ms", 30000}});
    Request request = Get("/v2/me");
    request.stallTimeout = std::chrono::milliseconds(1000);
    const auto started = std::chrono::steady_clock::now();
    const auto answer = Send(std::move(request));
    EXPECT_EQ(ResultOf(answer), vantrocommon::kResultTimedOut) << FailureText(answer);
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(20));
}

TEST_F(CurlTransportTest, AMalformedUrlIsAnInvalidArgument) {
    for (const char* url : {"127.0.0.1 /v2/me", "ftp://127.0.0.1/file", "http://"}) {
        const auto answer = Send({.url = url});
        EXPECT_EQ(ResultOf(answer), vantrocommon::kResultInvalidArgument)
            << url << ": " << FailureText(answer);
    }
}

TEST_F(CurlTransportTest, CancellingARequestUnderWayFailsItAtOnce) {
    Fault({{"route", "/v2/me"}, {"delay_ms", 60000}});
    CancellationToken cancel;
    const auto started = std::chrono::steady_clock::now();
    const auto slow = transport->Send(Get("/v2/me"), cancel);
    WaitUntilEarlierRequestsAreUnderWay();
    EXPECT_FALSE(slow.IsReady());
    cancel.Cancel();
    AwaitFuture(slow);
    EXPECT_EQ(ResultOf(slow), vantrocommon::kResultCancelled) << FailureText(slow);
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(30));
}

TEST_F(CurlTransportTest, ARequestWithACancelledTokenIsNeverSent) {
    CancellationToken cancel;
    cancel.Cancel();
    const auto answer = Send(Get("/v2/me"), cancel);
    EXPECT_EQ(ResultOf(answer), vantrocommon::kResultCancelled);
    EXPECT_EQ(transport->ConnectionsOpened(), 0);
}

TEST_F(CurlTransportTest, ARefusedConnectionIsANetworkFailure) {
    const testsupport::ClosedPort closed;
    const auto answer =
        Send({.url = "http://127.0.0.1:" + std::to_string(closed.Port()) + "/v2/me"});
    EXPECT_EQ(ResultOf(answer), vantrocommon::kResultNetworkFailure) << FailureText(answer);
}

TEST_F(CurlTransportTest, DestroyingTheTransportFailsWhatIsUnderWayAsCancelled) {
    Fault({{"route", "/v2/me"}, {"delay_ms", 60000}});
    const auto started = std::chrono::steady_clock::now();
    const auto slow = transport->Send(Get("/v2/me"));
    WaitUntilEarlierRequestsAreUnderWay();
    transport.reset();
    AwaitFuture(slow);
    EXPECT_EQ(ResultOf(slow), vantrocommon::kResultCancelled) << FailureText(slow);
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(30));
}

TEST_F(CurlTransportTest, RetriesInjectedUnavailableAnswersUntilTheRealOne) {
    Fault({{"route", "/v2/me"}, {"count", 2}, {"status", 503}});
    const auto answer = AwaitFuture(vantrocommon::SendWithRetry(
        transport, Get("/v2/me"), {.initialDelay = std::chrono::milliseconds(20)}, pool));
    ASSERT_EQ(ResultOf(answer), 0) << FailureText(answer);
    EXPECT_EQ(answer.Get().status, 200);
    EXPECT_EQ(boost::json::parse(answer.Get().body).at("username").as_string(), "ann");
    // Both injected answers were used up by the retries.
    const auto again = Send(Get("/v2/me"));
    EXPECT_EQ(again.Get().status, 200);
}

TEST(CurlTransportCompletion, CompletesOnlyThroughTheExecutorAndNeverInsideSend) {
    testsupport::VantroServerProcess server;
    server.Start();
    auto executor = std::make_shared<QueueExecutor>();
    auto transport = CurlTransport::Create({.executor = executor});

    std::atomic<bool> sendReturned{false};
    std::atomic<bool> ranBeforeSendReturned{false};
    std::thread::id ranOn;
    const auto answer = transport->Send({.url = server.Url("/no-such-page")});
    const auto continuation = answer.Then([&](const Future<Reply>&) {
        ranBeforeSendReturned = !sendReturned.load();
        ranOn = std::this_thread::get_id();
    });
    sendReturned = true;

    // The exchange ends on the I/O thread, which only posts the completion.
    auto posted = executor->Take(kCompletionLimit);
    ASSERT_TRUE(posted.task) << "no completion was posted";
    EXPECT_NE(posted.poster, std::this_thread::get_id());
    EXPECT_FALSE(answer.IsReady());
    EXPECT_FALSE(continuation.IsReady());
    posted.task();
    ASSERT_TRUE(answer.IsReady());
    EXPECT_EQ(ResultOf(answer), 0) << FailureText(answer);
    EXPECT_EQ(answer.Get().status, 404);
    EXPECT_FALSE(ranBeforeSendReturned.load());
    EXPECT_EQ(ranOn, std::this_thread::get_id());
    EXPECT_EQ(answer.GetExecutor(), executor);
}

TEST(CurlTransportCompletion, ACompletionRunsOnAWorkerOfTheExecutor) {
    testsupport::VantroServerProcess server;
    server.Start();
    auto pool = std::make_shared<kelcore::threads::ThreadPoolExecutor>(2);
    auto transport = CurlTransport::Create({.executor = pool});
    std::atomic<bool> onWorker{false};
    const auto done =
        transport->Send({.url = server.Url("/no-such-page")}).Then(pool, [&](const Future<Reply>&) {
            onWorker = pool->RunsTasksOnCurrentThread();
        });
    AwaitFuture(done);
    EXPECT_TRUE(onWorker.load());
}

class CurlTransportTlsTest : public testsupport::VantroServerFixture {
protected:
    void SetUp() override {
        certificates = TestCertificates::Make(files.Path());
        StartServer({"--tls-cert", certificates.serverCertificate.string(), "--tls-key",
                     certificates.serverKey.string()});
        ASSERT_EQ(Url("/").rfind("https://", 0), 0u);
    }

    testsupport::TemporaryDirectory files;
    TestCertificates certificates;
};

TEST_F(CurlTransportTlsTest, RefusesACertificateNoTrustedAuthoritySigned) {
    auto transport = CurlTransport::Create({});
    const auto answer = AwaitFuture(transport->Send({.url = Url("/v2/nothing")}));
    EXPECT_EQ(ResultOf(answer), vantrocommon::kResultTlsFailure) << FailureText(answer);
}

TEST_F(CurlTransportTlsTest, TrustsTheExtraAuthority) {
    auto transport = CurlTransport::Create({.caFile = certificates.authorityCertificate.string()});
    const auto answer = AwaitFuture(transport->Send({.url = Url("/v2/nothing")}));
    ASSERT_EQ(ResultOf(answer), 0) << FailureText(answer);
    EXPECT_EQ(answer.Get().status, 404);
}

TEST(CurlTransportHttp2, SpeaksHttp2WhereTheServerOffersItAndMultiplexes) {
    if (!NodeHttp2Server::NodeAvailable()) {
        GTEST_SKIP() << "node is not installed; the HTTP/2 server of this test needs it";
    }
    testsupport::TemporaryDirectory files;
    const auto certificates = TestCertificates::Make(files.Path());
    NodeHttp2Server server;
    ASSERT_TRUE(server.Start(certificates.serverCertificate, certificates.serverKey))
        << server.Problem();
    auto pool = std::make_shared<kelcore::threads::ThreadPoolExecutor>(2);
    auto transport = CurlTransport::Create(
        {.caFile = certificates.authorityCertificate.string(), .executor = pool});

    std::vector<Future<Reply>> answers;
    for (int i = 0; i < 6; ++i) {
        answers.push_back(transport->Send({.url = server.Url("/item/" + std::to_string(i))}));
    }
    for (const auto& answer : answers) {
        AwaitFuture(answer);
        ASSERT_EQ(ResultOf(answer), 0) << FailureText(answer);
        EXPECT_EQ(answer.Get().status, 200);
        EXPECT_EQ(answer.Get().httpVersion, "2");
        EXPECT_EQ(answer.Get().body, "h2");
        // HTTP/2 carries names in lower case; the reply holds them upper-cased all the same.
        ASSERT_EQ(answer.Get().headers.count("X-PROTOCOL-SEEN"), 1u);
        EXPECT_EQ(answer.Get().headers.at("X-PROTOCOL-SEEN"), "yes");
        ASSERT_NE(answer.Get().Header("x-repeated"), nullptr);
        EXPECT_EQ(*answer.Get().Header("x-repeated"), "first, second");
    }
    EXPECT_EQ(transport->ConnectionsOpened(), 1);
}

}  // namespace
}  // namespace vantrocommontest
