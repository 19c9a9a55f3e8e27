#include "SessionKeyring.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <sstream>

extern char** environ;

namespace vantroauthtest {

namespace {

constexpr const char* kKeyringPassword = "keyring-test-password";

// Starts `args` with its standard input on a pipe, and its output on another (or /dev/null
// when `output` is null); answers the pid, or -1.
pid_t Spawn(const std::vector<std::string>& args, int* input, int* output) {
    int in[2] = {-1, -1};
    int out[2] = {-1, -1};
    if (::pipe2(in, O_CLOEXEC) != 0 || (output && ::pipe2(out, O_CLOEXEC) != 0)) {
        return -1;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    if (output) {
        posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    } else {
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    }
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    std::vector<char*> argv;
    for (const auto& arg : args) {
        argv.push_back(const_cast<char*>(arg.c_str()));
    }
    argv.push_back(nullptr);
    pid_t pid = -1;
    const int spawned = ::posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(in[0]);
    if (output) {
        ::close(out[1]);
    }
    if (spawned != 0) {
        ::close(in[1]);
        if (output) {
            ::close(out[0]);
        }
        return -1;
    }
    *input = in[1];
    if (output) {
        *output = out[0];
    }
    return pid;
}

void WriteAll(int fd, const std::string& text) {
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t put = ::write(fd, text.data() + written, text.size() - written);
        if (put < 0 && errno == EINTR) {
            continue;
        }
        if (put <= 0) {
            return;
        }
        written += static_cast<std::size_t>(put);
    }
}

std::string ReadAll(int fd) {
    std::string text;
    std::array<char, 4096> buffer{};
    for (;;) {
        const ssize_t got = ::read(fd, buffer.data(), buffer.size());
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            return text;
        }
        text.append(buffer.data(), static_cast<std::size_t>(got));
    }
}

int WaitFor(pid_t pid) {
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

SessionKeyring::CommandResult SessionKeyring::Run(const std::vector<std::string>& args,
                                                  const std::string& input) {
    int in = -1;
    int out = -1;
    const pid_t pid = Spawn(args, &in, &out);
    if (pid < 0) {
        return {};
    }
    WriteAll(in, input);
    ::close(in);
    CommandResult result;
    result.output = ReadAll(out);
    ::close(out);
    result.exitCode = WaitFor(pid);
    return result;
}

SessionKeyring::SessionKeyring() {
    // The bus forks into the background once it listens and prints its address and pid.
    const auto bus =
        Run({"dbus-daemon", "--session", "--fork", "--print-address=1", "--print-pid=1"});
    std::istringstream lines(bus.output);
    std::string busAddress;
    std::string pidText;
    std::getline(lines, busAddress);
    std::getline(lines, pidText);
    if (bus.exitCode != 0 || busAddress.empty() || pidText.empty()) {
        failure = "dbus-daemon --session could not be started (is the dbus package installed?)";
        return;
    }
    busPid = static_cast<pid_t>(std::stol(pidText));
    address = std::make_unique<testsupport::ScopedEnvironmentVariable>("DBUS_SESSION_BUS_ADDRESS",
                                                                       busAddress);

    // In the foreground, so that it stays this process's child; --unlock reads the login
    // keyring's password from standard input and creates the keyring when there is none.
    int in = -1;
    keyringPid = Spawn({"gnome-keyring-daemon", "--foreground", "--unlock", "--components=secrets"},
                       &in, nullptr);
    if (keyringPid < 0) {
        failure = "gnome-keyring-daemon could not be started (is gnome-keyring installed?)";
        return;
    }
    WriteAll(in, kKeyringPassword);
    ::close(in);

    // Until the daemon owns the Secret Service's name, a client would start another one
    // through bus activation.
    const auto waited =
        Run({"gdbus", "wait", "--session", "--timeout", "30", "org.freedesktop.secrets"});
    if (waited.exitCode != 0) {
        failure = "the keyring daemon did not take the Secret Service's name on the private bus";
    }
}

SessionKeyring::~SessionKeyring() {
    Stop();
}

void SessionKeyring::Stop() {
    if (keyringPid > 0) {
        ::kill(keyringPid, SIGTERM);
        WaitFor(keyringPid);
        keyringPid = -1;
    }
    if (busPid > 0) {
        ::kill(busPid, SIGTERM);  // not our child once it forked: nothing to reap
        busPid = -1;
    }
}

std::optional<std::size_t> SessionKeyring::ItemsOfSchema(const std::string& schema) const {
    const auto result =
        Run({"gdbus", "call", "--session", "--dest", "org.freedesktop.secrets", "--object-path",
             "/org/freedesktop/secrets", "--method", "org.freedesktop.Secret.Service.SearchItems",
             "{'xdg:schema': '" + schema + "'}"});
    if (result.exitCode != 0) {
        return std::nullopt;
    }
    // "([objectpath '/org/freedesktop/secrets/collection/login/1'], @ao [])"
    std::size_t count = 0;
    for (auto at = result.output.find("/collection/"); at != std::string::npos;
         at = result.output.find("/collection/", at + 1)) {
        ++count;
    }
    return count;
}

}  // namespace vantroauthtest
