// The machine's connectivity to the service, watched through rtnetlink. "Connected" means the
// configured service endpoint (vantrocommon::ServiceEndpoint, or the URL given to SetEndpoint)
// has a route through an interface that is up and running, so a service on loopback is online
// while every other link is down. Link, address and route changes are read as they happen (no
// polling); each change of the judgement is sent as one ConnectionChangedMessage to the
// monitor's station, on the monitor's own thread. A burst of kernel notifications (a link
// going down drops its addresses and routes too) yields at most one message.
//
// Process-wide. Start and Stop are counted: the first Start opens the netlink socket, judges
// the state and starts the thread; the last Stop joins the thread and closes the socket.
//
//   kelnet::ConnectionMonitor::Start();
//   kelcore::messaging::AddRawListener(kelnet::ConnectionMonitor::GetStationID(), &listener);
//   bool online = kelnet::ConnectionMonitor::GetNetworkState() == kelnet::NetworkState::Connected;
#pragma once

#include <string>

#include <kelcore/utility/ImmutableString.h>
#include <kelnet/NetworkState.h>

namespace kelnet {

class ConnectionMonitor {
public:
    /// Sent to GetStationID() on the monitor's thread when the judgement changes.
    struct ConnectionChangedMessage {
        bool isConnected = false;
    };

    ConnectionMonitor() = delete;

    /// Any thread. Counts one user; the first one starts watching and judges before it returns
    /// (that first judgement is read with GetNetworkState, not sent). When the kernel refuses
    /// a netlink socket the monitor still runs and judges Disconnected, with a trace saying why.
    static void Start();

    /// Any thread. Ends one user's count; the last one stops watching and joins the thread, so
    /// no message is sent after it returns (a name lookup under way is waited for). Called by a
    /// listener on the monitor's thread, it lets that thread end on its own after the listener.
    /// More Stops than Starts do nothing.
    static void Stop();

    /// Any thread. The current judgement; Unknown while not started.
    static NetworkState GetNetworkState();

    /// Any thread. The station the messages go to, "kelnet.ConnectionMonitor".
    static kelcore::utility::ImmutableString GetStationID();

    /// Any thread. The URL whose host decides; empty (the default) for the configured service
    /// endpoint's API base, read again at each judgement. When running, the monitor's thread
    /// judges again and sends a change before this returns (from a listener on that thread,
    /// just after the listener returns); else it takes effect at the next Start.
    static void SetEndpoint(std::string url);
};

}  // namespace kelnet
