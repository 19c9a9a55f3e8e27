#include <vantrokelui/model/NetworkConnectionMonitor.h>

#include <utility>

#include <kelcore/messaging/Messaging.h>
#include <kelnet/ConnectionMonitor.h>

namespace vantrokelui::model {

namespace {

using kelnet::ConnectionMonitor;

kelcore::messaging::MessageID ConnectionChangedMessageID() {
    // Computed once from the type's name, as every sender of the message computes it.
    static const kelcore::messaging::MessageID id =
        kelcore::messaging::HashMessageTypeNameToMessageID(
            typeid(ConnectionMonitor::ConnectionChangedMessage).name());
    return id;
}

}  // namespace

NetworkConnectionMonitor::NetworkConnectionMonitor() {
    ConnectionMonitor::Start();
    kelcore::messaging::AddRawListener(ConnectionMonitor::GetStationID(), this);
}

NetworkConnectionMonitor::~NetworkConnectionMonitor() {
    kelcore::messaging::RemoveRawListener(ConnectionMonitor::GetStationID(), this);
    ConnectionMonitor::Stop();
    std::lock_guard lock(callbackMutex);
    connectionChangedCallback = nullptr;
}

bool NetworkConnectionMonitor::IsConnected() {
    return ConnectionMonitor::GetNetworkState() == kelnet::NetworkState::Connected;
}

void NetworkConnectionMonitor::SetConnectionChangedCallback(std::function<void(bool)> callback) {
    std::lock_guard lock(callbackMutex);
    connectionChangedCallback = std::move(callback);
}

void NetworkConnectionMonitor::ReceiveRawMessage(const kelcore::messaging::RawMessage& message) {
    if (message.GetMessageID() != ConnectionChangedMessageID()) {
        return;
    }
    const auto* changed = message.As<ConnectionMonitor::ConnectionChangedMessage>();
    if (changed == nullptr) {
        return;  // another type whose name hashes alike
    }
    std::function<void(bool)> callback;
    {
        std::lock_guard lock(callbackMutex);
        callback = connectionChangedCallback;
    }
    callback(changed->isConnected);
}

}  // namespace vantrokelui::model
