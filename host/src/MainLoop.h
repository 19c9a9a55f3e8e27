// The headless host's main thread: installs a plain FIFO queue as kelcore's main-thread
// dispatcher and pumps it, blocking while nothing is queued, until a condition holds. Ctrl-C
// (SIGINT) and SIGTERM are taken by a thread of their own with sigwait: while the loop is
// cancellable the first one only raises Interrupted() and wakes the loop, and a second ends the
// process at once; otherwise the first one ends it.
//
// One per process, made first thing in main (before any thread starts, so that every thread
// inherits the blocked signals). The loop runs on the main thread; Interrupted is any thread.
//
//   MainLoop loop;
//   loop.SetCancellable(true);
//   loop.RunUntil([&] { return done || loop.Interrupted(); }, std::chrono::minutes(1));
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <thread>

#include <kelcore/threads/MainThreadQueue.h>

namespace vantroshare {

class MainLoop {
public:
    /// Exit code of a process ended by a signal it was told to end for.
    static constexpr int kInterruptedExitCode = 130;

    MainLoop();
    ~MainLoop();
    MainLoop(const MainLoop&) = delete;
    MainLoop& operator=(const MainLoop&) = delete;

    /// Pumps until `done` answers true (asked before each task and after each wait) or `limit`
    /// passes; whether `done` held.
    bool RunUntil(const std::function<bool()>& done, std::chrono::milliseconds limit);
    /// Runs what is queued now.
    void RunPending();

    /// Whether the first Ctrl-C only asks to cancel. Any thread.
    void SetCancellable(bool cancellable);
    bool Interrupted() const { return interrupted.load(); }

private:
    void WatchSignals();

    std::shared_ptr<kelcore::threads::MainThreadQueue> queue;
    std::atomic<bool> cancellable{false};
    std::atomic<bool> interrupted{false};
    std::thread watcher;
};

}  // namespace vantroshare
