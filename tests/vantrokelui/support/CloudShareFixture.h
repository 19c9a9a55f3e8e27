// The common ground of the library's tests of its cloud calls: the real server with ann in the
// account Studio, the team Editors and its project Alpha (root folder `root`), the process
// pointed at it, the SDK started the way the host starts it, and helpers to sign in as the
// host's user. Each test runs in its own process, so the process-wide SDK client and sign-in
// state start empty. The test's thread.
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include "support/SignInServiceFixture.h"

namespace vantrokeluitest {

/// Collects what a callback was called with, and waits for it (a wall-clock bound for a failing
/// test only). Any thread.
template <class T>
class Recorded {
public:
    void Add(T value) {
        std::lock_guard lock(mutex);
        values.push_back(std::move(value));
        changed.notify_all();
    }
    /// Waits until `count` values came; the values so far either way.
    std::vector<T> WaitFor(std::size_t count,
                           std::chrono::seconds limit = std::chrono::seconds(60)) {
        std::unique_lock lock(mutex);
        changed.wait_for(lock, limit, [&] { return values.size() >= count; });
        return values;
    }
    std::vector<T> Values() const {
        std::lock_guard lock(mutex);
        return values;
    }

private:
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::vector<T> values;
};

class CloudShareFixture : public testsupport::SignInServiceFixture {
protected:
    void TearDown() override;

    /// Starts the server (test hooks on, plus `extra`), makes ann's account, team and project,
    /// and calls InitVantroCppSdk with the desktop client and the fixture's redirect URI.
    void StartWorld(std::vector<std::string> extra = {});
    /// The id the library signs in as: the host's user.
    static std::string HomeUser();
    /// Stores a token answer for the host's user, as a command-line sign-in would.
    void StoreToken(int accessTokenTtl = 3600);
    /// VantroConnectorIntegration::SignIn, waiting for its callback; its value.
    bool SignInAndWait();

    std::string studio, editors, alpha, root;
};

}  // namespace vantrokeluitest
