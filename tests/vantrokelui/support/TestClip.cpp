#include "TestClip.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

extern char** environ;

namespace vantrokelui::model::testing {

namespace {

std::filesystem::path ProgramPath() {
    return std::filesystem::read_symlink("/proc/self/exe");
}

// Runs `arguments` (no shell) and answers its exit status, or -1 when it could not start.
int Run(const std::vector<std::string>& arguments) {
    std::vector<char*> argv;
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    pid_t child = -1;
    if (::posix_spawnp(&child, argv[0], nullptr, nullptr, argv.data(), environ) != 0) {
        return -1;
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::filesystem::path Render() {
    const std::filesystem::path program = ProgramPath();
    const std::filesystem::path clip =
        program.parent_path() / (program.filename().string() + ".clip.mp4");
    if (std::filesystem::exists(clip)) {
        return clip;
    }
    const std::filesystem::path partial =
        clip.parent_path() / (clip.filename().string() + "." + std::to_string(::getpid()) + ".mp4");
    const int status = Run({"ffmpeg",       "-nostdin",
                            "-hide_banner", "-loglevel",
                            "error",        "-y",
                            "-f",           "lavfi",
                            "-i",           "testsrc=duration=2:size=320x240:rate=25",
                            "-f",           "lavfi",
                            "-i",           "sine=frequency=440:duration=2",
                            "-c:v",         "libx264",
                            "-preset",      "veryfast",
                            "-pix_fmt",     "yuv420p",
                            "-c:a",         "aac",
                            "-shortest",    "-movflags",
                            "+faststart",   partial.string()});
    if (status != 0 || !std::filesystem::exists(partial)) {
        std::filesystem::remove(partial);
        throw std::runtime_error("ffmpeg could not render the test clip (status " +
                                 std::to_string(status) + ")");
    }
    // Atomic: another process that rendered meanwhile leaves an identical clip.
    std::filesystem::rename(partial, clip);
    return clip;
}

}  // namespace

std::filesystem::path TestClip::Path() {
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    return Render();
}

}  // namespace vantrokelui::model::testing
