// vantro-share: shares a sequence of a project file for review from the command line.
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>

#include <CLI/CLI.hpp>

#include "CloudSession.h"
#include "Commands.h"
#include "MainLoop.h"
#include "PresetDirectory.h"
#include "ShareCommand.h"

namespace {

std::filesystem::path ExecutablePath() {
    std::error_code error;
    const auto path = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::path("vantro-share") : path;
}

std::string Environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

}  // namespace

int main(int argc, char** argv) {
    // First, so that every thread made from here on leaves Ctrl-C to the loop's watcher.
    vantroshare::MainLoop loop;

    CLI::App app{"Share a sequence for review on the review service."};
    app.require_subcommand(1);
    std::string service;
    app.add_option("--service", service, "the service's URL (overrides VANTRO_SERVICE_URL)");

    auto* login = app.add_subcommand("login", "sign in (in the browser, or with a token answer)");
    std::string tokenSource;
    login->add_option("--with-token", tokenSource,
                      "a token answer (JSON) from FILE, or - for stdin, instead of the browser");
    app.add_subcommand("logout", "sign out and forget the stored tokens");

    auto* ls = app.add_subcommand("ls", "list accounts, workspaces, projects or folders");
    std::string lsPath;
    ls->add_option("path", lsPath, "ACCOUNT[/WORKSPACE[/PROJECT[/FOLDER...]]]");

    auto* status = app.add_subcommand("status", "who is signed in, and a project's shares");
    std::string statusProject;
    status->add_option("--project", statusProject, "a project file");

    auto* share = app.add_subcommand("share", "share a sequence and print its review link");
    vantroshare::ShareCommand::Options shareOptions;
    std::string projectFile;
    share->add_option("--project", projectFile, "the project file")->required();
    share->add_option("--sequence", shareOptions.sequence, "the sequence's name")->required();
    share
        ->add_option("--folder", shareOptions.folder,
                     "ACCOUNT/WORKSPACE/PROJECT/FOLDER[/...]; FOLDER may be "
                     "the root folder")
        ->required();
    share->add_option("--preset", shareOptions.preset, "the encoder preset's name");
    share->add_flag("--new-link", shareOptions.newLink, "make a new review link");
    std::string sarvexSocket = Environment("VANTRO_SARVEX_SOCKET");
    share->add_option("--sarvex-socket", sarvexSocket,
                      "a running sarvex's socket (default: VANTRO_SARVEX_SOCKET, else start one)");
    const std::filesystem::path executable = ExecutablePath();
    std::string sarvexProgram = (executable.parent_path() / "sarvex").string();
    share->add_option("--sarvex", sarvexProgram, "the sarvex program to start");

    CLI11_PARSE(app, argc, argv);
    vantroshare::CloudSession::UseService(service);

    try {
        if (login->parsed()) {
            return tokenSource.empty() ? vantroshare::commands::Login(loop)
                                       : vantroshare::commands::LoginWithToken(loop, tokenSource);
        }
        if (app.got_subcommand("logout")) {
            return vantroshare::commands::Logout();
        }
        if (ls->parsed()) {
            return vantroshare::commands::List(loop, lsPath);
        }
        if (status->parsed()) {
            return vantroshare::commands::Status(loop, statusProject);
        }
        shareOptions.projectFile = projectFile;
        shareOptions.sarvexSocket = sarvexSocket;
        shareOptions.sarvexProgram = sarvexProgram;
        shareOptions.presetDirectory = vantroshare::PresetDirectory::NextTo(executable);
        return vantroshare::ShareCommand(loop, shareOptions).Run();
    } catch (const std::exception& error) {
        std::cerr << "vantro-share: " << error.what() << std::endl;
        return 1;
    }
}
