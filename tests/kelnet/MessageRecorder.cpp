#include "MessageRecorder.h"

#include <utility>

#include <kelcore/messaging/Messaging.h>
#include <kelnet/ConnectionMonitor.h>

namespace kelnettest {

using kelnet::ConnectionMonitor;

MessageRecorder::MessageRecorder() {
    kelcore::messaging::AddRawListener(ConnectionMonitor::GetStationID(), this);
}

MessageRecorder::~MessageRecorder() {
    // Before the members go: a receive may be running on the monitor's thread.
    kelcore::messaging::RemoveRawListener(ConnectionMonitor::GetStationID(), this);
}

std::vector<bool> MessageRecorder::Messages() {
    std::lock_guard lock(mutex);
    return messages;
}

bool MessageRecorder::WaitForMessages(std::size_t count, std::chrono::seconds limit) {
    std::unique_lock lock(mutex);
    return received.wait_for(lock, limit, [&] { return messages.size() >= count; });
}

void MessageRecorder::SetBeforeKeeping(std::function<void()> action) {
    std::lock_guard lock(mutex);
    beforeKeeping = std::move(action);
}

void MessageRecorder::ReceiveRawMessage(const kelcore::messaging::RawMessage& message) {
    const auto* changed = message.As<ConnectionMonitor::ConnectionChangedMessage>();
    if (changed == nullptr) {
        return;
    }
    std::function<void()> action;
    {
        std::lock_guard lock(mutex);
        action = beforeKeeping;
    }
    {
        std::lock_guard lock(mutex);
        messages.push_back(changed->isConnected);
    }
    received.notify_all();
    if (action) {
        action();
    }
}

}  // namespace kelnettest
