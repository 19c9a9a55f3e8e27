#include "support/MainThreadFixture.h"

namespace testsupport {

void MainThreadFixture::SetUp() {
    kelcore::threads::SetMainThread();
    queue = std::make_shared<kelcore::threads::MainThreadQueue>();
    kelcore::threads::SetMainThreadDispatcher(queue);
}

void MainThreadFixture::TearDown() {
    Pump();
    kelcore::threads::SetMainThreadDispatcher(nullptr);
}

void MainThreadFixture::PumpUntil(const std::function<bool()>& done,
                                  std::chrono::milliseconds timeout) {
    ASSERT_TRUE(queue->PumpUntil(done, timeout)) << "condition not met within the timeout";
}

}  // namespace testsupport
