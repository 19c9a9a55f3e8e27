#include <kelcore/threads/VirtualTime.h>

#include <kelcore/threads/Executors.h>

namespace kelcore::threads {

VirtualTime::VirtualTime()
    : clock(std::make_shared<ManualClock>()),
      executor(std::make_shared<ManualExecutor>(clock)),
      previousClock(SetClock(clock)),
      previousDefault(SetDefaultExecutor(executor)),
      previousIOBound(SetIOBoundExecutor(executor)) {}

VirtualTime::~VirtualTime() {
    SetIOBoundExecutor(std::move(previousIOBound));
    SetDefaultExecutor(std::move(previousDefault));
    SetClock(std::move(previousClock));
    // Work still waiting would never run; dropping it frees what it holds and cancels its
    // futures, instead of leaving them to whoever still holds the executor.
    executor->Shutdown();
}

}  // namespace kelcore::threads
