#include <kelcore/threads/ManualClock.h>

namespace kelcore::threads {

ManualClock::ManualClock() : now(std::chrono::steady_clock::now()) {}

void ManualClock::AdvanceTo(TimePoint time) {
    auto current = now.load();
    // Concurrent advances keep the later reading, so the clock never goes backwards.
    while (current < time && !now.compare_exchange_weak(current, time)) {
    }
}

void ManualClock::AdvanceBy(std::chrono::steady_clock::duration duration) {
    if (duration > duration.zero()) {
        AdvanceTo(Now() + duration);
    }
}

}  // namespace kelcore::threads
