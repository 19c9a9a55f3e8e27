#include <kelcore/messaging/Listener.h>

#include "messaging/Stations.h"

namespace kelcore::messaging {

Listener::~Listener() {
    detail::RemoveRawListenerFromAllStations(this);
}

void Listener::ReceiveRawMessage(const RawMessage&) {}

}  // namespace kelcore::messaging
