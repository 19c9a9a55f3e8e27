// A program run by a test as a child process, with its stdout and stderr collected by two reader
// threads: a test can wait for a line on stdout (the progress of vantro-share, say), send the
// child a signal, and wait for its exit. The child inherits the test's environment. Owned by one
// test; the test's thread (the readers only append under the mutex).
//
//   ChildProcess share({VANTRO_SHARE_EXECUTABLE, "share", ...});
//   ASSERT_TRUE(share.WaitForLine([](const std::string& l) { return l.rfind("encoding", 0) == 0;
//   })); share.Signal(SIGINT); EXPECT_EQ(share.Wait(), 130);
#pragma once

#include <sys/types.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace hosttest {

class ChildProcess {
public:
    struct Result {
        int exitCode = -1;  ///< the exit status, or 128 + the signal that ended it
        std::string out;
        std::string err;
    };

    /// Starts argv[0] with the arguments; throws std::runtime_error when it cannot start.
    explicit ChildProcess(std::vector<std::string> argv, const std::string& input = {});
    /// Kills a child still running and waits for it.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Runs to the end and returns what it printed.
    static Result Run(std::vector<std::string> argv, const std::string& input = {});

    /// Waits until a line of stdout satisfies `matches` (a wall-clock bound for a broken run
    /// only); whether one did.
    bool WaitForLine(const std::function<bool(const std::string&)>& matches,
                     std::chrono::seconds limit = std::chrono::seconds(120));
    /// The same for a line of stderr.
    bool WaitForErrorLine(const std::function<bool(const std::string&)>& matches,
                          std::chrono::seconds limit = std::chrono::seconds(120));
    void Signal(int signal) const;
    /// Waits for the exit and for both outputs to end; the exit code as Result says.
    int Wait();
    Result Finish();

    std::string Out() const;
    std::string Err() const;

private:
    void Read(int fd, std::string& into);
    bool WaitForLineIn(const std::string& text,
                       const std::function<bool(const std::string&)>& matches,
                       std::chrono::seconds limit);

    pid_t child = -1;
    int exitCode = -1;
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::string out;
    std::string err;
    std::thread outReader;
    std::thread errReader;
};

}  // namespace hosttest
