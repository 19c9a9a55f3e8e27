// The ground of vantro-share's tests: the real server with ann's Studio / Editors / Alpha and a
// folder "Reviews" in it, a token file for sign-in without a keyring (the session bus points
// nowhere), the real vantro-share executable run as a child process and signed in with
// `login --with-token` from `vantro-server token issue`, test clips made by ffmpeg, and project
// files written by the test. The test's thread; each test runs in its own process.
//
//   StartSignedInWorld();
//   WriteProject({{"Cut 1", Clip(3)}});
//   const auto run = Share({"--sequence", "Cut 1"});
//   EXPECT_EQ(run.exitCode, 0) << run.err;
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <boost/json.hpp>

#include "host/support/ChildProcess.h"
#include "support/SignInServiceFixture.h"

namespace hosttest {

class HostShareFixture : public testsupport::SignInServiceFixture {
protected:
    struct SequenceEntry {
        std::string name;
        std::filesystem::path clip;
        double seconds = 3.0;
    };

    void SetUp() override;

    /// Starts the server (test hooks on) and makes the account, team, project and "Reviews".
    void StartWorld();
    /// StartWorld, then `vantro-share login --with-token` with a fresh token answer.
    void StartSignedInWorld();

    /// A 320x240 test clip with sound, `seconds` long, made once per length.
    std::filesystem::path Clip(double seconds);
    /// Writes project.json with one sequence per entry (clip paths relative to the file).
    std::filesystem::path WriteProject(const std::vector<SequenceEntry>& sequences);
    std::filesystem::path ProjectPath() const { return directory.Path() / "work" / "project.json"; }
    /// Edits the sequence `name` in the file as an editor would: its clip now ends at `out`; its
    /// stored settings stay.
    void EditClipOut(const std::string& name, double out);
    /// The same edit to another clip (from 0 to `out`).
    void EditClip(const std::string& name, const std::filesystem::path& clip, double out);
    /// The project file as it stands on disk, parsed (a test failure when it does not parse).
    boost::json::object ReadProject() const;
    /// The settings of the sequence `name` as stored in the file.
    boost::json::object StoredSettings(const std::string& name) const;
    /// One stored setting by its short name ("ReviewLinkURL"), when it is a string.
    std::optional<std::string> Stored(const std::string& sequence, const std::string& key) const;

    /// Runs vantro-share with `arguments` to its end.
    ChildProcess::Result RunHost(std::vector<std::string> arguments, const std::string& input = {});
    /// `share --project <project.json> --folder Studio/Editors/Alpha/Reviews` plus `arguments`.
    ChildProcess::Result Share(std::vector<std::string> arguments);
    /// The same share's command line, for a test that runs it as a ChildProcess itself.
    std::vector<std::string> ShareCommand(std::vector<std::string> arguments) const;
    /// The review link printed on a line of its own in `out`; empty when none.
    static std::string LinkIn(const std::string& out);

    /// ann's access token for the test's own API calls.
    std::string Token();
    boost::json::array FolderChildren();
    /// How many children the folder or version stack `asset` has.
    std::size_t ChildCount(const std::string& asset);
    std::size_t LinkCount();
    std::uint64_t StorageUsed();
    /// Files left in the library's cache directory (where renders are written).
    std::vector<std::string> CacheFiles() const;
    /// Adds a test fault at the server (see the test hooks).
    void AddFault(const boost::json::object& fault);

    static std::string Executable();
    static std::string SarvexExecutable();

    std::string studio, editors, alpha, root, reviews;

private:
    std::string apiToken;
};

}  // namespace hosttest
