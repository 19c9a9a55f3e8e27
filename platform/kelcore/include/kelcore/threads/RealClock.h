// The clock of a running program: std::chrono::steady_clock. Stateless; the one that
// threads::Now() reads unless a test installed another.
#pragma once

#include <kelcore/threads/Clock.h>

namespace kelcore::threads {

class RealClock final : public Clock {
public:
    /// Any thread.
    TimePoint Now() const override { return std::chrono::steady_clock::now(); }
};

}  // namespace kelcore::threads
