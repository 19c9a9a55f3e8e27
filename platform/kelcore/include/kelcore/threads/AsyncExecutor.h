// Something that runs closures on threads of its own: the process-wide pools
// (GetDefaultExecutor, GetIOBoundExecutor), a private ThreadPoolExecutor, or the manual
// executor of VirtualTime in tests. Held by shared pointer; every method is any-thread.
//
//   auto executor = kelcore::threads::GetIOBoundExecutor();
//   executor->PostAfterDelay([weak] { if (auto self = weak.lock()) self->Tick(); }, 5000);
#pragma once

#include <cstdint>
#include <functional>

namespace kelcore::threads {

class AsyncExecutor {
public:
    virtual ~AsyncExecutor() = default;

    /// Any thread. Runs `task` soon on one of the executor's threads; never inline in this call.
    /// Does nothing once the executor has shut down.
    virtual void Post(std::function<void()> task) = 0;

    /// Any thread. Runs `task` once `delayMilliseconds` have passed on the executor's clock;
    /// never inline, even for a delay of 0. Does nothing once the executor has shut down.
    virtual void PostAfterDelay(std::function<void()> task, std::uint64_t delayMilliseconds) = 0;
};

}  // namespace kelcore::threads
