#include <condition_variable>
#include <csignal>
#include <mutex>

#include <gtest/gtest.h>

#include "SarvexConnection.h"
#include "SarvexProcess.h"
#include "host/support/HostShareFixture.h"

namespace hosttest {
namespace {

namespace json = boost::json;

// Ctrl-C in each stage of a share. Each test shares "Cut 1" once to its end first, so that the
// sequence has a link and a version stack, edits it, and cancels the next share: afterwards the
// service holds what it held before, the sequence stores what it stored, and no render is left
// in the cache directory.
class HostCancel : public HostShareFixture {
protected:
    struct Snapshot {
        std::size_t assets = 0;
        std::size_t versions = 0;
        std::size_t links = 0;
        std::uint64_t storage = 0;
        json::object settings;
    };

    // The first share, then an edit that points the sequence at a clip `seconds` long.
    void ShareOnceThenEdit(double seconds) {
        StartSignedInWorld();
        WriteProject({{"Cut 1", Clip(2), 2}});
        const auto first = Share({"--sequence", "Cut 1"});
        ASSERT_EQ(first.exitCode, 0) << first.err;
        EditClip("Cut 1", Clip(seconds), seconds);
    }

    Snapshot Take() {
        Snapshot snapshot;
        snapshot.assets = FolderChildren().size();
        const auto stack = Stored("Cut 1", "VersionStackGuid");
        snapshot.versions = stack ? ChildCount(*stack) : 0;
        snapshot.links = LinkCount();
        snapshot.storage = StorageUsed();
        snapshot.settings = StoredSettings("Cut 1");
        return snapshot;
    }

    void ExpectNothingNewSince(const Snapshot& before) {
        const Snapshot after = Take();
        EXPECT_EQ(after.assets, before.assets);
        EXPECT_EQ(after.versions, before.versions);
        EXPECT_EQ(after.links, before.links);
        EXPECT_EQ(after.storage, before.storage);
        // The preset the share stored when it started is the only value it may have written.
        json::object settings = after.settings;
        json::object expected = before.settings;
        settings.erase("TSLY.VantroNative.ShareForReview.SelectedEncoderPreset");
        expected.erase("TSLY.VantroNative.ShareForReview.SelectedEncoderPreset");
        settings.erase("TSLY.VantroNative.ShareForReview.AssetModifiedAfterShare");
        expected.erase("TSLY.VantroNative.ShareForReview.AssetModifiedAfterShare");
        EXPECT_EQ(settings, expected);
        const auto left = CacheFiles();
        EXPECT_TRUE(left.empty()) << left.front();
    }

    // Starts the share, waits for the stage's line, presses Ctrl-C; the exit code.
    int InterruptAt(const std::string& stage, std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"--sequence", "Cut 1"});
        ChildProcess share(ShareCommand(arguments));
        const bool reached =
            share.WaitForLine([&](const std::string& line) { return line.rfind(stage, 0) == 0; });
        EXPECT_TRUE(reached) << "no \"" << stage << "\" line: " << share.Out() << share.Err();
        share.Signal(SIGINT);
        const int exitCode = share.Wait();
        EXPECT_EQ(exitCode, 130) << share.Err();
        EXPECT_NE(share.Err().find("cancelled"), std::string::npos) << share.Err();
        EXPECT_TRUE(LinkIn(share.Out()).empty()) << share.Out();
        return exitCode;
    }
};

TEST_F(HostCancel, WhileEncodingTheRenderStopsAndNothingIsShared) {
    ShareOnceThenEdit(20);
    const Snapshot before = Take();
    // Rendered at the sequence's own pace, so the render is still running when Ctrl-C comes.
    vantroshare::SarvexProcess sarvex(SarvexExecutable(), {"--pace", "realtime"});
    EXPECT_EQ(InterruptAt("encoding", {"--sarvex-socket", sarvex.SocketPath()}), 130);
    ExpectNothingNewSince(before);
}

