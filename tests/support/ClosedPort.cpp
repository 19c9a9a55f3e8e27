#include "support/ClosedPort.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace testsupport {

namespace {
[[noreturn]] void ThrowErrno(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}
}  // namespace

ClosedPort::ClosedPort(unsigned short wanted) {
    socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (socket < 0) {
        ThrowErrno("socket");
    }
    // Without it, the connections a stopped server left in TIME_WAIT would refuse the bind.
    const int on = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(wanted);
    socklen_t length = sizeof(address);
    if (::bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0 ||
        ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        const int error = errno;
        ::close(socket);
        errno = error;
        ThrowErrno("binding a closed port");
    }
    port = ntohs(address.sin_port);
}

ClosedPort::~ClosedPort() {
    ::close(socket);
}

}  // namespace testsupport
