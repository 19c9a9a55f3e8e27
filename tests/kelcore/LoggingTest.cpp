#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/config/kel_exception.h>
#include <kelcore/logging/CapturedLogForTesting.h>
#include <kelcore/logging/Logging.h>

#include "support/ScopedEnvironmentVariable.h"
#include "support/TemporaryDirectory.h"

namespace {

using namespace kelcore::logging;
using testsupport::ScopedEnvironmentVariable;

std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

class LoggingTest : public ::testing::Test {
protected:
    void SetUp() override { ResetLoggingForTesting(); }
    void TearDown() override { ResetLoggingForTesting(); }

    testsupport::TemporaryDirectory stateHome;
    ScopedEnvironmentVariable xdg{"XDG_STATE_HOME", stateHome.Path().string()};
    CapturedLogForTesting log;
};

TEST_F(LoggingTest, LogExceptionWritesOneErrorLineWithWhereTextAndCode) {
    const kelcore::config::kel_exception error("Vantro client name not set",
                                               kelcore::config::MakeResultCode(0xF865001E));
    LogException("vantrokelui::GetVantroClientName", error);

    const auto entries = log.Entries();
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].severity, Severity::Error);
    EXPECT_EQ(entries[0].text,
              "vantrokelui::GetVantroClientName: Vantro client name not set (code 0xF865001E)");
}

TEST_F(LoggingTest, AStandardExceptionHasNoCode) {
    LogException("Reader", std::runtime_error("bad {} input"));
    const auto entries = log.Entries();
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].text, "Reader: bad {} input");
}

TEST_F(LoggingTest, TheExceptionPointerOverloadWritesOneLineAndNothingForNull) {
    LogException("Where", std::exception_ptr());
    EXPECT_TRUE(log.Entries().empty());

    LogException("Where", std::make_exception_ptr(std::logic_error("broken")));
    LogException("Where", std::make_exception_ptr(42));

    const auto entries = log.Entries();
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].text, "Where: broken");
    EXPECT_EQ(entries[1].text, "Where: unknown exception");
}

TEST_F(LoggingTest, LinesGoToTheLogFileInAPrivateDirectory) {
    LogError("first {} line");
    LogInfo("second line");

    const auto path = stateHome.Path() / "vantrokelui" / "vantrokelui.log";
    EXPECT_EQ(LogFilePath(), path);
    const auto text = ReadFile(path);
    EXPECT_NE(text.find("[error] ["), std::string::npos) << text;
    EXPECT_NE(text.find("first {} line\n"), std::string::npos) << text;
    EXPECT_NE(text.find("second line\n"), std::string::npos) << text;
    struct stat info {};
    ASSERT_EQ(::stat(path.parent_path().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u);
}

TEST_F(LoggingTest, AnUnopenableLogFileFallsBackToStderrAndSaysSoOnce) {
    const auto blocker = stateHome.Write("not-a-directory", "x");
    ScopedEnvironmentVariable badHome("XDG_STATE_HOME", blocker.string());
    ResetLoggingForTesting();

    LogError("one");
    LogError("two");

    const auto entries = log.Entries();
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0].severity, Severity::Warning);
    EXPECT_NE(entries[0].text.find("stderr only"), std::string::npos) << entries[0].text;
    EXPECT_EQ(entries[1].text, "one");
    EXPECT_EQ(entries[2].text, "two");
}

TEST_F(LoggingTest, TheLogFileFallsBackToHomeWhenXDGStateHomeIsNotAbsolute) {
    ScopedEnvironmentVariable home("HOME", "/home/someone");
    ScopedEnvironmentVariable relative("XDG_STATE_HOME", "state");
    EXPECT_EQ(LogFilePath(), "/home/someone/.local/state/vantrokelui/vantrokelui.log");
}

TEST_F(LoggingTest, ARelativeHomeFallsBackToTheUserDatabase) {
    ScopedEnvironmentVariable home("HOME", "relative/home");
    ScopedEnvironmentVariable state("XDG_STATE_HOME", std::nullopt);
    const passwd* user = getpwuid(geteuid());
    ASSERT_NE(user, nullptr);
    EXPECT_EQ(LogFilePath(),
              std::filesystem::path(user->pw_dir) / ".local/state/vantrokelui/vantrokelui.log");
}

TEST_F(LoggingTest, EachCaptureSeesOnlyTheLinesOfItsOwnLife) {
    LogInfo("before");
    CapturedLogForTesting later;
    LogInfo("after");
    ASSERT_EQ(later.Entries().size(), 1u);
    EXPECT_EQ(later.Entries()[0].text, "after");
    EXPECT_EQ(log.Entries().size(), 2u);
}

TEST_F(LoggingTest, LinesFromManyThreadsAreAllWritten) {
    constexpr int kThreads = 4;
    constexpr int kPerThread = 100;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([] {
            for (int i = 0; i < kPerThread; ++i) {
                LogInfo("line");
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(log.Entries().size(), static_cast<std::size_t>(kThreads * kPerThread));
}

}  // namespace
