#include "detail/ProgressReporter.h"

#include <exception>
#include <utility>

#include <kelcore/logging/Logging.h>

namespace vantrosdk::detail {

ProgressReporter::ProgressReporter(UploadRequest::ProgressFunction function)
    : function(std::move(function)) {}

void ProgressReporter::SetTotal(std::uint64_t size) {
    std::lock_guard lock(mutex);
    total = size;
}

void ProgressReporter::Report(std::uint64_t sent) {
    std::unique_lock lock(mutex);
    if (stopped || !function) {
        return;
    }
    if (!wanted || sent > *wanted) {
        wanted = sent;
    }
    if (delivering) {
        return;  // The thread delivering now takes this value too.
    }
    delivering = true;
    deliverer = std::this_thread::get_id();
    while (!stopped && (!delivered || *wanted > *delivered)) {
        const std::uint64_t value = *wanted;
        const std::uint64_t size = total;
        delivered = value;
        lock.unlock();
        try {
            function(value, size);
        } catch (const std::exception& e) {
            kelcore::logging::LogException("vantrosdk upload progress function", e);
        }
        lock.lock();
    }
    delivering = false;
    idle.notify_all();
}

void ProgressReporter::Flush() {
    std::unique_lock lock(mutex);
    WaitForOtherDeliverer(lock);
}

void ProgressReporter::Stop() {
    std::unique_lock lock(mutex);
    stopped = true;
    WaitForOtherDeliverer(lock);
}

void ProgressReporter::WaitForOtherDeliverer(std::unique_lock<std::mutex>& lock) {
    if (delivering && deliverer != std::this_thread::get_id()) {
        idle.wait(lock, [this] { return !delivering; });
    }
}

}  // namespace vantrosdk::detail
