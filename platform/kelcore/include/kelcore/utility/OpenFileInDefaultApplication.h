// Hands a file or URL to the desktop's default application (a browser for a review link)
// through xdg-open, without waiting for it. The opener is process-wide and replaceable, so
// tests and headless hosts can see what would open instead of starting a program.
//
//   SetDefaultApplicationOpener([&](const std::string& url) { opened.push_back(url); return true;
//   }); OpenFileInDefaultApplication("https://review.example/abc");
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace kelcore::utility {

/// Opens `pathOrUrl` with the installed opener, by default `xdg-open pathOrUrl` started
/// detached (no shell; the child is reaped when it ends). True when the opener could be
/// started, which says nothing about whether an application showed the file. Any thread.
bool OpenFileInDefaultApplication(const std::string& pathOrUrl);

/// Replaces the opener for the whole process; an empty function restores xdg-open. Any thread.
void SetDefaultApplicationOpener(std::function<bool(const std::string&)> opener);

namespace detail {

/// The program the built-in opener starts; an empty name restores "xdg-open". Any thread.
void SetDefaultApplicationProgram(std::string program);

/// Starts `program` (looked up in PATH unless it holds a '/') with `args`, in a new session,
/// without a shell and without waiting. A background thread reaps the child and then calls
/// `onExit` with its wait status. False, and `onExit` is never called, when it cannot be
/// started. Any thread.
bool SpawnDetached(const std::string& program, const std::vector<std::string>& args,
                   std::function<void(int waitStatus)> onExit = {});

}  // namespace detail
}  // namespace kelcore::utility
