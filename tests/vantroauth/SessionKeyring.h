// A private Secret Service for storage tests: a session bus of its own (dbus-daemon) and a
// keyring daemon on it whose login keyring is created and unlocked with a known password, the
// bus address set in DBUS_SESSION_BUS_ADDRESS for the test's life. Expects XDG_DATA_HOME and
// XDG_RUNTIME_DIR to point into the test's temporary directory already. Owned by the test; the
// test's thread. Both daemons are stopped (by their process ids) when it goes.
//
//   SessionKeyring keyring;
//   if (!keyring.Running()) GTEST_SKIP() << keyring.Failure();
//   EXPECT_EQ(keyring.ItemsOfSchema("org.vantrokelui.Token"), 1u);
#pragma once

#include <sys/types.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "support/ScopedEnvironmentVariable.h"

namespace vantroauthtest {

class SessionKeyring {
public:
    SessionKeyring();
    ~SessionKeyring();
    SessionKeyring(const SessionKeyring&) = delete;
    SessionKeyring& operator=(const SessionKeyring&) = delete;

    bool Running() const { return failure.empty(); }
    /// Why the keyring could not be started; empty when it runs.
    const std::string& Failure() const { return failure; }

    /// The number of items of `schema` the Secret Service holds (asked over the bus), or
    /// nothing when it cannot be asked.
    std::optional<std::size_t> ItemsOfSchema(const std::string& schema) const;

    /// Stops the keyring daemon and the bus; the address stays set, so clients find nothing.
    void Stop();

    struct CommandResult {
        int exitCode = -1;
        std::string output;
    };
    /// Runs `args` (looked up in PATH) to completion with `input` on its standard input.
    static CommandResult Run(const std::vector<std::string>& args, const std::string& input = {});

private:
    std::string failure;
    pid_t busPid = -1;
    pid_t keyringPid = -1;
    std::unique_ptr<testsupport::ScopedEnvironmentVariable> address;
};

}  // namespace vantroauthtest
