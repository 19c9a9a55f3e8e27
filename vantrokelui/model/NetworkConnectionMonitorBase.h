// What the panel's view model needs to know about connectivity: whether the service can be
// reached now, and a callback for each report of a change. An interface, so that a host or a
// test can install its own monitor through ShareForReviewViewModel::SetNetworkConnectionMonitor.
#pragma once

#include <functional>

namespace vantrokelui::model {

class NetworkConnectionMonitorBase {
public:
    virtual ~NetworkConnectionMonitorBase() = default;

    /// Any thread. Whether the service can be reached now.
    virtual bool IsConnected() = 0;

    /// Main thread. The function each report calls with the new state, on the reporting
    /// thread; it replaces the one held.
    virtual void SetConnectionChangedCallback(std::function<void(bool)> callback) = 0;
};

}  // namespace vantrokelui::model
