// A child program for sarvex's tests: started with its standard output piped so a test can
// await a line (sarvex prints "listening on PATH" when ready), signalled, and awaited with a
// deadline through a pidfd. Killed and reaped on destruction if still running. Owned by one
// test, on its thread. `RunToEnd` is the blocking form for short commands (ffmpeg, ffprobe).
//
//   Subprocess server({SarvexProgram(), "serve", "--socket", path});
//   ASSERT_TRUE(server.AwaitLine("listening on", kDeadline));
#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace sarvextest {

using Deadline = std::chrono::steady_clock::time_point;

/// A deadline `seconds` from now: generous, only a broken run reaches it.
Deadline In(std::chrono::seconds seconds);

/// The sarvex program built beside the test program, and the presets the build copied.
std::filesystem::path SarvexProgram();
std::filesystem::path ShippedPresetDirectory();

struct ProgramResult {
    int exitCode = -1;  ///< 128 + signal when a signal ended it
    std::string out, err;
};
/// Runs `arguments` (program searched in PATH) to its end, collecting both outputs.
ProgramResult RunToEnd(const std::vector<std::string>& arguments);

class Subprocess {
public:
    /// Which of the program's outputs AwaitLine reads; the other goes to a file.
    enum class Piped { Output, Errors };

    explicit Subprocess(const std::vector<std::string>& arguments, Piped piped = Piped::Output);
    ~Subprocess();
    Subprocess(const Subprocess&) = delete;
    Subprocess& operator=(const Subprocess&) = delete;

    /// Reads the piped output until a line starting with `prefix`; returns it, or nothing when
    /// the output ends or the deadline passes first.
    std::optional<std::string> AwaitLine(const std::string& prefix, Deadline deadline);
    void Signal(int signal);
    /// Whether it has not been awaited to its exit yet.
    bool Running() const { return pid > 0; }
    /// The exit code (128 + signal when a signal ended it), or nothing at the deadline.
    std::optional<int> AwaitExit(Deadline deadline);
    /// What the program wrote to the output that is not piped; complete once it has exited.
    std::string OtherOutput() const;
    /// Standard error when standard output is piped (the usual case).
    std::string ErrorOutput() const { return OtherOutput(); }

private:
    pid_t pid = -1;
    int output = -1;
    int pidfd = -1;
    std::filesystem::path otherFile;
    std::string pending;
};

}  // namespace sarvextest
