// The namespace probe: kelnet_tests run again, inside a user and network namespace of its own
// (`unshare --user --map-root-user --net kelnet_tests --namespace-probe <scenario>`), where it
// may make links, addresses and routes with `ip` without touching the machine. Each scenario
// starts the connection monitor, changes the namespace's network and prints one line per
// judgement read and per message received; it exits non-zero at the first failure, saying
// why on stderr. Single-threaded apart from the monitor's own thread.
#pragma once

#include <string_view>

namespace kelnettest {

class NamespaceProbe {
public:
    NamespaceProbe() = delete;

    /// The option that makes the test program run a scenario instead of its tests.
    static constexpr std::string_view kOption = "--namespace-probe";

    /// Runs `scenario`; returns the process's exit code (0 when every step went as expected).
    static int Run(std::string_view scenario);
};

}  // namespace kelnettest
