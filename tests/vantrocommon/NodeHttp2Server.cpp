#include "NodeHttp2Server.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <sstream>
#include <vector>

extern char** environ;

namespace vantrocommontest {
namespace {

constexpr auto kStartLimit = std::chrono::seconds(30);

constexpr const char* kScript = R"(
const http2 = require('http2');
const fs = require('fs');
const server = http2.createSecureServer({
    key: fs.readFileSync(process.argv[3]),
    cert: fs.readFileSync(process.argv[2]),
});
server.on('stream', (stream) => {
    stream.respond({':status': 200, 'content-type': 'text/plain', 'x-Protocol-Seen': 'yes',
                    'x-repeated': ['first', 'second']});
    stream.end(stream.session.alpnProtocol);
});
server.listen(0, '127.0.0.1', () => {
    process.stdout.write(server.address().port + '\n');
});
process.on('SIGTERM', () => process.exit(0));
)";

}  // namespace

bool NodeHttp2Server::NodeAvailable() {
    const char* path = std::getenv("PATH");
    std::istringstream directories(path != nullptr ? path : "");
    for (std::string entry; std::getline(directories, entry, ':');) {
        if (!entry.empty() && ::access((entry + "/node").c_str(), X_OK) == 0) {
            return true;
        }
    }
    return false;
}

bool NodeHttp2Server::Start(const std::filesystem::path& certificate,
                            const std::filesystem::path& key) {
    const auto script = directory.Write("h2-server.js", kScript);
    std::array<int, 2> pipe{};
    if (::pipe2(pipe.data(), O_CLOEXEC) != 0) {
        problem = "pipe failed";
        return false;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipe[1], STDOUT_FILENO);
    std::vector<std::string> args{"node", script.string(), certificate.string(), key.string()};
    std::vector<char*> argv;
    for (auto& arg : args) {
        argv.push_back(arg.data());
    }
    argv.push_back(nullptr);
    const int spawned = posix_spawnp(&child, "node", &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(pipe[1]);
    output = pipe[0];
    if (spawned != 0) {
        child = -1;
        problem = "node could not be started";
        return false;
    }

    std::string line;
    const auto deadline = std::chrono::steady_clock::now() + kStartLimit;
    while (line.find('\n') == std::string::npos) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd ready{output, POLLIN, 0};
        const int polled =
            ::poll(&ready, 1, static_cast<int>(std::max<long long>(0, left.count())));
        if (polled < 0 && errno == EINTR) {
            continue;
        }
        std::array<char, 64> chunk{};
        const ssize_t got = polled > 0 ? ::read(output, chunk.data(), chunk.size()) : 0;
        if (got <= 0) {
            problem = "node did not report its port";
            return false;
        }
        line.append(chunk.data(), static_cast<std::size_t>(got));
    }
    port = static_cast<unsigned short>(std::stoul(line));
    return true;
}

std::string NodeHttp2Server::Url(const std::string& path) const {
    return "https://127.0.0.1:" + std::to_string(port) + path;
}

NodeHttp2Server::~NodeHttp2Server() {
    if (child > 0) {
        ::kill(child, SIGTERM);
        int status = 0;
        while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
        }
    }
    if (output >= 0) {
        ::close(output);
    }
}

}  // namespace vantrocommontest
