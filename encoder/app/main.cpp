// sarvex, the encoding application: `serve` runs the render queue behind a Unix socket,
// `render` renders one sequence and exits, `presets` lists the presets it knows.
#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include <sarvex/protocol/Wire.h>
#include <CLI/CLI.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>

#include "Preset.h"
#include "RenderJob.h"
#include "RenderQueue.h"
#include "RenderSettings.h"
#include "SocketServer.h"

namespace {

namespace asio = boost::asio;
using sarvex::protocol::JobReport;
using sarvex::protocol::JobStatus;

// Enough for FFmpeg to write its trailer and for clients to read their last reports; past it
// whatever is left is killed on the way out.
constexpr std::chrono::seconds kShutdownLimit{15};

// Presets ship beside the program as ../share/sarvex/presets, in the build and install trees.
std::filesystem::path DefaultPresetDirectory() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error)
        return "share/sarvex/presets";
    return (program.parent_path().parent_path() / "share" / "sarvex" / "presets")
        .lexically_normal();
}

int Serve(const std::string& socketPath, std::size_t jobs, const std::string& presetDirectory,
          bool realtime) {
    asio::io_context io;
    sarvex::RenderSettings settings;
    settings.presetDirectory =
        presetDirectory.empty() ? DefaultPresetDirectory() : std::filesystem::path(presetDirectory);
    settings.realtime = realtime;
    std::error_code folderError;
    if (!std::filesystem::is_directory(settings.presetDirectory, folderError)) {
        std::cerr << "sarvex: the preset folder " << settings.presetDirectory.string()
                  << " does not exist" << std::endl;
        return 1;
    }
    auto queue = std::make_shared<sarvex::RenderQueue>(io, settings, jobs);
    auto server = std::make_shared<sarvex::SocketServer>(io, queue, socketPath);
    try {
        server->Listen();
    } catch (const std::exception& failure) {
        std::cerr << "sarvex: " << failure.what() << std::endl;
        return 1;
    }

    asio::signal_set signals(io, SIGINT, SIGTERM);
    asio::steady_timer shutdownLimit(io);
    bool shuttingDown = false;
    // The io_context runs inside this function, so everything captured by reference outlives
    // the handlers.
    std::function<void()> awaitSignal;
    awaitSignal = [&] {
        signals.async_wait([&](const boost::system::error_code& error, int) {
            if (error)
                return;
            if (shuttingDown) {
                io.stop();  // a second signal: stop waiting; destructors kill what is left
                return;
            }
            shuttingDown = true;
            awaitSignal();
            shutdownLimit.expires_after(kShutdownLimit);
            shutdownLimit.async_wait([&](const boost::system::error_code& timerError) {
                if (!timerError)
                    io.stop();
            });
            queue->Shutdown([&] {
                server->Close();
                signals.cancel();
                shutdownLimit.cancel();
            });
        });
    };
    awaitSignal();

    std::cout << "listening on " << socketPath << std::endl;
    io.run();
    server->Close();
    return 0;
}

std::string Seconds(double seconds) {
    if (seconds < 0)
        return "--:--";
    const auto whole = std::llround(seconds);
    std::ostringstream text;
    text << whole / 60 << ":" << std::setw(2) << std::setfill('0') << whole % 60;
    return text.str();
}

