// The real connectivity monitor: the platform's kelnet::ConnectionMonitor, started for the life
// of this object, with its ConnectionChangedMessages passed on to the callback. Messages come
// on the platform monitor's thread, so the callback runs there; the destructor waits for a
// message in progress, and no callback runs after it.
//
//   viewModel->SetNetworkConnectionMonitor(
//       [] { return std::make_shared<model::NetworkConnectionMonitor>(); });
#pragma once

#include <functional>
#include <mutex>

#include <kelcore/messaging/Listener.h>
#include <kelcore/messaging/RawMessage.h>
#include <kelcore/utility/EnableSharedAs.h>
#include <vantrokelui/model/NetworkConnectionMonitorBase.h>

namespace vantrokelui::model {

class NetworkConnectionMonitor : public NetworkConnectionMonitorBase,
                                 public kelcore::messaging::Listener,
                                 public virtual kelcore::utility::EnableSharedAs {
public:
    /// Starts the platform monitor, then listens to its station.
    NetworkConnectionMonitor();
    /// Leaves the station (waiting for a message in progress), stops the platform monitor and
    /// clears the callback.
    ~NetworkConnectionMonitor() override;

    /// Any thread. The platform monitor's state is kelnet::NetworkState::Connected.
    bool IsConnected() override;

    /// Any thread.
    void SetConnectionChangedCallback(std::function<void(bool)> callback) override;

    /// The platform monitor's thread. Passes a ConnectionChangedMessage's value to the
    /// callback; other messages are ignored. With no callback set, throws
    /// std::bad_function_call to the sender.
    void ReceiveRawMessage(const kelcore::messaging::RawMessage& message) override;

private:
    // Set on the main thread, called on the monitor's thread: the callback is copied under
    // the lock and called outside it.
    std::mutex callbackMutex;
    std::function<void(bool)> connectionChangedCallback;
};

}  // namespace vantrokelui::model
