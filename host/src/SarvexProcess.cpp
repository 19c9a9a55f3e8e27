#include "SarvexProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "SarvexConnection.h"

extern char** environ;

namespace vantroshare {

namespace {

std::filesystem::path MakePrivateDirectory() {
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    std::filesystem::path base = runtime && *runtime ? std::filesystem::path(runtime)
                                                     : std::filesystem::temp_directory_path();
    std::string pattern = (base / "vantro-share.XXXXXX").string();
    if (!::mkdtemp(pattern.data())) {
        throw SarvexError("cannot make a directory for sarvex's socket under " + base.string() +
                          ": " + std::strerror(errno));
    }
    return pattern;
}

// Reads one line from `fd`; false at the end of the output.
bool ReadLine(int fd, std::string& line) {
    line.clear();
    char c = 0;
    for (;;) {
        const ssize_t count = ::read(fd, &c, 1);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return false;
        }
        if (c == '\n') {
            return true;
        }
        line += c;
    }
}

}  // namespace

SarvexProcess::SarvexProcess(const std::filesystem::path& executable,
                             const std::vector<std::string>& extraArguments) {
    directory = MakePrivateDirectory();
    socketPath = (directory / "sarvex.sock").string();
    std::vector<std::string> arguments{executable.string(), "serve", "--socket", socketPath,
                                       "--exit-with-parent"};
    arguments.insert(arguments.end(), extraArguments.begin(), extraArguments.end());
    std::vector<char*> argv;
    for (std::string& argument : arguments) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);

    int pipeFds[2];
    if (::pipe2(pipeFds, O_CLOEXEC) != 0) {
        throw SarvexError(std::string("cannot make a pipe for sarvex: ") + std::strerror(errno));
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDOUT_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    sigset_t defaults;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGINT);
    sigaddset(&defaults, SIGTERM);
    sigaddset(&defaults, SIGPIPE);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setflags(
        &attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
    const int spawned = ::posix_spawn(&child, argv[0], &actions, &attributes, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    ::close(pipeFds[1]);
    output = pipeFds[0];
    if (spawned != 0) {
        child = -1;
        Stop();
        throw SarvexError("cannot start sarvex (" + executable.string() +
                          "): " + std::strerror(spawned));
    }
    const std::string expected = "listening on " + socketPath;
    std::string line;
    bool listening = false;
    while (ReadLine(output, line)) {
        if (line == expected) {
            listening = true;
            break;
        }
    }
    if (!listening) {
        Stop();
        throw SarvexError("sarvex (" + executable.string() +
                          ") exited before it listened; see its messages above");
    }
    ::close(output);
    output = -1;
}

SarvexProcess::~SarvexProcess() {
    Stop();
}

void SarvexProcess::Stop() {
    if (child > 0) {
        ::kill(child, SIGTERM);
        int status = 0;
        while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
        }
        child = -1;
    }
    if (output >= 0) {
        ::close(output);
        output = -1;
    }
    std::error_code ignored;
    std::filesystem::remove_all(directory, ignored);
}

}  // namespace vantroshare
