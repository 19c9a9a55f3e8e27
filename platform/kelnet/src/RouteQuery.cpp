#include "RouteQuery.h"

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include <kelcore/debug/Trace.h>

#include "FileDescriptor.h"

namespace kelnet::detail {

namespace {

constexpr std::size_t kNetlinkAlignment = 4;  // NLMSG_ALIGNTO and RTA_ALIGNTO

constexpr std::size_t Align(std::size_t length) {
    return (length + kNetlinkAlignment - 1) & ~(kNetlinkAlignment - 1);
}

constexpr std::size_t kHeaderLength = Align(sizeof(nlmsghdr));

// The kernel's structures are read by copying them out of the byte buffer, which has no
// alignment promise for the compiler.
template <typename T>
T ReadAt(const std::vector<std::uint8_t>& buffer, std::size_t offset) {
    T value{};
    std::memcpy(&value, buffer.data() + offset, sizeof(T));
    return value;
}

// One request: a header, a fixed body and attributes, laid out as rtnetlink expects.
class Request {
public:
    Request(std::uint16_t type, std::uint32_t sequence) {
        nlmsghdr header{};
        header.nlmsg_type = type;
        header.nlmsg_flags = NLM_F_REQUEST;
        header.nlmsg_seq = sequence;
        Append(&header, sizeof(header));
    }

    template <typename Body>
    void AppendBody(const Body& body) {
        Append(&body, sizeof(body));
    }

    void AppendAttribute(std::uint16_t type, const void* data, std::size_t size) {
        rtattr attribute{};
        attribute.rta_type = type;
        attribute.rta_len = static_cast<unsigned short>(Align(sizeof(rtattr)) + size);
        Append(&attribute, sizeof(attribute));
        Append(data, size);
    }

    // Fixes the length in the header; the request is ready to send.
    const std::vector<std::uint8_t>& Finish() {
        const auto length = static_cast<std::uint32_t>(bytes.size());
        std::memcpy(bytes.data() + offsetof(nlmsghdr, nlmsg_len), &length, sizeof(length));
        return bytes;
    }

private:
    void Append(const void* data, std::size_t size) {
        const auto* begin = static_cast<const std::uint8_t*>(data);
        bytes.insert(bytes.end(), begin, begin + size);
        bytes.resize(Align(bytes.size()));
    }

