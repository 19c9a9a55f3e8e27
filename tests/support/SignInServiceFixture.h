// The common ground of tests that sign in to the service: the real server with the user "ann", the
// process pointed at it (VANTRO_SERVICE_URL), and every place the library or kelcore writes to
// (XDG directories, the debug database, the log) moved into a temporary directory. The session
// bus address points nowhere unless a test starts its own keyring, so tokens are kept in memory
// unless a test opts in to the token file. The test's thread.
//
//   class SignInTest : public testsupport::SignInServiceFixture {};
//   TEST_F(SignInTest, ...) {
//       StartService();
//       ASSERT_TRUE(Initialize().IsSuccess());
//   }
#pragma once

#include <filesystem>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <vector>

#include <kelcore/async/Future.h>
#include <vantrocommon/Response.h>

#include "support/ScopedEnvironmentVariable.h"
#include "support/TemporaryDirectory.h"
#include "support/VantroServerFixture.h"

namespace testsupport {

class SignInServiceFixture : public VantroServerFixture {
protected:
    static constexpr const char* kUser = "ann";
    static constexpr const char* kPassword = "secret";

    void SetUp() override;
    void TearDown() override;

    /// Adds the user, starts the server with `extra` arguments and points the process at it.
    void StartService(std::vector<std::string> extra = {});
    /// InitializeAuthManager for the desktop client and the fixture's redirect URI.
    vantrocommon::Response Initialize();
    /// Sets an environment variable for the rest of the test (nullopt unsets it).
    void SetEnvironment(const std::string& name, std::optional<std::string> value);
    /// Opts in to the token file through the environment.
    void AllowTokenFile() { SetEnvironment("VANTRO_ALLOW_TOKEN_FILE", "1"); }

    struct Outcome {
        int result = 0;  ///< 0, or the failure's code.
        std::string value;
    };
    /// Waits for `future` (a wall-clock bound for a failing test only) on this thread; the
    /// library completes futures on its executors.
    static Outcome Await(const kelcore::async::Future<std::string>& future);
    /// `vantro-server token issue` for the user, parsed back from its single line.
    std::string IssueTokenAnswer(int accessTokenTtl = 3600);

    /// $XDG_CONFIG_HOME/vantrokelui/tokens.json.
    std::filesystem::path TokenFile() const;
    /// The refresh token the token file holds for `user`; empty when none.
    std::string StoredRefreshToken(const std::string& user = kUser) const;
    /// The status of GET /v2/me with `accessToken`.
    long MeStatus(const std::string& accessToken);
    /// The status of a refresh at the token endpoint with `refreshToken`, done by the test
    /// itself. A refused token answers 400; a rotated one also revokes its family.
    long RefreshStatus(const std::string& refreshToken);

    TemporaryDirectory directory;
    std::vector<std::unique_ptr<ScopedEnvironmentVariable>> environment;
};

}  // namespace testsupport
