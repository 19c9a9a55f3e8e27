// Keeps, in memory, every log line written while it lives, so a test can assert what was
// logged and how often. Lines still go to stderr and the log file as usual. Owned by the test
// that creates it; several may live at once, each seeing the lines written during its life.
//
//   logging::CapturedLogForTesting log;
//   logging::LogException("Reader", error);
//   EXPECT_EQ(log.Entries().size(), 1u);
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <kelcore/logging/Logging.h>

namespace kelcore::logging {

class CapturedLogForTesting {
public:
    struct Entry {
        Severity severity;
        std::string text;
    };

    CapturedLogForTesting();
    ~CapturedLogForTesting();
    CapturedLogForTesting(const CapturedLogForTesting&) = delete;
    CapturedLogForTesting& operator=(const CapturedLogForTesting&) = delete;

    /// The lines written so far, oldest first (at most the last 100000). Any thread.
    std::vector<Entry> Entries() const;

private:
    struct Sink;
    std::shared_ptr<Sink> sink;
};

}  // namespace kelcore::logging
