#include "MainLoop.h"

#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <kelcore/threads/MainThread.h>

namespace vantroshare {

namespace {

// Tells the watcher to leave; never sent from outside.
constexpr int kStopWatcherSignal = SIGUSR2;

sigset_t WatchedSignals() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    sigaddset(&set, kStopWatcherSignal);
    return set;
}

}  // namespace

MainLoop::MainLoop() : queue(std::make_shared<kelcore::threads::MainThreadQueue>()) {
    const sigset_t set = WatchedSignals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    kelcore::threads::SetMainThread();
    kelcore::threads::SetMainThreadDispatcher(queue);
    watcher = std::thread([this] { WatchSignals(); });
}

MainLoop::~MainLoop() {
    pthread_kill(watcher.native_handle(), kStopWatcherSignal);
    watcher.join();
    queue->RunUntilEmpty();
    kelcore::threads::SetMainThreadDispatcher(nullptr);
}

void MainLoop::SetCancellable(bool value) {
    cancellable.store(value);
}

void MainLoop::WatchSignals() {
    const sigset_t set = WatchedSignals();
    for (;;) {
        int signal = 0;
        if (sigwait(&set, &signal) != 0) {
            continue;
        }
        if (signal == kStopWatcherSignal) {
            return;
        }
        if (cancellable.load() && !interrupted.exchange(true)) {
            // Wakes the loop; the main thread decides what the cancel means.
            queue->Post([] {});
            continue;
        }
        // A private sarvex ends with this process (--exit-with-parent). Stopping it here would
        // end threads that wait on it just before the exit, leaving them unjoined.
        static constexpr char kMessage[] = "\nvantro-share: interrupted\n";
        (void)!::write(STDERR_FILENO, kMessage, sizeof(kMessage) - 1);
        ::_exit(kInterruptedExitCode);
    }
}

bool MainLoop::RunUntil(const std::function<bool()>& done, std::chrono::milliseconds limit) {
    return queue->PumpUntil(done, limit);
}

void MainLoop::RunPending() {
    queue->RunUntilEmpty();
}

}  // namespace vantroshare
