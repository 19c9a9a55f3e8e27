// Delivers an upload's progress to the caller's function: values only grow, one call at a time,
// never under a lock of the SDK (the function may call back into it, e.g. to cancel), and none
// after Stop returns. Whichever thread reports while another delivers leaves its value to that
// one, so nothing waits for the caller's function but Stop and Flush. Owned by one upload; any
// thread.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <thread>

#include <vantrosdk/UploadRequest.h>

namespace vantrosdk::detail {

class ProgressReporter {
public:
    explicit ProgressReporter(UploadRequest::ProgressFunction function);

    /// Any thread. The size that every delivery names as the total (0 until set).
    void SetTotal(std::uint64_t total);

    /// Any thread. Delivers (sent, total) unless a value as large was delivered already.
    void Report(std::uint64_t sent);
    /// Any thread. Returns once every reported value has been delivered (at once on the thread
    /// that delivers).
    void Flush();
    /// Any thread. Ends the deliveries: once it returns, the function is not called again
    /// (a call running on this same thread, which is the one that stops, ends on its own).
    void Stop();

private:
    void WaitForOtherDeliverer(std::unique_lock<std::mutex>& lock);

    const UploadRequest::ProgressFunction function;

    std::mutex mutex;
    std::uint64_t total = 0;
    std::condition_variable idle;
    std::optional<std::uint64_t> wanted;
    std::optional<std::uint64_t> delivered;
    bool delivering = false;
    std::thread::id deliverer;
    bool stopped = false;
};

}  // namespace vantrosdk::detail
