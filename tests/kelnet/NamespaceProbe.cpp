#include "NamespaceProbe.h"

#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstring>
#include <functional>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include <kelnet/ConnectionMonitor.h>

#include "MessageRecorder.h"

extern char** environ;

namespace kelnettest {

namespace {

using kelnet::ConnectionMonitor;
using kelnet::NetworkState;

struct ProbeFailure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Runs `ip` with `arguments` in this process's namespaces and waits for it.
void Ip(const std::vector<std::string>& arguments) {
    std::vector<std::string> words{"ip"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    std::string command;
    for (auto& word : words) {
        argv.push_back(word.data());
        command += word + " ";
    }
    argv.push_back(nullptr);
    pid_t child = 0;
    const int spawned = ::posix_spawnp(&child, "ip", nullptr, nullptr, argv.data(), environ);
    if (spawned != 0) {
        throw ProbeFailure("cannot run " + command + ": " + std::strerror(spawned));
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) {
            throw ProbeFailure("cannot wait for " + command + ": " + std::strerror(errno));
        }
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        throw ProbeFailure("failed: " + command);
    }
}

// A veth pair, kn0 and kn1, both up, so kn0 has a carrier.
void MakeVethPair() {
    Ip({"link", "add", "kn0", "type", "veth", "peer", "name", "kn1"});
    Ip({"link", "set", "kn1", "up"});
    Ip({"link", "set", "kn0", "up"});
}

const char* StateName(NetworkState state) {
    switch (state) {
        case NetworkState::Unknown:
            return "Unknown";
        case NetworkState::Connected:
            return "Connected";
        case NetworkState::Disconnected:
            return "Disconnected";
    }
    return "?";
}

void PrintState() {
    std::cout << "state " << StateName(ConnectionMonitor::GetNetworkState()) << std::endl;
}

// Waits for the `count`th message and prints it.
void PrintMessage(MessageRecorder& recorder, std::size_t count) {
    if (!recorder.WaitForMessages(count)) {
        throw ProbeFailure("no message " + std::to_string(count) + " in time");
    }
    std::cout << "message " << (recorder.Messages().at(count - 1) ? "true" : "false") << std::endl;
}

// The endpoint's link goes down, then up again.
void LinkDownUp(MessageRecorder& recorder) {
    MakeVethPair();
    Ip({"addr", "add", "10.77.0.1/24", "dev", "kn0"});
    ConnectionMonitor::SetEndpoint("http://10.77.0.2:8080");
    ConnectionMonitor::Start();
    PrintState();
    Ip({"link", "set", "kn0", "down"});
    PrintMessage(recorder, 1);
    Ip({"link", "set", "kn0", "up"});
    PrintMessage(recorder, 2);
    PrintState();
    ConnectionMonitor::Stop();
    PrintState();
}

// Links come and go that the endpoint's route does not use; then the endpoint's link goes down.
// Had the first changes sent anything, the first message would not be the last change's.
void UnrelatedChange(MessageRecorder& recorder) {
    MakeVethPair();
    Ip({"addr", "add", "10.77.0.1/24", "dev", "kn0"});
    ConnectionMonitor::SetEndpoint("http://10.77.0.2:8080");
    ConnectionMonitor::Start();
    PrintState();
    Ip({"link", "add", "kn2", "type", "veth", "peer", "name", "kn3"});
    Ip({"link", "set", "kn3", "up"});
    Ip({"link", "set", "kn2", "up"});
    Ip({"addr", "add", "10.78.0.1/24", "dev", "kn2"});
    Ip({"link", "set", "kn2", "down"});
    Ip({"link", "del", "kn2"});
    Ip({"link", "set", "kn0", "down"});
    PrintMessage(recorder, 1);
    ConnectionMonitor::Stop();
}

// The namespace has no route but loopback's: an address elsewhere is unreachable.
void NoRoute(MessageRecorder&) {
    Ip({"link", "set", "lo", "up"});
    ConnectionMonitor::SetEndpoint("http://10.77.0.2:8080");
    ConnectionMonitor::Start();
    PrintState();
    ConnectionMonitor::Stop();
}

// A service named "localhost" while the namespace's loopback is down, then up.
void LoopbackUp(MessageRecorder& recorder) {
    ConnectionMonitor::SetEndpoint("http://localhost:8080");
    ConnectionMonitor::Start();
    PrintState();
    Ip({"link", "set", "lo", "up"});
    PrintMessage(recorder, 1);
    ConnectionMonitor::Stop();
}

// A default route appears, then goes.
void DefaultRoute(MessageRecorder& recorder) {
    MakeVethPair();
    Ip({"addr", "add", "10.77.0.1/24", "dev", "kn0"});
    ConnectionMonitor::SetEndpoint("http://203.0.113.7:8080");
    ConnectionMonitor::Start();
    PrintState();
    Ip({"route", "add", "default", "via", "10.77.0.2"});
    PrintMessage(recorder, 1);
    Ip({"route", "del", "default"});
    PrintMessage(recorder, 2);
    ConnectionMonitor::Stop();
}

// An IPv6 endpoint whose subnet gets an address on an up link, then loses it.
void Ipv6Address(MessageRecorder& recorder) {
    MakeVethPair();
    ConnectionMonitor::SetEndpoint("http://[fd00:77::2]:8080");
    ConnectionMonitor::Start();
    PrintState();
    Ip({"-6", "addr", "add", "fd00:77::1/64", "dev", "kn0", "nodad"});
    PrintMessage(recorder, 1);
    Ip({"-6", "addr", "del", "fd00:77::1/64", "dev", "kn0"});
    PrintMessage(recorder, 2);
    ConnectionMonitor::Stop();
}

}  // namespace

int NamespaceProbe::Run(std::string_view scenario) {
    static const std::map<std::string_view, std::function<void(MessageRecorder&)>> kScenarios{
        {"link-down-up", LinkDownUp},    {"unrelated-change", UnrelatedChange},
        {"no-route", NoRoute},           {"loopback-up", LoopbackUp},
        {"default-route", DefaultRoute}, {"ipv6-address", Ipv6Address},
    };
    const auto found = kScenarios.find(scenario);
    if (found == kScenarios.end()) {
        std::cerr << "namespace probe: no scenario " << scenario << "\n";
        return 2;
    }
    try {
        MessageRecorder recorder;
        found->second(recorder);
    } catch (const std::exception& e) {
        std::cerr << "namespace probe: " << scenario << ": " << e.what() << "\n";
        ConnectionMonitor::Stop();
        return 1;
    }
    return 0;
}

}  // namespace kelnettest
