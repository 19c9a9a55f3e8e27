// The station registry's entry for Listener's destructor.
#pragma once

namespace kelcore::messaging {
class Listener;
}

namespace kelcore::messaging::detail {

/// Removes `listener` from every station, as RemoveRawListener does for one. Any thread.
void RemoveRawListenerFromAllStations(const Listener* listener);

}  // namespace kelcore::messaging::detail
