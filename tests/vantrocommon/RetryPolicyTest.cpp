#include <gtest/gtest.h>

#include <set>
#include <vector>

#include <vantrocommon/ResultCodes.h>
#include <vantrocommon/RetryPolicy.h>

namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;
using vantrocommon::ParseRetryAfter;
using vantrocommon::RetryPolicy;
using vantrocommon::RetrySchedule;
using vantrocommon::http::Reply;

// Wednesday, 1 May 2024, 12:00:00 UTC.
const std::chrono::system_clock::time_point kNow =
    std::chrono::sys_days{std::chrono::year(2024) / std::chrono::May / 1} + 12h;

Reply Status(int status, std::string retryAfter = {}) {
    Reply reply;
    reply.status = status;
    if (!retryAfter.empty()) {
        reply.headers["RETRY-AFTER"] = std::move(retryAfter);
    }
    return reply;
}

TEST(RetryPolicy, RetriesOnlyTransientStatuses) {
    const RetryPolicy policy;
    for (int status : {408, 429, 500, 502, 503, 504}) {
        EXPECT_TRUE(policy.IsRetryableStatus(status)) << status;
    }
    for (int status : {200, 201, 204, 301, 400, 401, 403, 404, 409, 413, 422, 501, 505}) {
        EXPECT_FALSE(policy.IsRetryableStatus(status)) << status;
    }
    const RetryPolicy ownRateProtocol{.retryTooManyRequests = false};
    EXPECT_FALSE(ownRateProtocol.IsRetryableStatus(429));
    EXPECT_TRUE(ownRateProtocol.IsRetryableStatus(503));
}

TEST(RetryPolicy, RetriesNetworkFailuresAndTimeOutsOnly) {
    EXPECT_TRUE(RetryPolicy::IsRetryableFailure(vantrocommon::kResultNetworkFailure));
    EXPECT_TRUE(RetryPolicy::IsRetryableFailure(vantrocommon::kResultTimedOut));
    for (auto code : {vantrocommon::kResultCancelled, vantrocommon::kResultTlsFailure,
                      vantrocommon::kResultFileError, vantrocommon::kResultInvalidArgument,
                      kelcore::config::kResultFutureCancelled, kelcore::config::kResultSuccess}) {
        EXPECT_FALSE(RetryPolicy::IsRetryableFailure(code)) << code;
    }
}

