// What the host supplies to run closures on its UI thread. A headless host installs the plain
// MainThreadQueue and pumps it; the Qt layer installs a dispatcher over its event loop.
#pragma once

#include <functional>

namespace kelcore::threads {

class MainThreadDispatcherBase {
public:
    virtual ~MainThreadDispatcherBase() = default;

    /// Any thread. Queues `task` to run later on the main thread, after every task posted
    /// before it. Never runs it inline.
    virtual void Post(std::function<void()> task) = 0;
};

}  // namespace kelcore::threads
