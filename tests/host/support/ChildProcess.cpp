#include "ChildProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <sstream>
#include <stdexcept>

extern char** environ;

namespace hosttest {

ChildProcess::ChildProcess(std::vector<std::string> argv, const std::string& input) {
    int outPipe[2];
    int errPipe[2];
    int inPipe[2];
    if (::pipe2(outPipe, O_CLOEXEC) != 0 || ::pipe2(errPipe, O_CLOEXEC) != 0 ||
        ::pipe2(inPipe, O_CLOEXEC) != 0) {
        throw std::runtime_error(std::string("pipe: ") + std::strerror(errno));
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, inPipe[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, outPipe[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errPipe[1], STDERR_FILENO);
    std::vector<char*> args;
    for (std::string& argument : argv) {
        args.push_back(argument.data());
    }
    args.push_back(nullptr);
    const int spawned = ::posix_spawn(&child, args[0], &actions, nullptr, args.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(inPipe[0]);
    ::close(outPipe[1]);
    ::close(errPipe[1]);
    if (spawned != 0) {
        ::close(inPipe[1]);
        ::close(outPipe[0]);
        ::close(errPipe[0]);
        child = -1;
        throw std::runtime_error("cannot start " + argv[0] + ": " + std::strerror(spawned));
    }
    if (!input.empty()) {
        (void)!::write(inPipe[1], input.data(), input.size());
    }
    ::close(inPipe[1]);
    outReader = std::thread([this, fd = outPipe[0]] { Read(fd, out); });
    errReader = std::thread([this, fd = errPipe[0]] { Read(fd, err); });
}

ChildProcess::~ChildProcess() {
    if (child > 0) {
        ::kill(child, SIGKILL);
    }
    Wait();
}

ChildProcess::Result ChildProcess::Run(std::vector<std::string> argv, const std::string& input) {
    ChildProcess process(std::move(argv), input);
    return process.Finish();
}

void ChildProcess::Read(int fd, std::string& into) {
    char buffer[4096];
    for (;;) {
        const ssize_t count = ::read(fd, buffer, sizeof(buffer));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;
        }
        const std::lock_guard lock(mutex);
        into.append(buffer, static_cast<std::size_t>(count));
        changed.notify_all();
    }
    ::close(fd);
    const std::lock_guard lock(mutex);
    changed.notify_all();
}

bool ChildProcess::WaitForLine(const std::function<bool(const std::string&)>& matches,
                               std::chrono::seconds limit) {
    return WaitForLineIn(out, matches, limit);
}

bool ChildProcess::WaitForErrorLine(const std::function<bool(const std::string&)>& matches,
                                    std::chrono::seconds limit) {
    return WaitForLineIn(err, matches, limit);
}

bool ChildProcess::WaitForLineIn(const std::string& text,
                                 const std::function<bool(const std::string&)>& matches,
                                 std::chrono::seconds limit) {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, limit, [&] {
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            if (matches(line)) {
                return true;
            }
        }
        return false;
    });
}

void ChildProcess::Signal(int signal) const {
    if (child > 0) {
        ::kill(child, signal);
    }
}

int ChildProcess::Wait() {
    if (child > 0) {
        int status = 0;
        while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
        }
        child = -1;
        exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    if (outReader.joinable()) {
        outReader.join();
    }
    if (errReader.joinable()) {
        errReader.join();
    }
    return exitCode;
}

ChildProcess::Result ChildProcess::Finish() {
    Result result;
    result.exitCode = Wait();
    result.out = Out();
    result.err = Err();
    return result;
}

std::string ChildProcess::Out() const {
    const std::lock_guard lock(mutex);
    return out;
}

std::string ChildProcess::Err() const {
    const std::lock_guard lock(mutex);
    return err;
}

}  // namespace hosttest