TEST_F(HostCancel, WhileQueuedBehindAnotherClientsJobTheJobLeavesTheQueue) {
    ShareOnceThenEdit(3);
    const Snapshot before = Take();
    vantroshare::SarvexProcess sarvex(SarvexExecutable(), {"--jobs", "1", "--pace", "realtime"});
    // Another client's long render holds the only slot.
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<sarvex::protocol::JobReport> reports;
    auto other = vantroshare::SarvexConnection::Connect(
        sarvex.SocketPath(),
        [&](const sarvex::protocol::JobReport& report) {
            const std::lock_guard lock(mutex);
            reports.push_back(report);
            changed.notify_all();
        },
        [](const std::string&) {});
    sarvex::protocol::SubmitRequest blocker;
    blocker.jobID = "other-client";
    blocker.sequence = {"Other", 320, 240, 25.0, {{Clip(20).string(), 0.0, 20.0}}};
    blocker.presetPath = (std::filesystem::path(SarvexExecutable()).parent_path() / ".." / "share" /
                          "sarvex" / "presets" / "h264-mp4.json")
                             .lexically_normal()
                             .string();
    blocker.outputPath = (directory.Path() / "other.mp4").string();
    ASSERT_TRUE(other->Send(blocker));
    {
        std::unique_lock lock(mutex);
        ASSERT_TRUE(changed.wait_for(lock, std::chrono::seconds(60), [&] {
            for (const auto& report : reports) {
                if (report.status == sarvex::protocol::JobStatus::Encoding) {
                    return true;
                }
            }
            return false;
        }));
    }
    EXPECT_EQ(InterruptAt("queued", {"--sarvex-socket", sarvex.SocketPath()}), 130);
    ExpectNothingNewSince(before);
    other->Send(sarvex::protocol::CancelRequest{"other-client"});
}

TEST_F(HostCancel, WhileUploadingTheTransferStopsAndNoVersionIsAdded) {
    ShareOnceThenEdit(3);
    const Snapshot before = Take();
    // The parts take their time at the service, so the upload is still running at Ctrl-C.
    AddFault({{"route", "/v2/uploads/*/parts/*"}, {"delay_ms", 3000}, {"count", 20}});
    EXPECT_EQ(InterruptAt("uploading", {}), 130);
    ExpectNothingNewSince(before);
}

TEST_F(HostCancel, WhileTheLinkIsMadeTheJobIsCancelledWhenItComes) {
    // A first share, which has to make its link before there is a job.
    StartSignedInWorld();
    WriteProject({{"Cut 1", Clip(3), 3}});
    AddFault({{"route", "/v2/projects/*/review_links"}, {"delay_ms", 2000}});
    EXPECT_EQ(InterruptAt("creating link", {}), 130);
    // The link is the service's once asked for; no asset reaches the folder or the link, and the
    // sequence stores no share.
    EXPECT_TRUE(FolderChildren().empty());
    EXPECT_EQ(StorageUsed(), 0u);
    for (const char* key :
         {"ReviewLinkURL", "ReviewLinkGuid", "VersionStackGuid", "UploadedAssetGuid"}) {
        EXPECT_FALSE(Stored("Cut 1", key)) << key;
    }
    const auto left = CacheFiles();
    EXPECT_TRUE(left.empty()) << left.front();
}

TEST_F(HostCancel, ASecondCtrlCEndsTheProcessWithoutWaitingForTheCancel) {
    StartSignedInWorld();
    WriteProject({{"Cut 1", Clip(3), 3}});
    // The cancel would wait for this link to come back before it could end.
    AddFault({{"route", "/v2/projects/*/review_links"}, {"delay_ms", 30000}});
    ChildProcess share(ShareCommand({"--sequence", "Cut 1"}));
    ASSERT_TRUE(share.WaitForLine([](const std::string& line) {
        return line.rfind("creating link", 0) == 0;
    })) << share.Out()
        << share.Err();
    const auto start = std::chrono::steady_clock::now();
    share.Signal(SIGINT);
    // Two signals sent before the first is taken would arrive as one.
    ASSERT_TRUE(share.WaitForLine([](const std::string& line) {
        return line.rfind("cancelling", 0) == 0;
    })) << share.Out()
        << share.Err();
    share.Signal(SIGINT);
    const int exitCode = share.Wait();
    // A sanitizer's report would be in the program's own error output.
    EXPECT_EQ(exitCode, 130) << share.Err();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    EXPECT_NE(share.Err().find("interrupted"), std::string::npos) << share.Err();
    EXPECT_TRUE(LinkIn(share.Out()).empty()) << share.Out();
}

}  // namespace
}  // namespace hosttest
