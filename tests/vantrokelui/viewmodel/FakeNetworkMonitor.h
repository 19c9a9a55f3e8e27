// A connection monitor the test drives: IsConnected answers what the test set, and Report calls
// the subscribed callback on the caller's thread, as the platform monitor calls it on its own.
// Counts the calls of both operations. Owned by the test (shared with the view model through the
// factory). Any thread.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <utility>

#include <vantrokelui/model/NetworkConnectionMonitorBase.h>

namespace vantrokelui::viewmodel::testing {

class FakeNetworkMonitor final : public model::NetworkConnectionMonitorBase {
public:
    explicit FakeNetworkMonitor(bool connected) : connected(connected) {}

    bool IsConnected() override {
        ++isConnectedCalls;
        return connected.load();
    }
    void SetConnectionChangedCallback(std::function<void(bool)> newCallback) override {
        const std::lock_guard lock(mutex);
        callback = std::move(newCallback);
        ++callbackSets;
    }

    /// What IsConnected answers from now on; no report goes out.
    void SetConnected(bool value) { connected.store(value); }
    /// A report of `value`, as the platform would send it.
    void Report(bool value) {
        connected.store(value);
        std::function<void(bool)> held;
        {
            const std::lock_guard lock(mutex);
            held = callback;
        }
        held(value);
    }
    bool HasCallback() const {
        const std::lock_guard lock(mutex);
        return static_cast<bool>(callback);
    }

    std::atomic<int> isConnectedCalls{0};
    std::atomic<int> callbackSets{0};

private:
    std::atomic<bool> connected;
    mutable std::mutex mutex;
    std::function<void(bool)> callback;
};

}  // namespace vantrokelui::viewmodel::testing
