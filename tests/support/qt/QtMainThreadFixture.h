// For tests of nodes and screens: the test's thread is the main thread, kelcore's main-thread
// queue is a fresh plain queue that the test pumps, and Pump also lets Qt deliver its posted
// events (layouts, deferred deletes), so a test reaches a settled state without waiting.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include <QApplication>
#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <kelcore/threads/MainThread.h>
#include <kelcore/threads/MainThreadQueue.h>

namespace testsupport {

class QtMainThreadFixture : public ::testing::Test {
protected:
    void SetUp() override {
        kelcore::threads::SetMainThread();
        queue = std::make_shared<kelcore::threads::MainThreadQueue>();
        kelcore::threads::SetMainThreadDispatcher(queue);
    }
    void TearDown() override {
        Pump();
        kelcore::threads::SetMainThreadDispatcher(nullptr);
    }

    /// Runs queued main-thread tasks and Qt's posted events until neither has anything left.
    void Pump() {
        for (int round = 0; round < 100; ++round) {
            QApplication::sendPostedEvents();
            QApplication::processEvents();
            if (queue->RunUntilEmpty() == 0) {
                break;
            }
        }
    }
    /// Pumps until `done` holds; fails the test when it does not within `timeout`.
    void PumpUntil(const std::function<bool()>& done,
                   std::chrono::milliseconds timeout = std::chrono::seconds(10)) {
        QElapsedTimer timer;
        timer.start();
        while (!done()) {
            if (timer.elapsed() > timeout.count()) {
                FAIL() << "condition not met within " << timeout.count() << " ms";
            }
            Pump();
            QApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
        }
    }

    std::shared_ptr<kelcore::threads::MainThreadQueue> queue;
};

}  // namespace testsupport
