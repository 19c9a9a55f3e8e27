// The page queue's pace, order and limits, under virtual time: the queue pumps on the manual
// executor, reads the manual clock, and its requests are answered by the test (at once, later,
// or never), so every case runs in milliseconds and the same way each time.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <kelcore/config/ErrorHandling.h>
#include <kelcore/config/ResultCode.h>
#include <kelcore/threads/Executors.h>
#include <kelcore/threads/VirtualTime.h>
#include <vantrokelui/model/connector/FetchChildrenQueue.h>
#include <vantrokelui/model/connector/FetchFolderChildrenQueue.h>
#include <vantrokelui/model/connector/FetchWorkspaceChildrenQueue.h>
#include <vantrokelui/nodes/VantroFolder.h>

#include "ConnectorTestSupport.h"
#include "ScriptedFolderQueue.h"
#include "support/MainThreadFixture.h"

namespace {

using namespace std::chrono_literals;
using connectortest::ChildAssetsResponse;
using connectortest::MakeAssets;
using connectortest::PagingHeaders;
using connectortest::ScriptedFolderQueue;
using vantrocommon::http::HeaderMap;
using vantrokelui::VantroNode;
namespace integration = vantrokelui::model::VantroConnectorIntegration;

/// What one listing handed to its callback.
struct Delivered {
    int calls = 0;
    std::size_t items = 0;
};

class FetchChildrenQueueTest : public testsupport::MainThreadFixture {
protected:
    std::shared_ptr<VantroNode> NewFolder() {
        auto folder = std::make_shared<vantrokelui::VantroFolder>(std::weak_ptr<VantroNode>());
        folder->SetID(kelcore::utility::Guid::CreateUnique());
        return folder;
    }

    /// A callback that counts into `delivered`.
    static ScriptedFolderQueue::ChildrenCallback Count(
        const std::shared_ptr<Delivered>& delivered) {
        return [delivered](const std::vector<vantrosdk::Asset>& list) {
            ++delivered->calls;
            delivered->items += list.size();
        };
    }

    /// Answers every request at once with one page of `pages`, the page asked for, and `extra`
    /// headers.
    void AnswerPagesOf(int pages, HeaderMap extra = {}) {
        queue->SetAnswer([pages, extra](const ScriptedFolderQueue::Sent& sent) {
            HeaderMap header = PagingHeaders(sent.page, pages);
            header.insert(extra.begin(), extra.end());
            return ChildAssetsResponse(200, header, MakeAssets("Clip", 2));
        });
    }

    /// Seconds since the test began, on the virtual clock.
    std::chrono::steady_clock::duration SinceStart(kelcore::threads::Clock::TimePoint when) const {
        return when - start;
    }

