#include "ChildProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <sstream>
#include <system_error>
#include <utility>

#include <boost/asio/post.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/streambuf.hpp>

extern char** environ;

namespace sarvex {
namespace {

namespace asio = boost::asio;

// FFmpeg's error lines come last; a few kilobytes hold them with room to spare.
constexpr std::size_t kErrorTextKept = 8192;
constexpr std::size_t kErrorLinesKept = 6;

// Closes a descriptor it holds unless released; keeps the spawning path leak-free.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int fd) : fd(fd) {}
    ~FileDescriptor() {
        if (fd >= 0)
            ::close(fd);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    int Get() const { return fd; }
    int Release() { return std::exchange(fd, -1); }
    void Reset(int other) {
        if (fd >= 0)
            ::close(fd);
        fd = other;
    }

private:
    int fd = -1;
};

std::string ErrorText(int error) {
    return std::generic_category().message(error);
}

}  // namespace

std::string ChildProcess::Outcome::Describe() const {
    if (!started)
        return startError;
    std::ostringstream text;
    if (signal != 0)
        text << "stopped by signal " << signal;
    else
        text << "exit code " << exitCode;
    if (!errorLines.empty()) {
        text << ":";
        for (const auto& line : errorLines)
            text << "\n" << line;
    }
    return text.str();
}

ChildProcess::ChildProcess(asio::io_context& io)
    : output(io), errors(io), exitWatch(io), killTimer(io) {}

std::shared_ptr<ChildProcess> ChildProcess::Start(asio::io_context& io,
                                                  std::vector<std::string> arguments,
                                                  LineHandler onOutputLine, ExitHandler onExit) {
    std::shared_ptr<ChildProcess> child(new ChildProcess(io));
    child->onOutputLine = std::move(onOutputLine);
    child->onExit = std::move(onExit);

    const auto failToStart = [&](const std::string& why) {
        child->outcome.started = false;
        child->outcome.startError = "cannot run " +
                                    (arguments.empty() ? std::string("a program") : arguments[0]) +
                                    ": " + why;
        child->outputDone = child->errorsDone = child->reaped = true;
        asio::post(io, [child] { child->FinishIfDone(); });
        return child;
    };
    if (arguments.empty())
        return failToStart("no program given");

    std::array<int, 2> outputPipe{};
    std::array<int, 2> errorPipe{};
    if (::pipe2(outputPipe.data(), O_CLOEXEC) != 0)
        return failToStart(ErrorText(errno));
    FileDescriptor outputRead(outputPipe[0]), outputWrite(outputPipe[1]);
    if (::pipe2(errorPipe.data(), O_CLOEXEC) != 0)
        return failToStart(ErrorText(errno));
    FileDescriptor errorRead(errorPipe[0]), errorWrite(errorPipe[1]);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, outputWrite.Get(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errorWrite.Get(), STDERR_FILENO);

    // Its own process group, default signal handling and nothing blocked, whatever sarvex
    // itself has set up for its signals.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t defaults;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGINT);
    sigaddset(&defaults, SIGTERM);
    sigaddset(&defaults, SIGPIPE);
    sigaddset(&defaults, SIGHUP);
    sigset_t unblocked;
    sigemptyset(&unblocked);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setsigmask(&attributes, &unblocked);
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setflags(
        &attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);

    std::vector<char*> argv;
    for (auto& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);

    pid_t spawned = -1;
    const int error =
        ::posix_spawnp(&spawned, argv[0], &actions, &attributes, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    if (error != 0)
        return failToStart(ErrorText(error));
    child->pid = spawned;
    child->outcome.started = true;

    FileDescriptor pidfd(static_cast<int>(::syscall(SYS_pidfd_open, spawned, 0)));
    if (pidfd.Get() < 0) {
        // Without a pidfd there is no way to await the exit here; end it at once.
        const auto why = ErrorText(errno);
        ::kill(spawned, SIGKILL);
        int status = 0;
        ::waitpid(spawned, &status, 0);
        child->pid = -1;
        return failToStart("cannot watch the process (" + why + ")");
    }

    outputWrite.Reset(-1);
    errorWrite.Reset(-1);
    child->output.assign(outputRead.Release());
    child->errors.assign(errorRead.Release());
    child->exitWatch.assign(pidfd.Release());
    child->ReadOutput();
    child->ReadErrors();
    child->AwaitExit();
    return child;
}

ChildProcess::~ChildProcess() {
    if (pid > 0) {
        ::kill(-pid, SIGKILL);
        int status = 0;
        ::waitpid(pid, &status, 0);
    }
}

void ChildProcess::Stop(std::chrono::milliseconds grace) {
    if (pid <= 0)
        return;
    // The whole group: helpers the program started go too and cannot hold its pipes open.
    ::kill(-pid, SIGTERM);
    killTimer.expires_after(grace);
    killTimer.async_wait([self = shared_from_this()](const boost::system::error_code& error) {
        if (!error && self->pid > 0)
            ::kill(-self->pid, SIGKILL);
    });
}

void ChildProcess::ReadOutput() {
    asio::async_read_until(
        output, asio::dynamic_buffer(outputBuffer), '\n',
        [self = shared_from_this()](const boost::system::error_code& error, std::size_t length) {
            if (error) {
                if (!self->outputBuffer.empty() && self->onOutputLine)
                    self->onOutputLine(self->outputBuffer);
                self->outputBuffer.clear();
                self->outputDone = true;
                self->output.close();
                self->FinishIfDone();
                return;
            }
            std::string_view line(self->outputBuffer.data(), length - 1);
            if (!line.empty() && line.back() == '\r')
                line.remove_suffix(1);
            if (self->onOutputLine)
                self->onOutputLine(line);
            self->outputBuffer.erase(0, length);
            self->ReadOutput();
        });
}

void ChildProcess::ReadErrors() {
    errors.async_read_some(
        asio::buffer(errorChunk),
        [self = shared_from_this()](const boost::system::error_code& error, std::size_t length) {
            if (error) {
                self->errorsDone = true;
                self->errors.close();
                self->FinishIfDone();
                return;
            }
            self->KeepErrorText(std::string_view(self->errorChunk.data(), length));
            self->ReadErrors();
        });
}

void ChildProcess::KeepErrorText(std::string_view text) {
    errorText.append(text);
    if (errorText.size() > 2 * kErrorTextKept)
        errorText.erase(0, errorText.size() - kErrorTextKept);
}

void ChildProcess::AwaitExit() {
    exitWatch.async_wait(asio::posix::stream_descriptor::wait_read,
                         [self = shared_from_this()](const boost::system::error_code& error) {
                             if (error == asio::error::operation_aborted && self->pid > 0) {
                                 self->AwaitExit();
                                 return;
                             }
                             self->Reap();
                         });
}

void ChildProcess::Reap() {
    if (pid <= 0)
        return;
    int status = 0;
    pid_t result = -1;
    do {
        result = ::waitpid(pid, &status, 0);
    } while (result < 0 && errno == EINTR);
    if (result == pid) {
        if (WIFSIGNALED(status))
            outcome.signal = WTERMSIG(status);
        else if (WIFEXITED(status))
            outcome.exitCode = WEXITSTATUS(status);
    }
    pid = -1;
    reaped = true;
    killTimer.cancel();
    exitWatch.close();
    FinishIfDone();
}

void ChildProcess::FinishIfDone() {
    if (!outputDone || !errorsDone || !reaped || !onExit)
        return;
    // Last non-empty lines; progress redraws use '\r', so both end a line.
    std::vector<std::string> lines;
    std::string current;
    for (const char c : errorText) {
        if (c == '\n' || c == '\r') {
            if (!current.empty())
                lines.push_back(std::move(current));
            current.clear();
        } else {
            current.push_back(c);
        }
    }
    if (!current.empty())
        lines.push_back(std::move(current));
    if (lines.size() > kErrorLinesKept)
        lines.erase(lines.begin(), lines.end() - static_cast<std::ptrdiff_t>(kErrorLinesKept));
    outcome.errorLines = std::move(lines);

    auto handler = std::move(onExit);
    onExit = nullptr;
    onOutputLine = nullptr;
    handler(outcome);
}

}  // namespace sarvex
