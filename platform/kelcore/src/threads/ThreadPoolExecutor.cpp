#include <kelcore/threads/ThreadPoolExecutor.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <list>
#include <mutex>
#include <thread>
#include <utility>

#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/thread_pool.hpp>
#include <spdlog/spdlog.h>

namespace kelcore::threads {
namespace detail {

class ThreadPoolCore {
public:
    explicit ThreadPoolCore(std::size_t threadCount) : threadCount(threadCount), pool(threadCount) {}

    ~ThreadPoolCore() {
        // Timers go before the pool, whose destruction frees their cancelled waits.
        std::lock_guard lock(timersMutex);
        timers.clear();
    }

    void Post(std::function<void()> task) {
        if (stopped.load()) {
            return;
        }
        boost::asio::post(pool, [this, task = std::move(task)] { Run(task); });
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

    bool RunsTasksOnCurrentThread() const { return sCurrent == this; }

    const std::size_t threadCount;

private:
    void Run(const std::function<void()>& task) {
        const ThreadPoolCore* outer = std::exchange(sCurrent, this);
        try {
            task();
        } catch (const std::exception& error) {
            spdlog::error("kelcore: a pool task threw: {}", error.what());
        } catch (...) {
            spdlog::error("kelcore: a pool task threw a non-standard exception");
        }
        sCurrent = outer;
    }

    static thread_local const ThreadPoolCore* sCurrent;

    std::atomic<bool> stopped{false};
    boost::asio::thread_pool pool;
    std::mutex timersMutex;
    std::list<boost::asio::steady_timer> timers;
};

thread_local const ThreadPoolCore* ThreadPoolCore::sCurrent = nullptr;

}  // namespace detail

ThreadPoolExecutor::ThreadPoolExecutor(std::size_t threadCount)
    : core(std::make_shared<detail::ThreadPoolCore>(std::max<std::size_t>(threadCount, 1))) {}

ThreadPoolExecutor::~ThreadPoolExecutor() {
    core->Shutdown();
    if (core->RunsTasksOnCurrentThread()) {
        // Dropped by one of its own tasks: the worker is still inside the pool, so the core
        // must outlive this frame. A detached thread waits for the workers and frees it.
        std::thread([orphan = std::move(core)]() mutable { orphan.reset(); }).detach();
    }
}

void ThreadPoolExecutor::Post(std::function<void()> task) { core->Post(std::move(task)); }

void ThreadPoolExecutor::PostAfterDelay(std::function<void()> task,
                                        std::uint64_t delayMilliseconds) {
    core->PostAfterDelay(std::move(task), delayMilliseconds);
}

void ThreadPoolExecutor::Shutdown() { core->Shutdown(); }

bool ThreadPoolExecutor::RunsTasksOnCurrentThread() const {
    return core->RunsTasksOnCurrentThread();
}

std::size_t ThreadPoolExecutor::ThreadCount() const { return core->threadCount; }

}  // namespace kelcore::threads
