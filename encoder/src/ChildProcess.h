// One running child program (ffmpeg, ffprobe) driven from an Asio io_context: its standard
// output arrives line by line, the last lines of its standard error are kept for messages, and
// its exit is awaited without blocking. Lives on the io_context's thread; the owner holds it by
// shared_ptr and pending operations keep it alive until the child has been reaped. The child
// runs in its own process group, so a terminal's Ctrl-C reaches sarvex alone and sarvex decides.
//
// Written over posix_spawn and a pidfd rather than Boost.Process: in Boost 1.81 that library
// needs the compiled Boost.Filesystem 1.81, which the toolchain does not ship.
//
//   auto child = ChildProcess::Start(io, {"ffprobe", path}, onLine, onExit);
//   child->Stop(std::chrono::seconds(2));  // SIGTERM, SIGKILL after the grace
#pragma once

#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/steady_timer.hpp>

namespace sarvex {

class ChildProcess : public std::enable_shared_from_this<ChildProcess> {
public:
    /// How the child ended.
    struct Outcome {
        bool started = false;  ///< false: it never ran; `startError` says why
        std::string startError;
        int exitCode = -1;                    ///< the exit status when it exited normally
        int signal = 0;                       ///< the signal that ended it, 0 when it exited
        std::vector<std::string> errorLines;  ///< its last non-empty standard error lines

        bool Succeeded() const { return started && signal == 0 && exitCode == 0; }
        /// "exit code 1: <last error lines>" or "stopped by signal 9", for messages.
        std::string Describe() const;
    };
    using LineHandler = std::function<void(std::string_view line)>;
    using ExitHandler = std::function<void(const Outcome& outcome)>;

    /// Starts `arguments[0]` (searched in PATH) with the rest as its arguments and standard
    /// input from /dev/null. `onExit` runs once, on the io_context, after the child is reaped
    /// and both of its output pipes are drained; also when it could not start.
    static std::shared_ptr<ChildProcess> Start(boost::asio::io_context& io,
                                               std::vector<std::string> arguments,
                                               LineHandler onOutputLine, ExitHandler onExit);

    /// Kills and reaps a child still running (nothing is ever left orphaned).
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Asks the child to end with SIGTERM and sends SIGKILL if it is still there after `grace`.
    /// Does nothing once it has ended.
    void Stop(std::chrono::milliseconds grace);

    /// Whether the child has not been reaped yet.
    bool Running() const { return pid > 0; }

private:
    explicit ChildProcess(boost::asio::io_context& io);

    void ReadOutput();
    void ReadErrors();
    void AwaitExit();
    void Reap();
    void FinishIfDone();
    void KeepErrorText(std::string_view text);

    boost::asio::posix::stream_descriptor output;
    boost::asio::posix::stream_descriptor errors;
    boost::asio::posix::stream_descriptor exitWatch;
    boost::asio::steady_timer killTimer;
    int pid = -1;
    bool outputDone = false;
    bool errorsDone = false;
    bool reaped = false;
    std::string outputBuffer;
    std::string errorText;
    std::array<char, 4096> errorChunk{};
    Outcome outcome;
    LineHandler onOutputLine;
    ExitHandler onExit;
};

}  // namespace sarvex
