#include "encoder/support/Subprocess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <system_error>

extern char** environ;

namespace sarvextest {
namespace {

std::filesystem::path TestProgramDirectory() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

int Milliseconds(Deadline deadline) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    return left.count() < 0 ? 0 : static_cast<int>(left.count());
}

std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::filesystem::path TemporaryFile(const char* kind) {
    std::string pattern =
        (std::filesystem::temp_directory_path() / (std::string("sarvex-test-") + kind + "-XXXXXX"))
            .string();
    const int fd = ::mkstemp(pattern.data());
    if (fd < 0)
        throw std::runtime_error("mkstemp failed");
    ::close(fd);
    return pattern;
}

// Spawns with one output sent to `pipedFd` and the other to the file `otherPath` (stdout to the
// descriptor and stderr to the file unless `errorsPiped`), stdin from /dev/null.
pid_t Spawn(const std::vector<std::string>& arguments, int pipedFd, const std::string& otherPath,
            bool errorsPiped = false) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, pipedFd,
                                     errorsPiped ? STDERR_FILENO : STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, errorsPiped ? STDOUT_FILENO : STDERR_FILENO,
                                     otherPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    std::vector<std::string> copies(arguments);
    std::vector<char*> argv;
    for (auto& argument : copies)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    pid_t pid = -1;
    const int error = ::posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        throw std::runtime_error("cannot start " + arguments[0] + ": " +
                                 std::generic_category().message(error));
    return pid;
}

int ExitCode(int status) {
    if (WIFSIGNALED(status))
        return 128 + WTERMSIG(status);
    return WEXITSTATUS(status);
}

}  // namespace

Deadline In(std::chrono::seconds seconds) {
    return std::chrono::steady_clock::now() + seconds;
}

std::filesystem::path SarvexProgram() {
    return TestProgramDirectory() / "sarvex";
}

std::filesystem::path ShippedPresetDirectory() {
    return (TestProgramDirectory().parent_path() / "share" / "sarvex" / "presets")
        .lexically_normal();
}

ProgramResult RunToEnd(const std::vector<std::string>& arguments) {
    const auto outputPath = TemporaryFile("out");
    const auto errorPath = TemporaryFile("err");
    const int outputFd = ::open(outputPath.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
    ProgramResult result;
    try {
        const pid_t pid = Spawn(arguments, outputFd, errorPath.string());
        ::close(outputFd);
        int status = 0;
        while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
        }
        result.exitCode = ExitCode(status);
    } catch (...) {
        ::close(outputFd);
        std::filesystem::remove(outputPath);
        std::filesystem::remove(errorPath);
        throw;
    }
    result.out = ReadFile(outputPath);
    result.err = ReadFile(errorPath);
    std::filesystem::remove(outputPath);
    std::filesystem::remove(errorPath);
    return result;
}

Subprocess::Subprocess(const std::vector<std::string>& arguments, Piped piped)
    : otherFile(TemporaryFile("output")) {
    std::array<int, 2> pipe{};
    if (::pipe2(pipe.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("pipe failed");
    try {
        pid = Spawn(arguments, pipe[1], otherFile.string(), piped == Piped::Errors);
    } catch (...) {
        ::close(pipe[0]);
        ::close(pipe[1]);
        throw;
    }
    ::close(pipe[1]);
    output = pipe[0];
    pidfd = static_cast<int>(::syscall(SYS_pidfd_open, pid, 0));
}

Subprocess::~Subprocess() {
    if (pid > 0) {
        ::kill(pid, SIGKILL);
        int status = 0;
        ::waitpid(pid, &status, 0);
    }
    if (output >= 0)
        ::close(output);
    if (pidfd >= 0)
        ::close(pidfd);
    std::error_code ignored;
    std::filesystem::remove(otherFile, ignored);
}

std::optional<std::string> Subprocess::AwaitLine(const std::string& prefix, Deadline deadline) {
    for (;;) {
        for (auto newline = pending.find('\n'); newline != std::string::npos;
             newline = pending.find('\n')) {
            std::string line = pending.substr(0, newline);
            pending.erase(0, newline + 1);
            if (line.rfind(prefix, 0) == 0)
                return line;
        }
        pollfd ready{output, POLLIN, 0};
        const int polled = ::poll(&ready, 1, Milliseconds(deadline));
        if (polled < 0 && errno == EINTR)
            continue;
        if (polled <= 0)
            return std::nullopt;
        std::array<char, 4096> chunk{};
        const auto length = ::read(output, chunk.data(), chunk.size());
        if (length <= 0)
            return std::nullopt;
        pending.append(chunk.data(), static_cast<std::size_t>(length));
    }
}

void Subprocess::Signal(int signal) {
    if (pid > 0)
        ::kill(pid, signal);
}

std::optional<int> Subprocess::AwaitExit(Deadline deadline) {
    if (pid <= 0)
        return std::nullopt;
    for (;;) {
        pollfd ready{pidfd, POLLIN, 0};
        const int polled = ::poll(&ready, 1, Milliseconds(deadline));
        if (polled < 0 && errno == EINTR)
            continue;
        if (polled <= 0)
            return std::nullopt;
        break;
    }
    int status = 0;
    if (::waitpid(pid, &status, 0) != pid)
        return std::nullopt;
    pid = -1;
    return ExitCode(status);
}

std::string Subprocess::OtherOutput() const {
    return ReadFile(otherFile);
}

}  // namespace sarvextest
