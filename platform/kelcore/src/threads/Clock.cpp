#include <kelcore/threads/Clock.h>

#include <mutex>
#include <utility>

#include <kelcore/threads/RealClock.h>

namespace kelcore::threads {
namespace {

struct ClockSlot {
    std::mutex mutex;
    std::shared_ptr<Clock> installed;
};

ClockSlot& Slot() {
    // Leaked on purpose: code running in static destructors may still ask for the time.
    static auto* slot = new ClockSlot;
    return *slot;
}

const std::shared_ptr<Clock>& Real() {
    static auto* real = new std::shared_ptr<Clock>(std::make_shared<RealClock>());
    return *real;
}

}  // namespace

Clock::TimePoint Now() {
    auto& slot = Slot();
    {
        std::lock_guard lock(slot.mutex);
        if (slot.installed) {
            return slot.installed->Now();
        }
    }
    return std::chrono::steady_clock::now();
}

std::shared_ptr<Clock> GetClock() {
    auto& slot = Slot();
    std::lock_guard lock(slot.mutex);
    return slot.installed ? slot.installed : Real();
}

std::shared_ptr<Clock> SetClock(std::shared_ptr<Clock> clock) {
    auto& slot = Slot();
    std::lock_guard lock(slot.mutex);
    return std::exchange(slot.installed, std::move(clock));
}

}  // namespace kelcore::threads
