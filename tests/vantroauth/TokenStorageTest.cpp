// Where the tokens are kept: a real Secret Service (a private bus and keyring daemon), memory
// only when no keyring answers, and the opted-in token file with its permissions.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <string>

#include <kelcore/logging/CapturedLogForTesting.h>
#include <vantroauth/ResultCodes.h>
#include <vantroauth/jwt/AuthManager.h>

#include "SessionKeyring.h"
#include "support/SignInServiceFixture.h"

namespace vantroauthtest {
namespace {

namespace jwt = vantroauth::jwt;
using kelcore::logging::CapturedLogForTesting;
using kelcore::logging::Severity;

class TokenStorageTest : public testsupport::SignInServiceFixture {
protected:
    static std::size_t WarningsContaining(const CapturedLogForTesting& log,
                                          const std::string& text) {
        const auto entries = log.Entries();
        return static_cast<std::size_t>(
            std::count_if(entries.begin(), entries.end(), [&](const auto& entry) {
                return entry.severity == Severity::Warning &&
                       entry.text.find(text) != std::string::npos;
            }));
    }

    static unsigned ModeOf(const std::filesystem::path& path) {
        struct stat status {};
        EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
        return status.st_mode & 07777;
    }

    /// A token file as a previous run would have left it, with `mode`.
    void WriteTokenFile(unsigned mode) {
        const auto path = TokenFile();
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << R"({"version":1,"tokens":[{"service":")" << Url("")
                            << R"(","client":"vantrokelui-desktop","profile":"","user":"ann",)"
                            << R"("refresh_token":"r","access_token":"a","expires_at":1,)"
                            << R"("lifetime":60}]})";
        ASSERT_EQ(::chmod(path.c_str(), mode), 0);
    }
};

TEST_F(TokenStorageTest, TokensSurviveARestartThroughTheKeyring) {
    SessionKeyring keyring;
    if (!keyring.Running()) {
        GTEST_SKIP() << "no private Secret Service could run here: " << keyring.Failure();
    }
    CapturedLogForTesting log;
    StartService();
    ASSERT_TRUE(Initialize().IsSuccess());
    EXPECT_EQ(WarningsContaining(log, "no keyring answers"), 0u);
    const std::string answer = IssueTokenAnswer();
    ASSERT_TRUE(jwt::StoreTokenAnswer(kUser, answer).IsSuccess());
    EXPECT_EQ(keyring.ItemsOfSchema("org.vantrokelui.Token"), std::optional<std::size_t>(1));

    ASSERT_TRUE(Initialize().IsSuccess());  // a restart of the manager: memory starts empty

    EXPECT_TRUE(jwt::AccessTokenExists(kUser).IsSuccess());
    const auto token = Await(jwt::GetAccessToken(false));
    ASSERT_EQ(token.result, 0);
    EXPECT_NE(answer.find("\"" + token.value + "\""), std::string::npos);
    EXPECT_EQ(MeStatus(token.value), 200);
    EXPECT_FALSE(std::filesystem::exists(TokenFile()));

    EXPECT_TRUE(jwt::Logout().IsSuccess());
    EXPECT_EQ(keyring.ItemsOfSchema("org.vantrokelui.Token"), std::optional<std::size_t>(0));
    ASSERT_TRUE(Initialize().IsSuccess());
    EXPECT_EQ(jwt::AccessTokenExists(kUser).GetResult(), vantroauth::kResultNotSignedIn);
}

TEST_F(TokenStorageTest, ProfilesKeepTheirTokensApartInTheKeyring) {
    SessionKeyring keyring;
    if (!keyring.Running()) {
        GTEST_SKIP() << "no private Secret Service could run here: " << keyring.Failure();
    }
    StartService();
    ASSERT_TRUE(Initialize().IsSuccess());
    ASSERT_TRUE(jwt::StoreTokenAnswer(kUser, IssueTokenAnswer()).IsSuccess());

    ASSERT_TRUE(jwt::InitializeAuthManager(kClientId, kRedirectUri,
                                           vantrocommon::EnvironmentType::Configured, "second")
                    .IsSuccess());

    EXPECT_EQ(jwt::AccessTokenExists(kUser).GetResult(), vantroauth::kResultNotSignedIn);
    ASSERT_TRUE(Initialize().IsSuccess());
    EXPECT_TRUE(jwt::AccessTokenExists(kUser).IsSuccess());
}

