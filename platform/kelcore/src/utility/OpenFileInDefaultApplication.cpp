#include <kelcore/utility/OpenFileInDefaultApplication.h>

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>
#include <mutex>
#include <system_error>
#include <thread>

#include <kelcore/logging/Logging.h>

extern char** environ;

namespace kelcore::utility {
namespace {

constexpr const char* kDefaultProgram = "xdg-open";

struct OpenerState {
    std::mutex mutex;
    std::function<bool(const std::string&)> opener;
    std::string program = kDefaultProgram;
};

OpenerState& State() {
    static OpenerState state;
    return state;
}

bool SpawnDefaultProgram(const std::string& pathOrUrl) {
    std::string program;
    {
        std::lock_guard lock(State().mutex);
        program = State().program;
    }
    return detail::SpawnDetached(program, {pathOrUrl});
}

}  // namespace

bool OpenFileInDefaultApplication(const std::string& pathOrUrl) {
    std::function<bool(const std::string&)> opener;
    {
        std::lock_guard lock(State().mutex);
        opener = State().opener;
    }
    return opener ? opener(pathOrUrl) : SpawnDefaultProgram(pathOrUrl);
}

void SetDefaultApplicationOpener(std::function<bool(const std::string&)> opener) {
    std::lock_guard lock(State().mutex);
    State().opener = std::move(opener);
}

namespace detail {

void SetDefaultApplicationProgram(std::string program) {
    std::lock_guard lock(State().mutex);
    State().program = program.empty() ? kDefaultProgram : std::move(program);
}

bool SpawnDetached(const std::string& program, const std::vector<std::string>& args,
                   std::function<void(int waitStatus)> onExit) {
    std::vector<char*> argv;
    argv.push_back(const_cast<char*>(program.c_str()));
    for (const auto& arg : args) {
        argv.push_back(const_cast<char*>(arg.c_str()));
    }
    argv.push_back(nullptr);

    // A new session keeps the opened application alive when the host's terminal goes, and the
    // child starts with no signal blocked whatever the calling thread had blocked.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK);
    pid_t child = 0;
    const int error =
        posix_spawnp(&child, program.c_str(), nullptr, &attributes, argv.data(), environ);
    posix_spawnattr_destroy(&attributes);
    if (error != 0) {
        logging::LogWarning("Cannot start " + program + ": " +
                            std::generic_category().message(error));
        return false;
    }
    std::thread([child, onExit = std::move(onExit)] {
        int status = 0;
        while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
        }
        if (onExit) {
            onExit(status);
        }
    }).detach();
    return true;
}

}  // namespace detail
}  // namespace kelcore::utility
