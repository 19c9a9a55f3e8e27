#include "ChildProcess.h"

#include <signal.h>

#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <boost/asio/io_context.hpp>

namespace {

using namespace std::chrono_literals;
using sarvex::ChildProcess;

// Runs `arguments` on a fresh io_context until its exit handler has run; `whenStarted` may act
// on the child first. The io_context runs until no work is left, bounded for a broken run.
struct Run {
    std::vector<std::string> lines;
    std::optional<ChildProcess::Outcome> outcome;
};

Run RunChild(std::vector<std::string> arguments,
             const std::function<void(ChildProcess&)>& whenStarted = {},
             const std::function<void(ChildProcess&, std::string_view)>& onLine = {}) {
    boost::asio::io_context io;
    Run run;
    std::weak_ptr<ChildProcess> weakChild;
    auto child = ChildProcess::Start(
        io, std::move(arguments),
        [&](std::string_view line) {
            run.lines.emplace_back(line);
            if (auto locked = weakChild.lock(); locked && onLine)
                onLine(*locked, line);
        },
        [&](const ChildProcess::Outcome& outcome) { run.outcome = outcome; });
    weakChild = child;
    if (whenStarted)
        whenStarted(*child);
    child.reset();
    io.run_for(60s);
    return run;
}

TEST(ChildProcess, DeliversOutputLinesExitCodeAndTheLastErrorLines) {
    const auto run = RunChild(
        {"sh", "-c", "echo one; printf 'two\\r\\nthree'; echo oops >&2; echo worse >&2; exit 3"});

    ASSERT_TRUE(run.outcome);
    EXPECT_TRUE(run.outcome->started);
    EXPECT_EQ(run.outcome->exitCode, 3);
    EXPECT_EQ(run.outcome->signal, 0);
    EXPECT_FALSE(run.outcome->Succeeded());
    EXPECT_EQ(run.lines, (std::vector<std::string>{"one", "two", "three"}));
    EXPECT_EQ(run.outcome->errorLines, (std::vector<std::string>{"oops", "worse"}));
    EXPECT_EQ(run.outcome->Describe(), "exit code 3:\noops\nworse");
}

TEST(ChildProcess, KeepsOnlyTheLastFewErrorLines) {
    const auto run = RunChild({"sh", "-c", "for i in 1 2 3 4 5 6 7 8 9 10; do echo e$i >&2; done"});

    ASSERT_TRUE(run.outcome);
    EXPECT_TRUE(run.outcome->Succeeded());
    ASSERT_FALSE(run.outcome->errorLines.empty());
    EXPECT_LT(run.outcome->errorLines.size(), 10u);
    EXPECT_EQ(run.outcome->errorLines.back(), "e10");
}

TEST(ChildProcess, AProgramThatIsNotThereNeverStarts) {
    const auto run = RunChild({"sarvex-test-no-such-program"});

    ASSERT_TRUE(run.outcome);
    EXPECT_FALSE(run.outcome->started);
    EXPECT_NE(run.outcome->Describe().find("sarvex-test-no-such-program"), std::string::npos);
}

TEST(ChildProcess, StopEndsAProgramWithSigterm) {
    // Stops once the child has shown it runs, so the signal cannot land before it starts.
    const auto run = RunChild({"sh", "-c", "echo ready; exec sleep 600"}, {},
                              [](ChildProcess& child, std::string_view) { child.Stop(60s); });

    ASSERT_TRUE(run.outcome);
    EXPECT_EQ(run.outcome->signal, SIGTERM);
}

TEST(ChildProcess, StopKillsAProgramThatIgnoresSigtermAfterTheGrace) {
    const auto run = RunChild({"sh", "-c", "trap '' TERM; echo ready; exec sleep 600"}, {},
                              [](ChildProcess& child, std::string_view) { child.Stop(200ms); });

    ASSERT_TRUE(run.outcome);
    EXPECT_EQ(run.outcome->signal, SIGKILL);
}

TEST(ChildProcess, StopAlsoEndsWhatTheProgramStarted) {
    // The shell stays and its sleeping child holds the output pipe: both must go.
    const auto run = RunChild({"sh", "-c", "echo ready; sleep 600; echo never"}, {},
                              [](ChildProcess& child, std::string_view) { child.Stop(60s); });

    ASSERT_TRUE(run.outcome);
    EXPECT_EQ(run.outcome->signal, SIGTERM);
    EXPECT_EQ(run.lines, std::vector<std::string>{"ready"});
}

}  // namespace