    kelcore::threads::VirtualTime time;
    const kelcore::threads::Clock::TimePoint start = time.Now();
    std::shared_ptr<ScriptedFolderQueue> queue =
        std::make_shared<ScriptedFolderQueue>(time.GetExecutor());
};

HeaderMap Limits(const std::string& limit, const std::string& window) {
    return {{"X-RATELIMIT-LIMIT", limit}, {"X-RATELIMIT-WINDOW", window}};
}

TEST_F(FetchChildrenQueueTest, AFreshQueueAllowsTwoHundredRequestsPerSixtySeconds) {
    const auto counts = queue->GetCounts();
    EXPECT_EQ(counts.maxRequests, 200);
    EXPECT_EQ(counts.windowSeconds, 60);
}

TEST_F(FetchChildrenQueueTest, SendsTwoHundredInOneRunAndTheNextWhenTheFirstLeavesTheWindow) {
    AnswerPagesOf(1);
    std::vector<std::shared_ptr<VantroNode>> folders;
    auto delivered = std::make_shared<Delivered>();
    for (int index = 0; index < 201; ++index) {
        folders.push_back(NewFolder());
        queue->EnqueueBack(folders.back(), 1, Count(delivered));
    }

    time.RunUntilIdle();
    EXPECT_EQ(queue->SentCount(), 200u);
    EXPECT_EQ(delivered->calls, 200);
    EXPECT_EQ(queue->GetCounts().pending, 1u);

    // The first 200 count until they are older than 60 s: not yet at 60 s exactly.
    time.AdvanceBy(60s);
    EXPECT_EQ(queue->SentCount(), 200u);

    time.AdvanceBy(5s);
    ASSERT_EQ(queue->SentCount(), 201u);
    const auto last = queue->SentRequests().back();
    EXPECT_EQ(last.node.lock(), folders.back());
    EXPECT_LE(SinceStart(last.time), 60s + 5s);
    EXPECT_GT(SinceStart(last.time), 60s);
}

TEST_F(FetchChildrenQueueTest, AnIdleQueueHasNoTimerAndTheFirstEnqueueStartsItAtOnce) {
    EXPECT_EQ(time.PendingCount(), 0u);

    AnswerPagesOf(1);
    const auto folder = NewFolder();
    queue->EnqueueBack(folder, 1, Count(std::make_shared<Delivered>()));
    EXPECT_EQ(time.PendingCount(), 1u);
    EXPECT_EQ(time.GetExecutor()->TimeToNextTask(), std::chrono::steady_clock::duration::zero());
    time.RunUntilIdle();
    EXPECT_EQ(queue->SentCount(), 1u);

    // Busy while the answered request counts: one tick at a time.
    EXPECT_EQ(time.PendingCount(), 1u);
    time.AdvanceBy(65s);
    const auto counts = queue->GetCounts();
    EXPECT_EQ(counts.pending + counts.inFlight + counts.recent, 0u);
    EXPECT_FALSE(counts.scheduled);
    EXPECT_EQ(time.PendingCount(), 0u) << "an idle queue keeps no timer";

    queue->EnqueueBack(folder, 1, Count(std::make_shared<Delivered>()));
    EXPECT_EQ(time.GetExecutor()->TimeToNextTask(), std::chrono::steady_clock::duration::zero());
    time.RunUntilIdle();
    EXPECT_EQ(queue->SentCount(), 2u);
    EXPECT_EQ(SinceStart(queue->SentRequests().back().time), 65s);
}

TEST_F(FetchChildrenQueueTest, PageTwoOfABusyQueueLeavesAtTheNextTick) {
    AnswerPagesOf(2);
    const auto folder = NewFolder();
    auto delivered = std::make_shared<Delivered>();
    queue->EnqueueBack(folder, 1, Count(delivered));

    time.RunUntilIdle();
    EXPECT_EQ(delivered->calls, 1);
    EXPECT_EQ(queue->SentCount(), 1u) << "the request for page 2 asked for no delay, in vain";
    time.AdvanceBy(4999ms);
    EXPECT_EQ(queue->SentCount(), 1u);
    time.AdvanceBy(1ms);
    ASSERT_EQ(queue->SentCount(), 2u);
    EXPECT_EQ(queue->SentRequests()[1].page, 2);
    EXPECT_EQ(SinceStart(queue->SentRequests()[1].time), 5s);
    EXPECT_EQ(delivered->calls, 2);
}

TEST_F(FetchChildrenQueueTest, FollowsThePageNumberOfTheResponseNotOfTheRecord) {
    queue->SetAnswer([](const ScriptedFolderQueue::Sent& sent) {
        // The service says it answered page 5 of 7 when asked for page 1.
        return ChildAssetsResponse(200, PagingHeaders(sent.page == 1 ? 5 : 7, 7));
    });
    const auto folder = NewFolder();
    queue->EnqueueBack(folder, 1, Count(std::make_shared<Delivered>()));
    time.RunUntilIdle();
    time.AdvanceBy(30s);
    const auto sent = queue->SentRequests();
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_EQ(sent[1].page, 6);
}

TEST_F(FetchChildrenQueueTest, LearnsOneHundredPerThirtySecondsFromTheHeadersForThatQueueOnly) {
    AnswerPagesOf(1, Limits("100", "30000"));
    const auto first = NewFolder();
    queue->EnqueueBack(first, 1, Count(std::make_shared<Delivered>()));
    time.RunUntilIdle();
    auto counts = queue->GetCounts();
    EXPECT_EQ(counts.maxRequests, 100);
    EXPECT_EQ(counts.windowSeconds, 30);

    // Another queue has learnt nothing.
    const auto other = std::make_shared<ScriptedFolderQueue>(time.GetExecutor());
    EXPECT_EQ(other->GetCounts().maxRequests, 200);
    EXPECT_EQ(other->GetCounts().windowSeconds, 60);

    // 150 more: 99 fit beside the first in its window; the rest wait until it has aged out.
    std::vector<std::shared_ptr<VantroNode>> folders;
    for (int index = 0; index < 150; ++index) {
        folders.push_back(NewFolder());
        queue->EnqueueBack(folders.back(), 1, Count(std::make_shared<Delivered>()));
    }
    time.AdvanceBy(5s);
    EXPECT_EQ(queue->SentCount(), 100u);
    time.AdvanceBy(25s);  // 30 s: the first is not older than the window yet
    EXPECT_EQ(queue->SentCount(), 100u);
    time.AdvanceBy(5s);  // 35 s: the first has gone; the 99 of 5 s are still counted
    EXPECT_EQ(queue->SentCount(), 101u);
    time.AdvanceBy(5s);  // 40 s: those 99 are older than 30 s
    EXPECT_EQ(queue->SentCount(), 151u);
}

struct UnchangedLimitsCase {
    const char* name;
    HeaderMap headers;
};

void PrintTo(const UnchangedLimitsCase& value, std::ostream* out) {
    *out << value.name;
}

class UnchangedLimitsTest : public FetchChildrenQueueTest,
                            public ::testing::WithParamInterface<UnchangedLimitsCase> {};

TEST_P(UnchangedLimitsTest, LeavesBothLimitsAsTheyWere) {
    AnswerPagesOf(1, GetParam().headers);
    const auto folder = NewFolder();
    auto delivered = std::make_shared<Delivered>();
    queue->EnqueueBack(folder, 1, Count(delivered));
    time.RunUntilIdle();
    ASSERT_EQ(delivered->calls, 1) << "the response was handled";
    const auto counts = queue->GetCounts();
    EXPECT_EQ(counts.maxRequests, 200);
    EXPECT_EQ(counts.windowSeconds, 60);
}

INSTANTIATE_TEST_SUITE_P(
    FetchChildrenQueue, UnchangedLimitsTest,
    ::testing::Values(UnchangedLimitsCase{"WindowOf999msTruncatesToZero", Limits("100", "999")},
                      UnchangedLimitsCase{"LimitOfZero", Limits("0", "30000")},
                      UnchangedLimitsCase{"NegativeWindow", Limits("100", "-5000")},
                      UnchangedLimitsCase{"OnlyTheLimit", {{"X-RATELIMIT-LIMIT", "100"}}},
                      UnchangedLimitsCase{"OnlyTheWindow", {{"X-RATELIMIT-WINDOW", "30000"}}},
                      UnchangedLimitsCase{
                          "LowerCaseNames",
                          {{"x-ratelimit-limit", "100"}, {"x-ratelimit-window", "30000"}}}),
    [](const ::testing::TestParamInfo<UnchangedLimitsCase>& param) { return param.param.name; });

TEST_F(FetchChildrenQueueTest, ALimitOfMinusOneIsStoredAndLiftsEveryLimit) {
    AnswerPagesOf(1, Limits("-1", "30000"));
    const auto first = NewFolder();
    queue->EnqueueBack(first, 1, Count(std::make_shared<Delivered>()));
    time.RunUntilIdle();
    EXPECT_EQ(queue->GetCounts().maxRequests, -1);
    EXPECT_EQ(queue->GetCounts().windowSeconds, 30);

    std::vector<std::shared_ptr<VantroNode>> folders;
    for (int index = 0; index < 500; ++index) {
        folders.push_back(NewFolder());
        queue->EnqueueBack(folders.back(), 1, Count(std::make_shared<Delivered>()));
    }
    time.AdvanceBy(5s);
    EXPECT_EQ(queue->SentCount(), 501u) << "far beyond 200 in one run";
}

TEST_F(FetchChildrenQueueTest, ALimitLoweredBelowTheCountStopsNewRequestsAndCancelsNothing) {
    // 50 requests go out and are held; one answer lowers the limit to 10 per 60 s.
    std::vector<std::shared_ptr<VantroNode>> folders;
    std::vector<std::shared_ptr<Delivered>> delivered;
    for (int index = 0; index < 50; ++index) {
        folders.push_back(NewFolder());
        delivered.push_back(std::make_shared<Delivered>());
        queue->EnqueueBack(folders.back(), 1, Count(delivered.back()));
    }
    time.RunUntilIdle();
    ASSERT_EQ(queue->SentCount(), 50u);
    HeaderMap lowered = PagingHeaders(1, 1);
    lowered.merge(Limits("10", "60000"));
    queue->Answer(0, ChildAssetsResponse(200, lowered));
    time.RunUntilIdle();
    EXPECT_EQ(queue->GetCounts().maxRequests, 10);

    auto later = std::make_shared<Delivered>();
    const auto waiting = NewFolder();
    queue->EnqueueBack(waiting, 1, Count(later));
    time.AdvanceBy(30s);
    EXPECT_EQ(queue->SentCount(), 50u) << "nothing new while 50 stand against a limit of 10";

    // The requests already out are still answered and delivered.
    for (std::size_t index = 1; index < 50; ++index) {
        queue->Answer(index, ChildAssetsResponse(200, PagingHeaders(1, 1)));
    }
    time.RunUntilIdle();
    for (const auto& listing : delivered) {
        EXPECT_EQ(listing->calls, 1);
    }
    EXPECT_EQ(queue->SentCount(), 50u);

    // Once they have aged out (older than 60 s, seen at the tick of 65 s) the waiting one goes.
    time.AdvanceBy(35s);
    ASSERT_EQ(queue->SentCount(), 51u);
    EXPECT_EQ(queue->SentRequests().back().node.lock(), waiting);
}

struct ListingEndCase {
    const char* name;
    HeaderMap headers;
};

void PrintTo(const ListingEndCase& value, std::ostream* out) {
    *out << value.name;
}

class ListingEndTest : public FetchChildrenQueueTest,
                       public ::testing::WithParamInterface<ListingEndCase> {};

TEST_P(ListingEndTest, EndsTheListingAfterThatPage) {
    const HeaderMap headers = GetParam().headers;
    queue->SetAnswer([headers](const ScriptedFolderQueue::Sent&) {
        return ChildAssetsResponse(200, headers, MakeAssets("Clip", 3));
    });
    const auto folder = NewFolder();
    auto delivered = std::make_shared<Delivered>();
    queue->EnqueueBack(folder, 3, Count(delivered));
    time.RunUntilIdle();
    time.AdvanceBy(30s);
    EXPECT_EQ(delivered->calls, 1);
    EXPECT_EQ(queue->SentCount(), 1u);
    const auto counts = queue->GetCounts();
    EXPECT_EQ(counts.pending, 0u);
    EXPECT_EQ(counts.inFlight, 0u);
}

INSTANTIATE_TEST_SUITE_P(FetchChildrenQueue, ListingEndTest,
                         ::testing::Values(ListingEndCase{"NoPageNumber", {{"TOTAL-PAGES", "3"}}},
                                           ListingEndCase{"NoTotalPages", {{"PAGE-NUMBER", "1"}}},
                                           ListingEndCase{"PageThreeOfThree", PagingHeaders(3, 3)},
                                           ListingEndCase{"PageZero", PagingHeaders(0, 3)}),
                         [](const ::testing::TestParamInfo<ListingEndCase>& param) {
                             return param.param.name;
                         });

TEST_F(FetchChildrenQueueTest, FollowsEveryPageUpToTheLast) {
    AnswerPagesOf(3);
    const auto folder = NewFolder();
    auto delivered = std::make_shared<Delivered>();
    queue->EnqueueBack(folder, 1, Count(delivered));
    time.RunUntilIdle();
    time.AdvanceBy(60s);
    EXPECT_EQ(delivered->calls, 3);
    const auto sent = queue->SentRequests();
    ASSERT_EQ(sent.size(), 3u);
    EXPECT_EQ(sent[0].page, 1);
    EXPECT_EQ(sent[1].page, 2);
    EXPECT_EQ(sent[2].page, 3);
}

TEST_F(FetchChildrenQueueTest, TwoListingsOfOneNodeAreNotMerged) {
    AnswerPagesOf(2);
    const auto folder = NewFolder();
    auto first = std::make_shared<Delivered>();
    auto second = std::make_shared<Delivered>();
    queue->EnqueueBack(folder, 1, Count(first));
    queue->EnqueueBack(folder, 1, Count(second));
    time.RunUntilIdle();
    time.AdvanceBy(30s);
    EXPECT_EQ(first->calls, 2);
    EXPECT_EQ(second->calls, 2);
    EXPECT_EQ(queue->SentCount(), 4u);
}

TEST_F(FetchChildrenQueueTest, PageTwoOfABegunListingGoesBeforeAListingQueuedAfterIt) {
    AnswerPagesOf(2);
    const auto first = NewFolder();
    const auto second = NewFolder();
    queue->EnqueueBack(first, 1, Count(std::make_shared<Delivered>()));
    time.RunUntilIdle();  // page 1 of the first folder answered; its page 2 is queued
    queue->EnqueueBack(second, 1, Count(std::make_shared<Delivered>()));
    time.AdvanceBy(5s);
    const auto sent = queue->SentRequests();
    ASSERT_EQ(sent.size(), 3u);
    EXPECT_EQ(sent[1].node.lock(), first);
    EXPECT_EQ(sent[1].page, 2);
    EXPECT_EQ(sent[2].node.lock(), second);
    EXPECT_EQ(sent[2].page, 1);
}

TEST_F(FetchChildrenQueueTest, ARefusedPageIsRepeatedFromTheHeadAndStillCounts) {
    int refusals = 1;
    queue->SetAnswer([&refusals](const ScriptedFolderQueue::Sent& sent) {
        if (sent.page == 2 && refusals > 0) {
            --refusals;
            HeaderMap header = Limits("50", "20000");
            header["RETRY-AFTER"] = "1";
            return ChildAssetsResponse(429, header);
        }
        return ChildAssetsResponse(200, PagingHeaders(sent.page, 2), MakeAssets("Clip", 1));
    });
    const auto first = NewFolder();
    const auto second = NewFolder();
    auto delivered = std::make_shared<Delivered>();
    queue->EnqueueBack(first, 1, Count(delivered));
    time.RunUntilIdle();
    time.AdvanceBy(5s);  // page 2 goes and is refused
    ASSERT_EQ(queue->SentCount(), 2u);
    EXPECT_EQ(delivered->calls, 1) << "a refused page delivers nothing";
    // The refusal carried limits, and its request stays counted beside the first.
    auto counts = queue->GetCounts();
    EXPECT_EQ(counts.maxRequests, 50);
    EXPECT_EQ(counts.windowSeconds, 20);
    EXPECT_EQ(counts.recent, 2u);
    EXPECT_EQ(counts.pending, 1u);

    queue->EnqueueBack(second, 1, Count(std::make_shared<Delivered>()));
    time.AdvanceBy(5s);
    const auto sent = queue->SentRequests();
    ASSERT_EQ(sent.size(), 4u);
    EXPECT_EQ(sent[2].node.lock(), first);
    EXPECT_EQ(sent[2].page, 2) << "the same page again, ahead of the new listing";
    EXPECT_EQ(sent[3].node.lock(), second);
    EXPECT_EQ(delivered->calls, 2);
}

TEST_F(FetchChildrenQueueTest, AnotherRefusalKeepsTheRecordInFlightUntilItAgesOut) {
    queue->SetAnswer([](const ScriptedFolderQueue::Sent&) {
        return ChildAssetsResponse(500, PagingHeaders(1, 2), MakeAssets("Clip", 1));
    });
    const auto folder = NewFolder();
    auto delivered = std::make_shared<Delivered>();
    queue->EnqueueBack(folder, 1, Count(delivered));
    time.RunUntilIdle();
    EXPECT_EQ(delivered->calls, 0);
    EXPECT_EQ(queue->GetCounts().inFlight, 1u);
    time.AdvanceBy(60s);
    EXPECT_EQ(queue->GetCounts().inFlight, 1u);
    EXPECT_EQ(queue->SentCount(), 1u) << "no retry";
    time.AdvanceBy(5s);
    const auto counts = queue->GetCounts();
    EXPECT_EQ(counts.inFlight + counts.recent + counts.pending, 0u);
    EXPECT_EQ(queue->SentCount(), 1u);
}

TEST_F(FetchChildrenQueueTest, AFailedExchangeIsNotRetriedAndAgesOut) {
    const auto folder = NewFolder();
    auto delivered = std::make_shared<Delivered>();
    queue->EnqueueBack(folder, 1, Count(delivered));
    time.RunUntilIdle();
    ASSERT_EQ(queue->SentCount(), 1u);
    queue->Answer(0, nullptr);  // the exchange fails
    time.RunUntilIdle();
    EXPECT_EQ(delivered->calls, 0);
    EXPECT_EQ(queue->GetCounts().inFlight, 1u);
    time.AdvanceBy(65s);
    EXPECT_EQ(queue->GetCounts().inFlight, 0u);
    EXPECT_EQ(queue->SentCount(), 1u);
}

TEST_F(FetchChildrenQueueTest, ADeadNodesRecordFailsWithExpiredFolderPointerAndStillCounts) {
    AnswerPagesOf(1);
    auto doomed = NewFolder();
    queue->EnqueueBack(doomed, 1, Count(std::make_shared<Delivered>()));
    std::vector<std::shared_ptr<VantroNode>> folders;
    for (int index = 0; index < 200; ++index) {
        folders.push_back(NewFolder());
        queue->EnqueueBack(folders.back(), 1, Count(std::make_shared<Delivered>()));
    }
    doomed.reset();

    time.RunUntilIdle();
    // The dead node's record was taken in turn but sent nowhere; it holds the first place.
    EXPECT_EQ(queue->SentCount(), 199u);
    const auto records = queue->InFlightRecords();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_TRUE(records[0].node.expired());
    EXPECT_EQ(kelcore::config::ExtractResultFromException(records[0].future),
              kelcore::config::MakeResultCode(0xA00F000D));
    try {
        records[0].future.Get();
        ADD_FAILURE() << "the future holds no failure";
    } catch (const kelcore::config::kel_exception& failure) {
        EXPECT_EQ(failure.GetText(), "expired folder pointer");
    }
    EXPECT_EQ(queue->GetCounts().recent, 199u);

    // It counts against the window: the last live record waits until it ages out.
    time.AdvanceBy(60s);
    EXPECT_EQ(queue->SentCount(), 199u);
    time.AdvanceBy(5s);
    EXPECT_EQ(queue->SentCount(), 200u);
    EXPECT_EQ(queue->GetCounts().inFlight, 0u);
}

TEST_F(FetchChildrenQueueTest, AMalformedRateLimitHeaderLosesTheResponse) {
    HeaderMap header = PagingHeaders(1, 2);
    header.merge(Limits("lots", "-1.5e3ms"));
    queue->SetAnswer([header](const ScriptedFolderQueue::Sent&) {
        return ChildAssetsResponse(200, header, MakeAssets("Clip", 5));
    });
    const auto folder = NewFolder();
    auto delivered = std::make_shared<Delivered>();
    queue->EnqueueBack(folder, 1, Count(delivered));
    time.RunUntilIdle();
    time.AdvanceBy(30s);
    EXPECT_EQ(delivered->calls, 0) << "a good page, lost";
    EXPECT_EQ(queue->SentCount(), 1u) << "no page 2";
    const auto records = queue->InFlightRecords();
    ASSERT_EQ(records.size(), 1u) << "the record stays in flight";
    // The handler's exception ended the chain, which holds it.
    EXPECT_TRUE(records[0].future.IsReady());
    EXPECT_EQ(kelcore::config::ExtractResultFromException(records[0].future),
              kelcore::config::kResultStandardException);
    EXPECT_EQ(queue->GetCounts().maxRequests, 200);
}

TEST_F(FetchChildrenQueueTest, AHandlerOfADeadQueueDoesNothing) {
    const auto folder = NewFolder();
    auto delivered = std::make_shared<Delivered>();
    auto handler = queue->GetResponseHandler(folder, 1, Count(delivered));
    queue.reset();
    handler(kelcore::async::MakeReadyFuture(
        ChildAssetsResponse(200, PagingHeaders(1, 1), MakeAssets("Clip", 1))));
    EXPECT_EQ(delivered->calls, 0);
}

TEST(WeakSingleton, GivesOneInstanceWhileHeldAndAFreshOneWithFreshLimitsAfter) {
    kelcore::threads::VirtualTime time;
    auto queue = integration::FetchFolderChildrenQueue::GetInstance();
    EXPECT_EQ(integration::FetchFolderChildrenQueue::GetInstance(), queue);
    auto workspaces = integration::FetchWorkspaceChildrenQueue::GetInstance();

    // Teach it limits through a response.
    auto folder = std::make_shared<vantrokelui::VantroFolder>(std::weak_ptr<VantroNode>());
    HeaderMap header = PagingHeaders(1, 1);
    header.merge(Limits("100", "30000"));
    queue->GetResponseHandler(folder, 1, [](const std::vector<vantrosdk::Asset>&) {})(
        kelcore::async::MakeReadyFuture(ChildAssetsResponse(200, header)));
    EXPECT_EQ(queue->GetCounts().maxRequests, 100);
    EXPECT_EQ(integration::FetchFolderChildrenQueue::GetInstance()->GetCounts().maxRequests, 100);
    // Each kind has its own instance, and its own limits.
    EXPECT_EQ(workspaces->GetCounts().maxRequests, 200);

    std::weak_ptr<integration::FetchFolderChildrenQueue> weak = queue;
    queue.reset();
    time.RunUntilIdle();
    EXPECT_TRUE(weak.expired());
    const auto fresh = integration::FetchFolderChildrenQueue::GetInstance();
    EXPECT_EQ(fresh->GetCounts().maxRequests, 200);
    EXPECT_EQ(fresh->GetCounts().windowSeconds, 60);
}

}  // namespace
