#include <sys/wait.h>

#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/utility/OpenFileInDefaultApplication.h>

namespace {

using namespace kelcore::utility;

constexpr const char* kMissingProgram = "kelcore-test-no-such-program";

class OpenFileInDefaultApplicationTest : public ::testing::Test {
protected:
    void TearDown() override {
        SetDefaultApplicationOpener({});
        detail::SetDefaultApplicationProgram({});
    }
};

// Starts `program` and waits for the reaper to hand back its wait status.
int SpawnAndWait(const std::string& program, const std::vector<std::string>& args) {
    // Shared, as the reaper thread may still be inside set_value when get() returns here.
    auto exited = std::make_shared<std::promise<int>>();
    auto status = exited->get_future();
    const bool started =
        detail::SpawnDetached(program, args, [exited](int wait) { exited->set_value(wait); });
    EXPECT_TRUE(started) << program;
    if (!started || status.wait_for(std::chrono::seconds(30)) != std::future_status::ready) {
        ADD_FAILURE() << program << " was not reaped";
        return -1;
    }
    return status.get();
}

TEST_F(OpenFileInDefaultApplicationTest, InjectedOpenerGetsThePathAndDecidesTheAnswer) {
    std::vector<std::string> opened;
    SetDefaultApplicationOpener([&](const std::string& url) {
        opened.push_back(url);
        return url.starts_with("https:");
    });
    EXPECT_TRUE(OpenFileInDefaultApplication("https://review.example/r/abc"));
    EXPECT_FALSE(OpenFileInDefaultApplication("/tmp/clip.mp4"));
    EXPECT_EQ(opened, (std::vector<std::string>{"https://review.example/r/abc", "/tmp/clip.mp4"}));
}

TEST_F(OpenFileInDefaultApplicationTest, ProgramThatDoesNotExistCannotBeStarted) {
    detail::SetDefaultApplicationProgram(kMissingProgram);
    EXPECT_FALSE(OpenFileInDefaultApplication("https://review.example/r/abc"));
}

TEST_F(OpenFileInDefaultApplicationTest, ProgramThatExistsIsStarted) {
    detail::SetDefaultApplicationProgram("true");
    EXPECT_TRUE(OpenFileInDefaultApplication("https://review.example/r/abc"));
}

TEST_F(OpenFileInDefaultApplicationTest, EmptyOpenerRestoresTheProgram) {
    detail::SetDefaultApplicationProgram(kMissingProgram);
    SetDefaultApplicationOpener([](const std::string&) { return true; });
    ASSERT_TRUE(OpenFileInDefaultApplication("x"));
    SetDefaultApplicationOpener({});
    EXPECT_FALSE(OpenFileInDefaultApplication("x"));
}

TEST_F(OpenFileInDefaultApplicationTest, ChildIsReapedWithItsExitStatus) {
    const int status = SpawnAndWait("sh", {"-c", "exit 7"});
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 7);
}

TEST_F(OpenFileInDefaultApplicationTest, ArgumentReachesTheProgramUnchangedWithoutAShell) {
    const std::string awkward = "a b;c $(false) 'q' \"d\" *";
    const int status = SpawnAndWait("sh", {"-c", "test \"$1\" = \"$2\"", "sh", awkward, awkward});
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    const int differs = SpawnAndWait("sh", {"-c", "test \"$1\" = \"$2\"", "sh", awkward, "a"});
    EXPECT_EQ(WEXITSTATUS(differs), 1);
}

TEST_F(OpenFileInDefaultApplicationTest, ChildRunsInItsOwnSession) {
    const int status = SpawnAndWait("sh", {"-c", "test \"$(cut -d' ' -f6 /proc/$$/stat)\" -eq $$"});
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace
