// The small subcommands of vantro-share: sign-in and sign-out, browsing the cloud tree, and the
// status of the sign-in and of a project file's sequences. Each returns the process's exit code
// and prints its own messages. Main thread.
#pragma once

#include <filesystem>
#include <string>

#include "MainLoop.h"

namespace vantroshare::commands {

/// The browser sign-in through the sign-in library; the opener prints the URL as well.
int Login(MainLoop& loop);
/// Stores the token answer read from `source` (a file, or "-" for stdin) and checks it.
int LoginWithToken(MainLoop& loop, const std::string& source);
int Logout();
/// Lists what is at `path` in the cloud tree ("" for the accounts).
int List(MainLoop& loop, const std::string& path);
/// Who is signed in where, and the stored share of each sequence of `projectFile` (when given).
int Status(MainLoop& loop, const std::filesystem::path& projectFile);

}  // namespace vantroshare::commands
