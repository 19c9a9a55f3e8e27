#include <kelnet/ConnectionMonitor.h>

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include <kelcore/debug/Trace.h>
#include <kelcore/logging/Logging.h>
#include <kelcore/messaging/Messaging.h>
#include <vantrocommon/ServiceEndpoint.h>

#include "EndpointResolver.h"
#include "FileDescriptor.h"
#include "RouteQuery.h"

namespace kelnet {

namespace {

constexpr const char* kTraceCategory = "kelnet";

// One run of the monitor, from the first Start to the last Stop. Its thread holds it too, so a
// last Stop made by a listener on that very thread can let the thread finish on its own.
class Session {
public:
    // Subscribes to the changes before the first judgement, so none falls between the two.
    void Open() {
        wakeUp.Reset(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
        if (!wakeUp.IsValid()) {
            // Without it Stop could not interrupt the wait; nothing to watch with then.
            kelcore::debug::Trace(kTraceCategory, 1,
                                  std::string("No eventfd: ") + std::strerror(errno));
            return;
        }
        detail::FileDescriptor socketFd(
            ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE));
        if (!socketFd.IsValid()) {
            kelcore::debug::Trace(kTraceCategory, 1,
                                  std::string("No netlink socket: ") + std::strerror(errno));
            return;
        }
        sockaddr_nl local{};
        local.nl_family = AF_NETLINK;
        local.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR |
                          RTMGRP_IPV4_ROUTE | RTMGRP_IPV6_ROUTE;
        if (::bind(socketFd.Get(), reinterpret_cast<const sockaddr*>(&local), sizeof(local)) != 0) {
            kelcore::debug::Trace(
                kTraceCategory, 1,
                std::string("Cannot subscribe to rtnetlink: ") + std::strerror(errno));
            return;
        }
        changes = std::move(socketFd);
    }

    NetworkState Judge(const std::string& url) {
        const auto addresses = resolver.Resolve(url);
        for (const auto& address : addresses) {
            if (detail::RouteQuery::IsReachable(address)) {
                return NetworkState::Connected;
            }
        }
        return NetworkState::Disconnected;
    }

    void Wake() {
        if (wakeUp.IsValid()) {
            const std::uint64_t one = 1;
            [[maybe_unused]] const auto written = ::write(wakeUp.Get(), &one, sizeof(one));
        }
    }

    void RequestStop() {
        stopping.store(true);
        Wake();
    }

    // Waits until the thread has judged with endpoint `generation`, or has ended.
    void WaitJudged(std::uint64_t generation) {
        std::unique_lock lock(judgedMutex);
        judgedChanged.wait(lock, [&] { return judgedGeneration >= generation || finished; });
    }

    void MarkJudged(std::uint64_t generation) {
        {
            std::lock_guard lock(judgedMutex);
            judgedGeneration = std::max(judgedGeneration, generation);
        }
        judgedChanged.notify_all();
    }

    void MarkFinished() {
        {
            std::lock_guard lock(judgedMutex);
            finished = true;
        }
        judgedChanged.notify_all();
    }

    // The monitor's thread: waits for netlink notifications or a wake-up, drains the burst,
    // then judges once.
    void Run(const std::shared_ptr<Session>& self);

    std::thread thread;
    std::thread::id threadID;

private:
    // Reads every queued notification; their content does not matter, only that something
    // changed. Returns false when the socket is broken and should no longer be watched.
    bool DrainChanges() {
        std::vector<std::uint8_t> buffer(16384);
        for (;;) {
            const ssize_t received = ::recv(changes.Get(), buffer.data(), buffer.size(), 0);
            if (received >= 0) {
                continue;
            }
            if (errno == EAGAIN || errno == EWOULDBLOCK) {
                return true;
            }
            if (errno == EINTR || errno == ENOBUFS) {
                // ENOBUFS: notifications were lost; judging afresh covers them.
                continue;
            }
            kelcore::debug::Trace(kTraceCategory, 1,
                                  std::string("rtnetlink read failed: ") + std::strerror(errno));
            return false;
        }
    }

    void DrainWakeUp() {
        std::uint64_t count = 0;
        [[maybe_unused]] const auto read = ::read(wakeUp.Get(), &count, sizeof(count));
    }

    detail::FileDescriptor wakeUp;
    detail::FileDescriptor changes;
    detail::EndpointResolver resolver;
    std::atomic<bool> stopping{false};

