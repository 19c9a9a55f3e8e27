// A loopback TCP port that refuses every connection and that nothing else can take: a socket
// bound to it that never listens. Connecting to a port merely left free is not enough on
// loopback: another test's server may bind it, or the kernel may pick it as the source port
// of the very connection, which then connects to itself and waits for an answer that never
// comes. Owned by one test.
//
//   testsupport::ClosedPort closed;                       // any free port
//   testsupport::ClosedPort held(server.Port());          // a port a stopped server let go
#pragma once

namespace testsupport {

class ClosedPort {
public:
    /// Binds a free port. Throws std::system_error when no socket can be bound.
    ClosedPort() : ClosedPort(0) {}
    /// Binds `port` (0 for any), which may still have connections in TIME_WAIT. Throws
    /// std::system_error when it is in use.
    explicit ClosedPort(unsigned short port);
    ~ClosedPort();
    ClosedPort(const ClosedPort&) = delete;
    ClosedPort& operator=(const ClosedPort&) = delete;

    unsigned short Port() const { return port; }

private:
    int socket = -1;
    unsigned short port = 0;
};

}  // namespace testsupport
