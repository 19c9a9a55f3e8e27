// A test fixture that makes the test's thread the main thread and installs a fresh plain
// queue as the main-thread dispatcher, so a test pumps deliveries deterministically.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include <gtest/gtest.h>

#include <kelcore/threads/MainThread.h>
#include <kelcore/threads/MainThreadQueue.h>

namespace testsupport {

class MainThreadFixture : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    /// Runs queued main-thread tasks until none is left. Returns how many ran.
    std::size_t Pump() { return queue->RunUntilEmpty(); }
    /// Pumps until `done` holds; fails the test if it does not within `timeout`.
    void PumpUntil(const std::function<bool()>& done,
                   std::chrono::milliseconds timeout = std::chrono::seconds(10));

    std::shared_ptr<kelcore::threads::MainThreadQueue> queue;
};

}  // namespace testsupport
