#include <kelcore/messaging/Listener.h>

#include <kelcore/messaging/Messaging.h>

namespace kelcore::messaging {

Listener::~Listener() {
    RemoveRawListenerFromAllStations(this);
}

void Listener::ReceiveRawMessage(const RawMessage&) {}

}  // namespace kelcore::messaging