    std::vector<std::uint8_t> bytes;
};

// The reply to one request: the body of its first message of `replyType`, or the kernel's error.
struct Reply {
    std::vector<std::uint8_t> body;
    int error = 0;  // a positive errno when the kernel refused
};

Reply Exchange(Request& request, std::uint16_t replyType) {
    FileDescriptor socketFd(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE));
    if (!socketFd.IsValid()) {
        return Reply{{}, errno};
    }
    const auto& bytes = request.Finish();
    sockaddr_nl kernel{};
    kernel.nl_family = AF_NETLINK;
    if (::sendto(socketFd.Get(), bytes.data(), bytes.size(), 0,
                 reinterpret_cast<const sockaddr*>(&kernel), sizeof(kernel)) < 0) {
        return Reply{{}, errno};
    }
    const auto sequence = ReadAt<nlmsghdr>(bytes, 0).nlmsg_seq;
    std::vector<std::uint8_t> buffer(32768);
    // rtnetlink answers a request while sending it, so the reply is already queued; the loop
    // only skips anything that is not ours.
    for (;;) {
        const ssize_t received = ::recv(socketFd.Get(), buffer.data(), buffer.size(), 0);
        if (received < 0) {
            if (errno == EINTR) {
                continue;
            }
            return Reply{{}, errno};
        }
        const auto length = static_cast<std::size_t>(received);
        for (std::size_t offset = 0; offset + sizeof(nlmsghdr) <= length;) {
            const auto header = ReadAt<nlmsghdr>(buffer, offset);
            if (header.nlmsg_len < sizeof(nlmsghdr) || header.nlmsg_len > length - offset) {
                break;
            }
            const std::size_t bodyOffset = offset + kHeaderLength;
            const std::size_t bodyLength =
                header.nlmsg_len - std::min<std::size_t>(header.nlmsg_len, kHeaderLength);
            if (header.nlmsg_seq == sequence) {
                if (header.nlmsg_type == NLMSG_ERROR && bodyLength >= sizeof(nlmsgerr)) {
                    const auto error = ReadAt<nlmsgerr>(buffer, bodyOffset).error;
                    return Reply{{}, error == 0 ? EPROTO : -error};
                }
                if (header.nlmsg_type == replyType) {
                    return Reply{
                        std::vector<std::uint8_t>(
                            buffer.begin() + static_cast<std::ptrdiff_t>(bodyOffset),
                            buffer.begin() + static_cast<std::ptrdiff_t>(bodyOffset + bodyLength)),
                        0};
                }
                if (header.nlmsg_type == NLMSG_DONE) {
                    return Reply{{}, ENOENT};
                }
            }
            offset += Align(header.nlmsg_len);
        }
    }
}

std::uint32_t NextSequence() {
    static std::atomic<std::uint32_t> sSequence{1};
    return sSequence.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

std::optional<int> RouteQuery::OutputInterface(const IpAddress& address) {
    Request request(RTM_GETROUTE, NextSequence());
    rtmsg route{};
    route.rtm_family = static_cast<unsigned char>(address.family);
    route.rtm_dst_len = static_cast<unsigned char>(address.Size() * 8);
    request.AppendBody(route);
    request.AppendAttribute(RTA_DST, address.bytes.data(), address.Size());
    const Reply reply = Exchange(request, RTM_NEWROUTE);
    if (reply.error != 0 || reply.body.size() < sizeof(rtmsg)) {
        kelcore::debug::Trace("kelnet", 3,
                              "No route to " + address.ToString() + ": " +
                                  std::strerror(reply.error != 0 ? reply.error : EPROTO));
        return std::nullopt;
    }
    const auto answer = ReadAt<rtmsg>(reply.body, 0);
    if (answer.rtm_type != RTN_UNICAST && answer.rtm_type != RTN_LOCAL) {
        // Unreachable, prohibited and blackhole routes answer the lookup but carry nothing.
        return std::nullopt;
    }
    for (std::size_t offset = Align(sizeof(rtmsg)); offset + sizeof(rtattr) <= reply.body.size();) {
        const auto attribute = ReadAt<rtattr>(reply.body, offset);
        if (attribute.rta_len < sizeof(rtattr) || attribute.rta_len > reply.body.size() - offset) {
            break;
        }
        if (attribute.rta_type == RTA_OIF &&
            attribute.rta_len >= Align(sizeof(rtattr)) + sizeof(std::uint32_t)) {
            return static_cast<int>(
                ReadAt<std::uint32_t>(reply.body, offset + Align(sizeof(rtattr))));
        }
        offset += Align(attribute.rta_len);
    }
    return std::nullopt;
}

std::optional<unsigned> RouteQuery::InterfaceFlags(int index) {
    Request request(RTM_GETLINK, NextSequence());
    ifinfomsg link{};
    link.ifi_family = AF_UNSPEC;
    link.ifi_index = index;
    request.AppendBody(link);
    const Reply reply = Exchange(request, RTM_NEWLINK);
    if (reply.error != 0 || reply.body.size() < sizeof(ifinfomsg)) {
        return std::nullopt;
    }
    return ReadAt<ifinfomsg>(reply.body, 0).ifi_flags;
}

bool RouteQuery::IsReachable(const IpAddress& address) {
    const auto index = OutputInterface(address);
    if (!index) {
        return false;
    }
    const auto flags = InterfaceFlags(*index);
    if (!flags) {
        return false;
    }
    const bool up = (*flags & IFF_UP) != 0;
    // Loopback has no carrier to lose: up is enough.
    const bool running = (*flags & IFF_RUNNING) != 0 || (*flags & IFF_LOOPBACK) != 0;
    kelcore::debug::Trace("kelnet", 3,
                          address.ToString() + " leaves by interface " + std::to_string(*index) +
                              (up && running ? ", up" : ", down"));
    return up && running;
}

}  // namespace kelnet::detail
