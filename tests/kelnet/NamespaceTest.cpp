// The monitor in a network of the test's own: each test runs this program again as the
// namespace probe inside `unshare --user --map-root-user --net` and reads what it printed.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>

#include "NamespaceProbe.h"

namespace {

struct Outcome {
    int exitCode = -1;
    std::string output;
};

Outcome RunCommand(const std::string& command) {
    Outcome outcome;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) {
        throw std::system_error(errno, std::generic_category(), "popen");
    }
    std::array<char, 512> chunk{};
    while (std::fgets(chunk.data(), static_cast<int>(chunk.size()), pipe) != nullptr) {
        outcome.output += chunk.data();
    }
    const int status = ::pclose(pipe);
    outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return outcome;
}

std::string ReadSetting(const char* path) {
    std::ifstream file(path);
    std::string value;
    file >> value;
    return value;
}

// Why this machine cannot make a user and network namespace without privileges, or nothing
// when it can. Anything else that stops unshare is a failure, not a reason to skip.
std::optional<std::string> NamespacesForbidden() {
    const Outcome trial = RunCommand("unshare --user --map-root-user --net true 2>&1");
    if (trial.exitCode == 0) {
        return std::nullopt;
    }
    if (ReadSetting("/proc/sys/kernel/unprivileged_userns_clone") == "0") {
        return "kernel.unprivileged_userns_clone is 0: " + trial.output;
    }
    if (ReadSetting("/proc/sys/user/max_user_namespaces") == "0") {
        return "user.max_user_namespaces is 0: " + trial.output;
    }
    if (ReadSetting("/proc/sys/kernel/apparmor_restrict_unprivileged_userns") == "1") {
        return "kernel.apparmor_restrict_unprivileged_userns is 1: " + trial.output;
    }
    if (trial.output.find("Operation not permitted") != std::string::npos ||
        trial.output.find("Invalid argument") != std::string::npos) {
        return "unshare is refused: " + trial.output;
    }
    ADD_FAILURE() << "unshare failed (" << trial.exitCode << "): " << trial.output;
    return std::nullopt;
}

std::string ThisProgram() {
    std::array<char, 4096> path{};
    const ssize_t length = ::readlink("/proc/self/exe", path.data(), path.size() - 1);
    if (length <= 0) {
        throw std::system_error(errno, std::generic_category(), "readlink /proc/self/exe");
    }
    return std::string(path.data(), static_cast<std::size_t>(length));
}

class ConnectionMonitorNamespaceTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (const auto reason = NamespacesForbidden()) {
            GTEST_SKIP() << "no unprivileged network namespace on this machine: " << *reason;
        }
    }

    // The probe's standard output; its failures go to the test's log through stderr.
    static Outcome RunProbe(const std::string& scenario) {
        return RunCommand("unshare --user --map-root-user --net '" + ThisProgram() + "' " +
                          std::string(kelnettest::NamespaceProbe::kOption) + " " + scenario);
    }
};

TEST_F(ConnectionMonitorNamespaceTest, ALinkDownThenUpSendsFalseThenTrue) {
    const Outcome probe = RunProbe("link-down-up");
    EXPECT_EQ(probe.exitCode, 0);
    EXPECT_EQ(probe.output,
              "state Connected\n"
              "message false\n"
              "message true\n"
              "state Connected\n"
              "state Unknown\n");
}

TEST_F(ConnectionMonitorNamespaceTest, ChangesThatLeaveTheJudgementAsItWasSendNothing) {
    const Outcome probe = RunProbe("unrelated-change");
    EXPECT_EQ(probe.exitCode, 0);
    EXPECT_EQ(probe.output,
              "state Connected\n"
              "message false\n");
}

TEST_F(ConnectionMonitorNamespaceTest, AnAddressWithoutARouteIsDisconnected) {
    const Outcome probe = RunProbe("no-route");
    EXPECT_EQ(probe.exitCode, 0);
    EXPECT_EQ(probe.output, "state Disconnected\n");
}

TEST_F(ConnectionMonitorNamespaceTest, ALoopbackServiceComesOnlineWithTheLoopbackLink) {
    const Outcome probe = RunProbe("loopback-up");
    EXPECT_EQ(probe.exitCode, 0);
    EXPECT_EQ(probe.output,
              "state Disconnected\n"
              "message true\n");
}

TEST_F(ConnectionMonitorNamespaceTest, ADefaultRouteConnectsAndItsRemovalDisconnects) {
    const Outcome probe = RunProbe("default-route");
    EXPECT_EQ(probe.exitCode, 0);
    EXPECT_EQ(probe.output,
              "state Disconnected\n"
              "message true\n"
              "message false\n");
}

TEST_F(ConnectionMonitorNamespaceTest, AnIpv6AddressOnTheSubnetConnectsAndItsRemovalDisconnects) {
    const Outcome probe = RunProbe("ipv6-address");
    EXPECT_EQ(probe.exitCode, 0);
    EXPECT_EQ(probe.output,
              "state Disconnected\n"
              "message true\n"
              "message false\n");
}

}  // namespace
