// Asio's inlined internals use fences, which TSan does not model; GCC warns about them in a
// TSan build although they are not about this file.
#if defined(__SANITIZE_THREAD__)
#pragma GCC diagnostic ignored "-Wtsan"
#endif

#include <kelcore/threads/ThreadPoolExecutor.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <list>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/thread_pool.hpp>

#include <kelcore/logging/Logging.h>

namespace kelcore::threads {
namespace detail {

class ThreadPoolCore {
public:
    explicit ThreadPoolCore(std::size_t threadCount)
        : threadCount(threadCount), pool(threadCount) {}

    ~ThreadPoolCore() {
        // Timers go before the pool, whose destruction frees their cancelled waits.
        std::lock_guard lock(timersMutex);
        timers.clear();
    }

    void Post(std::function<void()> task) {
        if (stopped.load()) {
            return;
        }
        boost::asio::post(pool, [task = std::move(task)] { Run(task); });
    }

    void PostAfterDelay(std::function<void()> task, std::uint64_t delayMilliseconds) {
        std::lock_guard lock(timersMutex);
        if (stopped.load()) {
            return;
        }
        // A delay beyond the timer's range waits as long as the range allows.
        const auto delay = std::chrono::milliseconds(std::min<std::uint64_t>(
            delayMilliseconds, std::chrono::duration_cast<std::chrono::milliseconds>(
                                   boost::asio::steady_timer::duration::max() / 2)
                                   .count()));
        auto timer = timers.emplace(timers.end(), pool, delay);
        // The handler captures `this`: it runs or is destroyed before the pool, and so the core,
        // goes away.
        timer->async_wait(
            [this, timer, task = std::move(task)](const boost::system::error_code& error) {
                {
                    std::lock_guard timersLock(timersMutex);
                    if (stopped.load()) {
                        return;
                    }
                    timers.erase(timer);
                }
                if (!error) {
                    Run(task);
                }
            });
    }

    void Shutdown() {
        {
            std::lock_guard lock(timersMutex);
            if (stopped.exchange(true)) {
                return;
            }
        }
        pool.stop();
        // A worker cannot join itself; it leaves the pool when its task returns.
        if (!RunsTasksOnCurrentThread()) {
            pool.join();
        }
    }

    // True anywhere inside a worker's run loop, including while a finished task's closure is
    // destroyed, which may drop the last reference to the pool.
    bool RunsTasksOnCurrentThread() { return pool.get_executor().running_in_this_thread(); }

    const std::size_t threadCount;

private:
    static void Run(const std::function<void()>& task) {
        try {
            task();
        } catch (...) {
            logging::LogException("kelcore thread pool task", std::current_exception());
        }
    }

    std::atomic<bool> stopped{false};
    boost::asio::thread_pool pool;
    std::mutex timersMutex;
    std::list<boost::asio::steady_timer> timers;
};

}  // namespace detail

namespace {

// Frees pools whose last reference went on one of their own workers. A worker cannot wait for
// itself, so a helper thread waits for the workers and frees the pool; the helpers are joined
// at exit, because a pool worker still running then would outlive the statics it uses.
class PoolReaper {
public:
    static PoolReaper& Get() {
        // Leaked on purpose: its exit hook runs while static destructors may still be queued.
        static auto* reaper = new PoolReaper;
        return *reaper;
    }

    void Reap(std::shared_ptr<detail::ThreadPoolCore> orphan) {
        std::lock_guard lock(mutex);
        if (!exitHookInstalled) {
            std::atexit([] { Get().JoinAll(); });
            exitHookInstalled = true;
        }
        helpers.emplace_back([orphan = std::move(orphan)]() mutable { orphan.reset(); });
    }

private:
    void JoinAll() {
        std::vector<std::thread> waiting;
        {
            std::lock_guard lock(mutex);
            waiting.swap(helpers);
        }
        for (auto& helper : waiting) {
            helper.join();
        }
    }

    std::mutex mutex;
    std::vector<std::thread> helpers;
    bool exitHookInstalled = false;
};

}  // namespace

ThreadPoolExecutor::ThreadPoolExecutor(std::size_t threadCount)
    : core(std::make_shared<detail::ThreadPoolCore>(std::max<std::size_t>(threadCount, 1))) {}

ThreadPoolExecutor::~ThreadPoolExecutor() {
    core->Shutdown();
    if (core->RunsTasksOnCurrentThread()) {
        // This worker is still inside the pool's run loop, so the pool must outlive this frame.
        PoolReaper::Get().Reap(std::move(core));
    }
}

void ThreadPoolExecutor::Post(std::function<void()> task) {
    core->Post(std::move(task));
}

void ThreadPoolExecutor::PostAfterDelay(std::function<void()> task,
                                        std::uint64_t delayMilliseconds) {
    core->PostAfterDelay(std::move(task), delayMilliseconds);
}

void ThreadPoolExecutor::Shutdown() {
    core->Shutdown();
}

bool ThreadPoolExecutor::RunsTasksOnCurrentThread() const {
    return core->RunsTasksOnCurrentThread();
}

std::size_t ThreadPoolExecutor::ThreadCount() const {
    return core->threadCount;
}

}  // namespace kelcore::threads