    std::mutex judgedMutex;
    std::condition_variable judgedChanged;
    std::uint64_t judgedGeneration = 0;
    bool finished = false;
};

// Start, Stop, the endpoint and the current session; never held while a listener runs.
std::mutex sMutex;
int sStartCount = 0;
std::shared_ptr<Session> sSession;
std::string sEndpoint;
std::uint64_t sEndpointGeneration = 0;

std::atomic<NetworkState> sState{NetworkState::Unknown};

const kelcore::utility::ImmutableString& StationID() {
    static const kelcore::utility::ImmutableString id("kelnet.ConnectionMonitor");
    return id;
}

std::string EffectiveEndpoint(const std::string& configured) {
    return configured.empty() ? vantrocommon::ServiceEndpoint::Resolve().apiBase : configured;
}

// Stores `judgement` when `session` is still the running one and it differs from the current
// state, then tells the station. Returns at once otherwise.
void Publish(const std::shared_ptr<Session>& session, NetworkState judgement) {
    {
        std::lock_guard lock(sMutex);
        if (sSession != session || sState.load() == judgement) {
            return;
        }
        sState.store(judgement);
    }
    kelcore::debug::Trace(kTraceCategory, 2,
                          judgement == NetworkState::Connected ? "Connected" : "Disconnected");
    try {
        kelcore::messaging::SendMessage(StationID(), ConnectionMonitor::ConnectionChangedMessage{
                                                         judgement == NetworkState::Connected});
    } catch (...) {
        // A listener's failure must not end the monitor's thread.
        kelcore::logging::LogException("kelnet::ConnectionMonitor listener",
                                       std::current_exception());
    }
}

void Session::Run(const std::shared_ptr<Session>& self) {
    std::vector<pollfd> watched;
    while (!stopping.load()) {
        watched.clear();
        if (wakeUp.IsValid()) {
            watched.push_back(pollfd{wakeUp.Get(), POLLIN, 0});
        }
        if (changes.IsValid()) {
            watched.push_back(pollfd{changes.Get(), POLLIN, 0});
        }
        if (watched.empty()) {
            break;
        }
        if (::poll(watched.data(), watched.size(), -1) < 0) {
            if (errno == EINTR) {
                continue;
            }
            kelcore::debug::Trace(kTraceCategory, 1,
                                  std::string("poll failed: ") + std::strerror(errno));
            break;
        }
        for (const auto& entry : watched) {
            if (entry.revents == 0) {
                continue;
            }
            if (entry.fd == wakeUp.Get()) {
                DrainWakeUp();
            } else if (!DrainChanges()) {
                changes.Reset();
            }
        }
        if (stopping.load()) {
            break;
        }
        std::string endpoint;
        std::uint64_t generation = 0;
        {
            std::lock_guard lock(sMutex);
            endpoint = sEndpoint;
            generation = sEndpointGeneration;
        }
        Publish(self, Judge(EffectiveEndpoint(endpoint)));
        MarkJudged(generation);
    }
    MarkFinished();
}

}  // namespace

void ConnectionMonitor::Start() {
    std::lock_guard lock(sMutex);
    if (sStartCount++ > 0) {
        return;
    }
    auto session = std::make_shared<Session>();
    session->Open();
    sState.store(session->Judge(EffectiveEndpoint(sEndpoint)));
    session->MarkJudged(sEndpointGeneration);
    session->thread = std::thread([session] { session->Run(session); });
    session->threadID = session->thread.get_id();
    sSession = std::move(session);
}

void ConnectionMonitor::Stop() {
    std::shared_ptr<Session> session;
    {
        std::lock_guard lock(sMutex);
        if (sStartCount == 0 || --sStartCount > 0) {
            return;
        }
        session = std::exchange(sSession, nullptr);
        sState.store(NetworkState::Unknown);
    }
    session->RequestStop();
    // Joined outside the lock: a listener running on the thread may call Start or Stop.
    if (session->threadID == std::this_thread::get_id()) {
        session->thread.detach();  // the last Stop came from a listener; the thread ends after it
    } else {
        session->thread.join();
    }
}

NetworkState ConnectionMonitor::GetNetworkState() {
    return sState.load();
}

kelcore::utility::ImmutableString ConnectionMonitor::GetStationID() {
    return StationID();
}

void ConnectionMonitor::SetEndpoint(std::string url) {
    std::shared_ptr<Session> session;
    std::uint64_t generation = 0;
    {
        std::lock_guard lock(sMutex);
        sEndpoint = std::move(url);
        generation = ++sEndpointGeneration;
        session = sSession;
    }
    if (!session) {
        return;
    }
    session->Wake();
    // From a listener on the monitor's thread the judgement follows when it returns.
    if (session->threadID != std::this_thread::get_id()) {
        session->WaitJudged(generation);
    }
}

}  // namespace kelnet
