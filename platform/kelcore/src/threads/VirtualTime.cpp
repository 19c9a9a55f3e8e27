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
}

}  // namespace kelcore::threads
