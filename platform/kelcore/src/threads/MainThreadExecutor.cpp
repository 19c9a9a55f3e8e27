#include <kelcore/threads/MainThreadExecutor.h>

#include <kelcore/threads/Executors.h>
#include <kelcore/threads/MainThread.h>

namespace kelcore::threads {

namespace {

class MainThreadExecutor final : public AsyncExecutor {
public:
    void Post(std::function<void()> task) override { AsyncCallFromMainThread(std::move(task)); }

    void PostAfterDelay(std::function<void()> task, std::uint64_t delayMilliseconds) override {
        // The default executor is looked up at each call, so a test's virtual time applies.
        GetDefaultExecutor()->PostAfterDelay(
            [task = std::move(task)]() mutable { AsyncCallFromMainThread(std::move(task)); },
            delayMilliseconds);
    }
};

}  // namespace

std::shared_ptr<AsyncExecutor> GetMainThreadExecutor() {
    static const auto executor = std::make_shared<MainThreadExecutor>();
    return executor;
}

}  // namespace kelcore::threads
