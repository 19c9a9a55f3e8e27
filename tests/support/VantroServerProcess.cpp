#include "support/VantroServerProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <stdexcept>
#include <system_error>
#include <utility>

extern char** environ;

namespace testsupport {

namespace {

// A server that has not printed its port in this time is not going to.
constexpr std::chrono::seconds kStartTimeout{30};

struct Pipe {
    int read = -1, write = -1;
    Pipe() {
        int fds[2];
        if (pipe2(fds, O_CLOEXEC) != 0) {
            throw std::system_error(errno, std::generic_category(), "pipe2");
        }
        read = fds[0];
        write = fds[1];
    }
    ~Pipe() {
        CloseRead();
        CloseWrite();
    }
    void CloseRead() {
        if (read >= 0) {
            close(read);
        }
        read = -1;
    }
    void CloseWrite() {
        if (write >= 0) {
            close(write);
        }
        write = -1;
    }
};

pid_t Spawn(const std::vector<std::string>& args, Pipe* out, Pipe* err) {
    std::vector<char*> argv;
    for (const auto& arg : args) {
        argv.push_back(const_cast<char*>(arg.c_str()));
    }
    argv.push_back(nullptr);
    const pid_t parent = getpid();
    const pid_t pid = fork();
    if (pid < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (pid == 0) {
        // Only async-signal-safe calls until exec. A test that crashes takes its server with it
        // instead of leaving it running.
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent) {
            _exit(127);
        }
        if (out) {
            dup2(out->write, STDOUT_FILENO);
        }
        if (err) {
            dup2(err->write, STDERR_FILENO);
        }
        execve(argv[0], argv.data(), environ);
        _exit(127);
    }
    return pid;
}

int WaitExit(pid_t pid) {
    int status = 0;
    while (waitpid(pid, &status, 0) < 0) {
        if (errno != EINTR) {
            return -1;
        }
    }
    if (WIFEXITED(status)) {
        return WEXITSTATUS(status);
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : -1;
}

std::string TrimNewline(std::string text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) {
        text.pop_back();
    }
    return text;
}

}  // namespace

std::filesystem::path VantroServerProcess::Executable() {
    return VANTRO_SERVER_EXECUTABLE;
}

VantroServerProcess::VantroServerProcess() : dataDir(directory.Path() / "data") {
    Admin({"init"});
}

VantroServerProcess::~VantroServerProcess() {
    Stop();
}

VantroServerProcess::Result VantroServerProcess::Run(std::vector<std::string> args) const {
    args.insert(args.begin(), Executable().string());
    args.push_back("--data");
    args.push_back(dataDir.string());
    Pipe out, err;
    const pid_t pid = Spawn(args, &out, &err);
    out.CloseWrite();
    err.CloseWrite();
    Result result;
    // Both pipes are drained together so a chatty stderr cannot block the child.
    std::array<pollfd, 2> fds{{{out.read, POLLIN, 0}, {err.read, POLLIN, 0}}};
    std::array<std::string*, 2> sinks{&result.out, &result.err};
    int open = 2;
    while (open > 0) {
        if (poll(fds.data(), fds.size(), -1) < 0) {
            if (errno == EINTR) {
                continue;
            }
            break;
        }
        for (std::size_t i = 0; i < fds.size(); ++i) {
            if (fds[i].fd < 0 || fds[i].revents == 0) {
                continue;
            }
            std::array<char, 4096> chunk;
            const ssize_t n = read(fds[i].fd, chunk.data(), chunk.size());
            if (n > 0) {
                sinks[i]->append(chunk.data(), static_cast<std::size_t>(n));
            } else {
                fds[i].fd = -1;
                --open;
            }
        }
    }
    result.exitCode = WaitExit(pid);
    return result;
}

std::string VantroServerProcess::Admin(std::vector<std::string> args) const {
    std::string command;
    for (const auto& arg : args) {
        command += arg + " ";
    }
    auto result = Run(std::move(args));
    if (result.exitCode != 0) {
        throw std::runtime_error("vantro-server " + command + "failed (" +
                                 std::to_string(result.exitCode) + "): " + result.err);
    }
    return TrimNewline(std::move(result.out));
}

void VantroServerProcess::Start(std::vector<std::string> extra) {
    if (child > 0) {
        throw std::runtime_error("the server is already running");
    }
    std::vector<std::string> args{Executable().string(), "serve",    "--data",
                                  dataDir.string(),      "--listen", "127.0.0.1:0"};
    args.insert(args.end(), extra.begin(), extra.end());
    Pipe out;
    child = Spawn(args, &out, nullptr);
    out.CloseWrite();

    // Read up to the first newline: the server flushes exactly that line once it listens.
    std::string line;
    const auto deadline = std::chrono::steady_clock::now() + kStartTimeout;
    while (line.find('\n') == std::string::npos) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd fd{out.read, POLLIN, 0};
        const int ready = poll(&fd, 1, static_cast<int>(std::max<long long>(0, left.count())));
        if (ready < 0 && errno == EINTR) {
            continue;
        }
        std::array<char, 256> chunk;
        const ssize_t n = ready > 0 ? read(out.read, chunk.data(), chunk.size()) : 0;
        if (n <= 0) {
            const int code = Stop();
            throw std::runtime_error("vantro-server serve did not report its port (exit " +
                                     std::to_string(code) + "), printed: " + line);
        }
        line.append(chunk.data(), static_cast<std::size_t>(n));
    }
    listeningLine = line.substr(0, line.find('\n'));
    serverOutput = std::exchange(out.read, -1);
    const std::string prefixes[] = {"listening on http://127.0.0.1:",
                                    "listening on https://127.0.0.1:"};
    for (const auto& prefix : prefixes) {
        if (listeningLine.rfind(prefix, 0) == 0) {
            scheme = prefix.find("https") != std::string::npos ? "https" : "http";
            port = static_cast<unsigned short>(std::stoul(listeningLine.substr(prefix.size())));
            return;
        }
    }
    Stop();
    throw std::runtime_error("unexpected first line from vantro-server serve: " + listeningLine);
}

int VantroServerProcess::Stop() {
    if (child <= 0) {
        return -1;
    }
    kill(child, SIGTERM);
    const int code = WaitExit(child);
    child = -1;
    if (serverOutput >= 0) {
        close(serverOutput);
        serverOutput = -1;
    }
    return code;
}

std::string VantroServerProcess::Url(const std::string& path) const {
    return scheme + "://127.0.0.1:" + std::to_string(port) + path;
}

}  // namespace testsupport
