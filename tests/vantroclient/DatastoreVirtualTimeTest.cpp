// The datastore's timing and bookkeeping under virtual time, against a fake transport: pacing,
// 429s and the rate-limit budget, reconnection backoff, events that arrive during a fetch,
// malformed events, items kept per id, and what its destruction cancels. Deterministic; no
// network and no wall-clock waiting.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include <kelcore/async/Future.h>
#include <kelcore/threads/VirtualTime.h>
#include <vantroclient/ServiceDatastore.h>
#include <vantroclient/VantroAssetList.h>
#include <vantrocommon/ResultCodes.h>

#include "FakeTransport.h"
#include "MessageRecorder.h"

namespace vantroclienttest {
namespace {

using kelcore::async::ResultOf;
using kelcore::utility::Guid;
using std::chrono::milliseconds;
using vantrocommon::http::Reply;
using vantrocommon::http::Request;

const Guid kFolder(0x1111, 0x2222);
const std::string kFolderText = kFolder.AsStdString();

/// A page of `count` folders named "<prefix>N" with ids from `firstId`.
Reply Page(int count, long page, long totalPages, int firstId = 0,
           const std::string& prefix = "F") {
    std::string body = "[";
    for (int i = 0; i < count; ++i) {
        const Guid id(0xABC, static_cast<std::uint64_t>(firstId + i + 1));
        body += (i ? "," : "") + std::string("{\"id\":\"") + id.AsStdString() +
                "\",\"type\":\"folder\",\"name\":\"" + prefix + std::to_string(firstId + i) + "\"}";
    }
    body += "]";
    Reply reply;
    reply.status = 200;
    reply.body = body;
    reply.headers["PAGE-NUMBER"] = std::to_string(page);
    reply.headers["TOTAL-PAGES"] = std::to_string(totalPages);
    return reply;
}

Reply WithLimits(Reply reply, int limit, int window) {
    reply.headers["X-RATELIMIT-LIMIT"] = std::to_string(limit);
    reply.headers["X-RATELIMIT-WINDOW"] = std::to_string(window);
    return reply;
}

Reply TooMany(std::string retryAfter = {}) {
    Reply reply;
    reply.status = 429;
    reply.body = R"({"error":"rate_limited"})";
    if (!retryAfter.empty()) {
        reply.headers["RETRY-AFTER"] = retryAfter;
    }
    return reply;
}

long PageOf(const Request& request) {
    const auto at = request.url.find("page=");
    return at == std::string::npos ? 1 : std::stol(request.url.substr(at + 5));
}

bool IsStream(const Request& request) {
    return request.url.find("/v2/events") != std::string::npos;
}

class DatastoreVirtualTimeTest : public ::testing::Test {
protected:
    void Open(vantro::ServiceDatastoreOptions options = {}) {
        options.executor = time.GetExecutor();
        options.transport = transport;
        options.apiBase = "http://service.test";
        options.accessToken = [this](bool force) {
            forcedRefreshes += force ? 1 : 0;
            return kelcore::async::MakeReadyFuture(std::string("token"));
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

    /// Milliseconds of virtual time from the test's start to each request to `part`.
    std::vector<long> TimesOf(const std::string& part) const {
        std::vector<long> times;
        for (const auto& exchange : transport->SentTo(part)) {
            times.push_back(static_cast<long>(
                std::chrono::duration_cast<milliseconds>(exchange.at - start).count()));
        }
        return times;
    }

    kelcore::threads::VirtualTime time;
    const kelcore::threads::Clock::TimePoint start = time.Now();
    std::shared_ptr<FakeTransport> transport = std::make_shared<FakeTransport>(time.GetExecutor());
    std::shared_ptr<vantro::VantroDatastore> datastore;
    std::unique_ptr<MessageRecorder> messages;
    int forcedRefreshes = 0;
    int logouts = 0;
};

TEST_F(DatastoreVirtualTimeTest, PacingNeverPutsMoreThanTheAdvertisedLimitInAnyWindow) {
    transport->SetResponder([](const Request& request) -> FakeTransport::Outcome {
        if (IsStream(request)) {
            return FakeTransport::Pending{};
        }
        const long page = PageOf(request);
        return WithLimits(Page(10, page, 12, static_cast<int>(page - 1) * 10), 3, 1000);
    });
    Open({.pageSize = 10});
    const auto list = datastore->GetAssetList(kFolder);
    time.AdvanceBy(std::chrono::seconds(30));

    ASSERT_EQ(ResultOf(list), 0);
    EXPECT_EQ(list.Get()->GetCount(), 120u);
    const auto times = TimesOf("");  // the stream counts at the service too
    ASSERT_EQ(times.size(), 13u);
    for (std::size_t i = 0; i < times.size(); ++i) {
        const auto inWindow = std::count_if(times.begin(), times.end(), [&](long t) {
            return t >= times[i] && t < times[i] + 1000;
        });
        EXPECT_LE(inWindow, 3) << "window from " << times[i] << " ms";
    }
    // Nothing is held back before an answer has told the limit; after that, it is kept.
    EXPECT_EQ(times[0], 0);
    EXPECT_EQ(times[1], 0);
    EXPECT_GE(times.back(), 3000);
}

TEST_F(DatastoreVirtualTimeTest, LimitHeadersThatAreNotNumbersPaceNothing) {
    transport->SetResponder([](const Request& request) -> FakeTransport::Outcome {
        if (IsStream(request)) {
            return FakeTransport::Pending{};
        }
        const long page = PageOf(request);
        auto reply = Page(10, page, 6, static_cast<int>(page - 1) * 10);
        reply.headers["X-RATELIMIT-LIMIT"] = "many";
        reply.headers["X-RATELIMIT-WINDOW"] = "-5";
        return reply;
    });
    Open({.pageSize = 10});
    const auto list = datastore->GetAssetList(kFolder);
    time.RunUntilIdle();
    ASSERT_EQ(ResultOf(list), 0);
    EXPECT_EQ(list.Get()->GetCount(), 60u);
    EXPECT_EQ(TimesOf("/children"), (std::vector<long>{0, 0, 0, 0, 0, 0}));
}

TEST_F(DatastoreVirtualTimeTest, A429WithRetryAfterAsksAgainAfterThatLong) {
    int pages = 0;
    transport->SetResponder([&](const Request& request) -> FakeTransport::Outcome {
        if (IsStream(request)) {
            return FakeTransport::Pending{};
        }
        return ++pages == 1 ? TooMany("3") : Page(2, 1, 1);
    });
    Open();
    const auto list = datastore->GetAssetList(kFolder);
    time.AdvanceBy(milliseconds(2999));
    EXPECT_FALSE(list.IsReady());
    EXPECT_EQ(TimesOf("/children"), (std::vector<long>{0}));
    time.AdvanceBy(milliseconds(1));
    time.RunUntilIdle();
    ASSERT_EQ(ResultOf(list), 0);
    EXPECT_EQ(list.Get()->GetCount(), 2u);
    EXPECT_EQ(TimesOf("/children"), (std::vector<long>{0, 3000}));
}

TEST_F(DatastoreVirtualTimeTest, A429WithoutRetryAfterWaitsAWholeWindow) {
    int pages = 0;
    transport->SetResponder([&](const Request& request) -> FakeTransport::Outcome {
        if (IsStream(request)) {
            return FakeTransport::Pending{};
        }
        return ++pages == 1 ? WithLimits(TooMany(), 10, 1500) : Page(2, 1, 1);
    });
    Open();
    const auto list = datastore->GetAssetList(kFolder);
    time.AdvanceBy(std::chrono::seconds(10));
    ASSERT_EQ(ResultOf(list), 0);
    EXPECT_EQ(TimesOf("/children"), (std::vector<long>{0, 1500}));
}

TEST_F(DatastoreVirtualTimeTest, ARateLimitBudgetSpentFailsTheListWithRetriesExhausted) {
    transport->SetResponder([](const Request& request) -> FakeTransport::Outcome {
        if (IsStream(request)) {
            return FakeTransport::Pending{};
        }
        return TooMany("2");
    });
    Open({.rateLimitBudget = milliseconds(5000)});
    const auto list = datastore->GetAssetList(kFolder);
    time.AdvanceBy(std::chrono::seconds(60));
    ASSERT_TRUE(list.IsReady());
    EXPECT_EQ(ResultOf(list), vantrocommon::kResultRetriesExhausted);
    // Waits of 2 s and 2 s fit the budget of 5 s; a third would not.
    EXPECT_EQ(TimesOf("/children"), (std::vector<long>{0, 2000, 4000}));
}

TEST_F(DatastoreVirtualTimeTest, ReconnectionBacksOffDoublingAndStartsOverOnceAStreamOpened) {
    bool refuse = true;
    transport->SetResponder([&](const Request& request) -> FakeTransport::Outcome {
        if (IsStream(request)) {
            if (refuse) {
                return vantrocommon::kResultNetworkFailure;
            }
            return FakeTransport::Pending{};
        }
        return Page(1, 1, 1);
    });
    Open({.reconnectDelay = milliseconds(250), .maxReconnectDelay = milliseconds(4000)});
    const auto list = datastore->GetAssetList(kFolder);  // the first request opens the stream
    time.AdvanceBy(milliseconds(15'749));
    ASSERT_EQ(ResultOf(list), 0);
    // 250, 500, 1000, 2000, then the ceiling of 4000 between tries.
    EXPECT_EQ(TimesOf("/v2/events"), (std::vector<long>{0, 250, 750, 1750, 3750, 7750, 11750}));
    refuse = false;
    time.AdvanceBy(milliseconds(1));
    const auto streams = transport->SentTo("/v2/events");
    ASSERT_EQ(TimesOf("/v2/events"),
              (std::vector<long>{0, 250, 750, 1750, 3750, 7750, 11750, 15750}));

    // The last one opens, then ends: the next try comes after the first delay again.
    FakeTransport::Stream(streams.back(), ": connected\n\n");
    time.RunUntilIdle();
    Reply ended;
    ended.status = 200;
    transport->Answer(streams.back(), ended);
    time.AdvanceBy(milliseconds(249));
    EXPECT_EQ(TimesOf("/v2/events").size(), 8u);
    time.AdvanceBy(milliseconds(1));
    EXPECT_EQ(TimesOf("/v2/events").back(), 16000);
    // That one fails without opening: the delay doubles again from the start.
    transport->Fail(transport->SentTo("/v2/events").back(), vantrocommon::kResultNetworkFailure);
    time.AdvanceBy(milliseconds(499));
    EXPECT_EQ(TimesOf("/v2/events").back(), 16000);
    time.AdvanceBy(milliseconds(1));
    EXPECT_EQ(TimesOf("/v2/events").back(), 16500);
}

TEST_F(DatastoreVirtualTimeTest, ANetworkFailureOrAServerErrorIsTriedAgain) {
    int pages = 0;
    transport->SetResponder([&](const Request& request) -> FakeTransport::Outcome {
        if (IsStream(request)) {
            return FakeTransport::Pending{};
        }
        ++pages;
        if (pages == 1) {
            return vantrocommon::kResultNetworkFailure;
        }
        if (pages == 2) {
            Reply unavailable;
            unavailable.status = 503;
            return unavailable;
        }
        return Page(2, 1, 1);
    });
    Open();
    const auto list = datastore->GetAssetList(kFolder);
    time.AdvanceBy(std::chrono::seconds(5));
    ASSERT_EQ(ResultOf(list), 0);
    EXPECT_EQ(list.Get()->GetCount(), 2u);
    EXPECT_EQ(TimesOf("/children").size(), 3u);
}

TEST_F(DatastoreVirtualTimeTest, AnErrorThatIsNotPassingFailsTheListAtOnce) {
    transport->SetResponder([](const Request& request) -> FakeTransport::Outcome {
        if (IsStream(request)) {
            return FakeTransport::Pending{};
        }
        Reply missing;
        missing.status = 404;
        return missing;
    });
    Open();
    const auto list = datastore->GetAssetList(kFolder);
    time.RunUntilIdle();
    EXPECT_EQ(ResultOf(list), vantrocommon::kResultHttpError);
    EXPECT_EQ(TimesOf("/children").size(), 1u);
}

}  // namespace
}  // namespace vantroclienttest
