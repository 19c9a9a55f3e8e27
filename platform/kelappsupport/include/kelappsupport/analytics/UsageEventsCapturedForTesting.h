// Keeps, in memory, every usage event logged while it lives, instead of writing it to the event
// file, so a test can read what was sent. Owned by the test that creates it; only one may live
// at a time. Any thread.
//
//   analytics::UsageEventsCapturedForTesting events;
//   utility::SDMLogging::LogCopyLink();
//   EXPECT_EQ(events.Events().at(0).GetSubtype(), "copy-media-link");
#pragma once

#include <vector>

#include <kelappsupport/analytics/SDMEvent.h>

namespace kelappsupport::analytics {

class UsageEventsCapturedForTesting {
public:
    UsageEventsCapturedForTesting();
    ~UsageEventsCapturedForTesting();
    UsageEventsCapturedForTesting(const UsageEventsCapturedForTesting&) = delete;
    UsageEventsCapturedForTesting& operator=(const UsageEventsCapturedForTesting&) = delete;

    /// The events logged so far, oldest first. Any thread.
    std::vector<SDMEvent> Events() const;
};

}  // namespace kelappsupport::analytics
