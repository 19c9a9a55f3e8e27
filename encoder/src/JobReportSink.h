// Where a job's reports go: the connection that submitted it, or the one-shot command's
// terminal. The render queue holds sinks weakly; a sink that has gone just misses its reports.
// Called on the io_context's thread.
#pragma once

#include <sarvex/protocol/JobReport.h>

namespace sarvex {

class JobReportSink {
public:
    virtual ~JobReportSink() = default;

    /// One report about one of the sink's jobs.
    virtual void Report(const protocol::JobReport& report) = 0;
};

}  // namespace sarvex