int Render(const std::string& sequencePath, const std::string& presetPath,
           const std::string& outputPath, bool printCommand) {
    std::ifstream file(sequencePath, std::ios::binary);
    if (!file) {
        std::cerr << "sarvex: cannot read " << sequencePath << std::endl;
        return 1;
    }
    std::ostringstream text;
    text << file.rdbuf();
    sarvex::protocol::SubmitRequest request;
    try {
        request.sequence = sarvex::protocol::DecodeSequence(text.str());
    } catch (const std::invalid_argument& fault) {
        std::cerr << "sarvex: " << sequencePath << ": " << fault.what() << std::endl;
        return 1;
    }
    request.jobID = "render";
    request.presetPath = presetPath;
    request.outputPath = outputPath;

    asio::io_context io;
    asio::signal_set signals(io, SIGINT, SIGTERM);
    const bool terminal = ::isatty(STDERR_FILENO) == 1;
    std::optional<JobReport> last;
    int interruptedBy = 0;
    sarvex::RenderSettings settings;
    if (printCommand) {
        // NUL-separated, so that a script can run it as it is: mapfile -d '' -t command.
        settings.printCommand = [](const std::vector<std::string>& command) {
            for (const auto& argument : command)
                std::cout << argument << '\0';
            std::cout << std::flush;
        };
    }
    auto job = std::make_shared<sarvex::RenderJob>(
        io, request, settings,
        [&](const JobReport& report) {
            if (report.status == JobStatus::Encoding) {
                std::cerr << (terminal ? "\r" : "") << "encoding " << std::fixed
                          << std::setprecision(1) << report.fraction * 100 << "%, "
                          << Seconds(report.remainingSeconds) << " left"
                          << (terminal ? "   " : "\n") << std::flush;
            }
            if (sarvex::protocol::IsFinal(report.status))
                last = report;
        },
        [&](sarvex::RenderJob&) { signals.cancel(); });
    // Captures locals of this function, which runs the io_context to its end.
    signals.async_wait([&](const boost::system::error_code& error, int signal) {
        if (error)
            return;
        interruptedBy = signal;
        job->Cancel();
    });
    job->Start();
    io.run();
    if (terminal)
        std::cerr << "\n";

    if (!last) {
        std::cerr << "sarvex: the render ended without a result" << std::endl;
        return 1;
    }
    switch (last->status) {
        case JobStatus::Encoded:
            std::cerr << "encoded " << outputPath << std::endl;
            return 0;
        case JobStatus::Cancelled:
            if (printCommand && !interruptedBy)
                return 0;
            std::cerr << "cancelled" << std::endl;
            return 128 + (interruptedBy ? interruptedBy : SIGINT);
        default:
            std::cerr << "sarvex: " << last->message << std::endl;
            return 1;
    }
}

int ListPresets(const std::string& directory) {
    const auto folder =
        directory.empty() ? DefaultPresetDirectory() : std::filesystem::path(directory);
    std::vector<std::string> problems;
    const auto presets = sarvex::Preset::LoadDirectory(folder, problems);
    for (const auto& preset : presets) {
        std::cout << preset.Name() << "\t" << preset.Extension() << "\t" << preset.Path().string()
                  << (preset.IsDefault() ? "\tdefault" : "") << "\n";
    }
    std::cout << std::flush;
    for (const auto& problem : problems)
        std::cerr << "sarvex: " << problem << "\n";
    return presets.empty() ? 1 : 0;
}

}  // namespace

int main(int argc, char** argv) {
    // Writes to a client that has gone must fail as errors, not end the process.
    ::signal(SIGPIPE, SIG_IGN);

    CLI::App app("sarvex: renders sequences to files with FFmpeg, as a queue or once", "sarvex");
    app.require_subcommand(1);

    std::string socketPath;
    std::size_t jobs = 1;
    std::string presetDirectory;
    std::string pace = "normal";
    auto* serve = app.add_subcommand("serve", "Run the render queue on a Unix socket");
    serve->add_option("--socket", socketPath, "Path of the Unix socket to listen on")->required();
    serve->add_option("--jobs", jobs, "How many jobs render at the same time")
        ->check(CLI::Range(1, 64));
    serve->add_option("--presets", presetDirectory,
                      "Folder where presets named by a relative path are found");
    serve
        ->add_option("--pace", pace,
                     "For tests: 'realtime' reads the inputs at their own pace (-re), so a "
                     "render lasts about as long as the sequence; 'normal' otherwise")
        ->check(CLI::IsMember({"normal", "realtime"}));

    bool exitWithParent = false;
    serve->add_flag("--exit-with-parent", exitWithParent,
                    "End (as on SIGTERM) when the process that started sarvex ends; for hosts "
                    "that run a private sarvex");

    std::string sequencePath, presetPath, outputPath;
    auto* render = app.add_subcommand("render", "Render one sequence file and exit");
    render->add_option("--sequence", sequencePath, "The sequence, a JSON file")->required();
    render->add_option("--preset", presetPath, "The preset file")->required();
    render->add_option("--output", outputPath, "The file to make")->required();
    bool printCommand = false;
    render->add_flag("--print-command", printCommand,
                     "Print the FFmpeg command (NUL-separated arguments) instead of rendering");

    std::string listDirectory;
    auto* presets = app.add_subcommand("presets", "List the presets: name, extension, path");
    presets->add_option("--dir", listDirectory, "The presets' folder");

    CLI11_PARSE(app, argc, argv);
    // SIGTERM is what serve answers by cancelling every job and leaving cleanly.
    if (*serve && exitWithParent && ::prctl(PR_SET_PDEATHSIG, SIGTERM) != 0) {
        std::cerr << "sarvex: cannot follow the parent process" << std::endl;
        return 1;
    }
    if (*serve)
        return Serve(socketPath, jobs, presetDirectory, pace == "realtime");
    if (*render)
        return Render(sequencePath, presetPath, outputPath, printCommand);
    return ListPresets(listDirectory);
}
