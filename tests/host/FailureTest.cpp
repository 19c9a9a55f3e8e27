#include <cstdlib>

#include <gtest/gtest.h>

#include "host/support/HostShareFixture.h"

namespace hosttest {
namespace {

// A share that fails prints the library's own failure text and exits 1, leaving no render behind
// and nothing in the folder.
class HostFailure : public HostShareFixture {
protected:
    void ExpectFailedWith(const ChildProcess::Result& run, const std::string& text) {
        EXPECT_EQ(run.exitCode, 1) << run.out << run.err;
        EXPECT_NE(run.err.find(text), std::string::npos) << run.err;
        EXPECT_TRUE(LinkIn(run.out).empty()) << run.out;
        EXPECT_TRUE(FolderChildren().empty());
        const auto left = CacheFiles();
        EXPECT_TRUE(left.empty()) << left.front();
    }
};

TEST_F(HostFailure, ARenderThatFailsShowsTheEncodingFailure) {
    StartSignedInWorld();
    WriteProject({{"Cut 1", directory.Path() / "work" / "media" / "missing.mp4", 2}});
    ExpectFailedWith(Share({"--sequence", "Cut 1"}),
                     "Encoding \"Cut 1.mp4\" failed. See Sarvex for details.");
}

TEST_F(HostFailure, AnUploadTheServiceRefusesShowsTheUploadFailure) {
    StartSignedInWorld();
    WriteProject({{"Cut 1", Clip(2), 2}});
    AddFault({{"route", "/v2/assets/*/uploads"}, {"status", 403}, {"count", 20}});
    ExpectFailedWith(Share({"--sequence", "Cut 1"}), "Uploading \"Cut 1.mp4\" to Vantro failed.");
}

TEST_F(HostFailure, ALinkTheServiceRefusesShowsTheLinkFailure) {
    StartSignedInWorld();
    WriteProject({{"Cut 1", Clip(2), 2}});
    AddFault({{"route", "/v2/projects/*/review_links"}, {"status", 403}, {"count", 20}});
    ExpectFailedWith(Share({"--sequence", "Cut 1"}), "Unable to create share for review link.");
}

TEST_F(HostFailure, AnAccountOverItsStorageLimitSharesNothing) {
    StartSignedInWorld();
    WriteProject({{"Cut 1", Clip(2), 2}});
    // The service never lets usage pass the limit by itself; a plan lowered under the usage is
    // what this stands for.
    const std::string command =
        "sqlite3 '" + (server.DataDir() / "vantro.db").string() +
        "' \"UPDATE accounts SET storage_used = " + std::to_string((std::uint64_t{1} << 34) + 1) +
        " WHERE id = '" + studio + "'\"";
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
    ExpectFailedWith(Share({"--sequence", "Cut 1"}),
                     "the account \"Studio\" is over its storage limit; nothing was shared");
    EXPECT_EQ(LinkCount(), 0u);
}

}  // namespace
}  // namespace hosttest