TEST_F(TokenStorageTest, WithoutABusTokensLiveInMemoryOnlyAndAWarningSaysSo) {
    CapturedLogForTesting log;
    StartService();

    ASSERT_TRUE(Initialize().IsSuccess());

    EXPECT_EQ(WarningsContaining(log, "kept in memory only"), 1u);
    ASSERT_TRUE(jwt::StoreTokenAnswer(kUser, IssueTokenAnswer()).IsSuccess());
    EXPECT_TRUE(jwt::AccessTokenExists(kUser).IsSuccess());
    EXPECT_FALSE(std::filesystem::exists(TokenFile()));  // never a silent plain-text file
    ASSERT_TRUE(Initialize().IsSuccess());
    EXPECT_EQ(jwt::AccessTokenExists(kUser).GetResult(), vantroauth::kResultNotSignedIn);
}

TEST_F(TokenStorageTest, TheOptedInFileIsPrivateAndSurvivesARestart) {
    AllowTokenFile();
    CapturedLogForTesting log;
    StartService();

    ASSERT_TRUE(Initialize().IsSuccess());
    EXPECT_EQ(WarningsContaining(log, "stored in plain text in " + TokenFile().string()), 1u);
    EXPECT_EQ(WarningsContaining(log, "kept in memory only"), 0u);
    const std::string answer = IssueTokenAnswer();
    ASSERT_TRUE(jwt::StoreTokenAnswer(kUser, answer).IsSuccess());

    ASSERT_TRUE(std::filesystem::exists(TokenFile()));
    EXPECT_EQ(ModeOf(TokenFile()), 0600u);
    EXPECT_EQ(ModeOf(TokenFile().parent_path()), 0700u);
    ASSERT_TRUE(Initialize().IsSuccess());
    EXPECT_TRUE(jwt::AccessTokenExists(kUser).IsSuccess());
    const auto token = Await(jwt::GetAccessToken(false));
    ASSERT_EQ(token.result, 0);
    EXPECT_NE(answer.find("\"" + token.value + "\""), std::string::npos);
    // No temporary file is left beside it.
    std::size_t files = 0;
    for ([[maybe_unused]] const auto& entry :
         std::filesystem::directory_iterator(TokenFile().parent_path())) {
        ++files;
    }
    EXPECT_EQ(files, 1u);
}

TEST_F(TokenStorageTest, TheDebugDatabaseOptsInToTheFile) {
    std::ofstream(directory.Path() / "debug.conf") << "VantroAuth.AllowTokenFile=true\n";
    StartService();

    ASSERT_TRUE(Initialize().IsSuccess());
    ASSERT_TRUE(jwt::StoreTokenAnswer(kUser, IssueTokenAnswer()).IsSuccess());

    EXPECT_TRUE(std::filesystem::exists(TokenFile()));
}

TEST_F(TokenStorageTest, OnlyTheExactWordTrueOptsIn) {
    std::ofstream(directory.Path() / "debug.conf") << "VantroAuth.AllowTokenFile=TRUE\n";
    SetEnvironment("VANTRO_ALLOW_TOKEN_FILE", "yes");
    StartService();

    ASSERT_TRUE(Initialize().IsSuccess());
    ASSERT_TRUE(jwt::StoreTokenAnswer(kUser, IssueTokenAnswer()).IsSuccess());

    EXPECT_FALSE(std::filesystem::exists(TokenFile()));
}

TEST_F(TokenStorageTest, ATokenFileOthersMayReadIsRefused) {
    AllowTokenFile();
    StartService();
    WriteTokenFile(0644);

    const auto response = Initialize();

    EXPECT_EQ(response.GetResult(), vantroauth::kResultStorageFailure);
    EXPECT_NE(response.GetMessage().find("0600"), std::string::npos) << response.GetMessage();
    EXPECT_EQ(jwt::AccessTokenExists(kUser).GetResult(), vantroauth::kResultNotInitialized);
}

TEST_F(TokenStorageTest, ATokenFileTheGroupMayReadIsRefused) {
    AllowTokenFile();
    StartService();
    WriteTokenFile(0640);

    EXPECT_EQ(Initialize().GetResult(), vantroauth::kResultStorageFailure);
}

TEST_F(TokenStorageTest, APrivateTokenFileFromAnEarlierRunIsRead) {
    AllowTokenFile();
    StartService();
    WriteTokenFile(0600);

    ASSERT_TRUE(Initialize().IsSuccess());

    EXPECT_TRUE(jwt::AccessTokenExists(kUser).IsSuccess());  // it holds a refresh token
}

}  // namespace
}  // namespace vantroauthtest