TEST(ParseRetryAfter, ReadsWholeSeconds) {
    EXPECT_EQ(ParseRetryAfter("120", kNow), milliseconds(120'000));
    EXPECT_EQ(ParseRetryAfter(" 2 ", kNow), milliseconds(2'000));
    EXPECT_EQ(ParseRetryAfter("0", kNow), milliseconds(0));
}

TEST(ParseRetryAfter, ReadsTheThreeDateFormsAgainstNow) {
    EXPECT_EQ(ParseRetryAfter("Wed, 01 May 2024 12:00:10 GMT", kNow), milliseconds(10'000));
    EXPECT_EQ(ParseRetryAfter("Wednesday, 01-May-24 12:01:00 GMT", kNow), milliseconds(60'000));
    EXPECT_EQ(ParseRetryAfter("Wed May  1 12:00:05 2024", kNow), milliseconds(5'000));
    EXPECT_EQ(ParseRetryAfter("Thu, 02 May 2024 12:00:00 GMT", kNow), milliseconds(86'400'000));
}

TEST(ParseRetryAfter, ADateInThePastIsNoWait) {
    EXPECT_EQ(ParseRetryAfter("Sun, 06 Nov 1994 08:49:37 GMT", kNow), milliseconds(0));
    EXPECT_EQ(ParseRetryAfter("Sunday, 06-Nov-94 08:49:37 GMT", kNow), milliseconds(0));
    EXPECT_EQ(ParseRetryAfter("Sun Nov  6 08:49:37 1994", kNow), milliseconds(0));
    EXPECT_EQ(ParseRetryAfter("Wed, 01 May 2024 11:59:59 GMT", kNow), milliseconds(0));
}

TEST(ParseRetryAfter, JunkIsNull) {
    for (const char* junk :
         {"", "   ", "soon", "-5", "+5", "1.5", "5s", "0x10", "Wed, 01 May 2024 12:00:10 PST",
          "Wed, 01 May 2024 12:00:10", "Wed, 31 Feb 2024 12:00:10 GMT",
          "Wed, 01 May 2024 25:00:10 GMT", "Wed, 01 Foo 2024 12:00:10 GMT",
          "Xyz, 01 May 2024 12:00:10 GMT", "Wed, 1 May 2024 12:00:10 GMT",
          "Wed May 1 12:00:05 2024 GMT", "Wednesday, 01-May-2024 12:01:00 GMT"}) {
        EXPECT_FALSE(ParseRetryAfter(junk, kNow).has_value()) << '"' << junk << '"';
    }
}

TEST(RetrySchedule, BacksOffExponentiallyUpToTheCapWithFullJitter) {
    const RetryPolicy policy{.maxAttempts = 10, .budget = 1h};
    RetrySchedule ceiling(policy, [] { return 1.0; });
    std::vector<long> delays;
    while (auto delay = ceiling.NextDelay(Status(503))) {
        delays.push_back(static_cast<long>(delay->count()));
    }
    EXPECT_EQ(delays, (std::vector<long>{250, 500, 1000, 2000, 4000, 8000, 8000, 8000, 8000}));
    EXPECT_EQ(ceiling.AttemptsMade(), 10);
    EXPECT_EQ(ceiling.Waited(), milliseconds(39'750));

    RetrySchedule half(policy, [] { return 0.5; });
    EXPECT_EQ(half.NextDelay(Status(503)), milliseconds(125));
    EXPECT_EQ(half.NextDelay(Status(503)), milliseconds(250));
    EXPECT_EQ(half.NextDelay(vantrocommon::kResultNetworkFailure), milliseconds(500));

    RetrySchedule none(policy, [] { return 0.0; });
    EXPECT_EQ(none.NextDelay(Status(503)), milliseconds(0));
    EXPECT_EQ(none.NextDelay(Status(503)), milliseconds(0));
}

TEST(RetrySchedule, TheRealJitterStaysWithinTheCeiling) {
    const RetryPolicy policy;
    std::set<long> seen;
    for (int i = 0; i < 1000; ++i) {
        RetrySchedule schedule(policy);
        const auto first = schedule.NextDelay(Status(503));
        ASSERT_TRUE(first.has_value());
        EXPECT_GE(first->count(), 0);
        EXPECT_LE(first->count(), 250);
        const auto second = schedule.NextDelay(Status(503));
        ASSERT_TRUE(second.has_value());
        EXPECT_LE(second->count(), 500);
        seen.insert(static_cast<long>(first->count()));
    }
    // A thousand draws from 251 values: a fixed or stuck generator would give a handful.
    EXPECT_GT(seen.size(), 100u);
}

TEST(RetrySchedule, StopsAfterMaxAttempts) {
    RetrySchedule schedule(RetryPolicy{.maxAttempts = 3}, [] { return 0.1; });
    EXPECT_TRUE(schedule.NextDelay(Status(500)).has_value());
    EXPECT_TRUE(schedule.NextDelay(vantrocommon::kResultTimedOut).has_value());
    EXPECT_EQ(schedule.AttemptsMade(), 3);
    EXPECT_FALSE(schedule.NextDelay(Status(500)).has_value());
    EXPECT_FALSE(schedule.NextDelay(vantrocommon::kResultTimedOut).has_value());
}

TEST(RetrySchedule, StopsWhenTheNextWaitWouldPassTheBudget) {
    const RetryPolicy policy{.maxAttempts = 100, .initialDelay = 400ms, .budget = 1200ms};
    RetrySchedule schedule(policy, [] { return 1.0; });
    EXPECT_EQ(schedule.NextDelay(Status(503)), milliseconds(400));
    EXPECT_EQ(schedule.NextDelay(Status(503)), milliseconds(800));  // exactly the budget
    EXPECT_FALSE(schedule.NextDelay(Status(503)).has_value());
    EXPECT_EQ(schedule.Waited(), milliseconds(1200));
    EXPECT_EQ(schedule.AttemptsMade(), 3);
}

TEST(RetrySchedule, RetryAfterReplacesTheBackoffWithinTheBudget) {
    const RetryPolicy policy{.budget = 5s};
    RetrySchedule schedule(policy, [] { return 0.0; });
    EXPECT_EQ(schedule.NextDelay(Status(429, "2")), milliseconds(2000));
    EXPECT_EQ(schedule.NextDelay(Status(503, "3")), milliseconds(3000));
    // Past the budget the server's demand ends the retries rather than being shortened.
    EXPECT_FALSE(schedule.NextDelay(Status(503, "1")).has_value());

    RetrySchedule junk(policy, [] { return 1.0; });
    EXPECT_EQ(junk.NextDelay(Status(503, "later")), milliseconds(250));
}

TEST(RetrySchedule, AFinalStatusOrFailureEndsWithoutSpendingAnAttempt) {
    RetrySchedule schedule(RetryPolicy{}, [] { return 1.0; });
    EXPECT_FALSE(schedule.NextDelay(Status(404)).has_value());
    EXPECT_FALSE(schedule.NextDelay(Status(200)).has_value());
    EXPECT_FALSE(schedule.NextDelay(vantrocommon::kResultCancelled).has_value());
    EXPECT_FALSE(schedule.NextDelay(vantrocommon::kResultTlsFailure).has_value());
    EXPECT_EQ(schedule.AttemptsMade(), 1);
    EXPECT_EQ(schedule.Waited(), milliseconds(0));
}

TEST(RetrySchedule, A429IsFinalWhenTheCallerRunsItsOwnRateProtocol) {
    RetrySchedule schedule(RetryPolicy{.retryTooManyRequests = false}, [] { return 1.0; });
    EXPECT_FALSE(schedule.NextDelay(Status(429, "1")).has_value());
    EXPECT_EQ(schedule.AttemptsMade(), 1);
}

}  // namespace
