// The real `sarvex serve` process, driven over its socket as hosts drive it, with real FFmpeg.
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>

#include <gtest/gtest.h>
#include <sarvex/protocol/Wire.h>

#include "encoder/support/SampleMedia.h"
#include "encoder/support/SarvexClient.h"
#include "encoder/support/Subprocess.h"
#include "support/TemporaryDirectory.h"

namespace sarvextest {
namespace {

using namespace std::chrono_literals;
using sarvex::protocol::CancelRequest;
using sarvex::protocol::JobReport;
using sarvex::protocol::JobStatus;
using sarvex::protocol::SequenceDescription;
using sarvex::protocol::SubmitRequest;

// Generous: only a broken run waits this long (sanitizer builds are slow to start).
constexpr auto kDeadline = 120s;

std::vector<JobStatus> Statuses(const std::vector<JobReport>& reports) {
    std::vector<JobStatus> statuses;
    for (const auto& report : reports)
        statuses.push_back(report.status);
    return statuses;
}

bool IsEncodingUnderway(const JobReport& report) {
    return (report.status == JobStatus::Encoding && report.fraction > 0) ||
           sarvex::protocol::IsFinal(report.status);
}

class SarvexServe : public ::testing::Test {
protected:
    void SetUp() override { std::filesystem::create_directory(OutputFolder()); }

    // sarvex ends cleanly on SIGTERM; a sanitizer build that found a fault would exit otherwise.
    void TearDown() override {
        if (!server || !server->Running())
            return;
        server->Signal(SIGTERM);
        const auto exitCode = server->AwaitExit(In(kDeadline));
        ASSERT_TRUE(exitCode) << "sarvex did not exit after SIGTERM";
        EXPECT_EQ(*exitCode, 0) << server->ErrorOutput();
    }

    void StartServer(const std::vector<std::string>& options = {}) {
        std::vector<std::string> arguments{SarvexProgram().string(), "serve", "--socket",
                                           socketPath.string()};
        arguments.insert(arguments.end(), options.begin(), options.end());
        server.emplace(arguments);
        const auto line = server->AwaitLine("listening on", In(kDeadline));
        ASSERT_TRUE(line) << server->ErrorOutput();
        EXPECT_EQ(*line, "listening on " + socketPath.string());
    }

    std::filesystem::path OutputFolder() const { return directory.Path() / "out"; }

    SubmitRequest Request(const std::string& jobID, const SequenceDescription& sequence,
                          const std::string& preset, const std::string& outputName) const {
        return SubmitRequest{jobID, sequence, preset, (OutputFolder() / outputName).string()};
    }

    testsupport::TemporaryDirectory directory;
    std::filesystem::path socketPath = directory.Path() / "sarvex.sock";
    std::optional<Subprocess> server;
};

struct ShippedPreset {
    std::string file;
    std::string extension;
    std::string formatName;
    std::string videoCodec;
};

void PrintTo(const ShippedPreset& preset, std::ostream* out) {
    *out << preset.file;
}

class SarvexServeWithShippedPreset : public SarvexServe,
                                     public ::testing::WithParamInterface<ShippedPreset> {};

TEST_P(SarvexServeWithShippedPreset, RendersTwoClipsWithProgressToTheEnd) {
    const auto& preset = GetParam();
    const auto sequence = MakeTwoClipSequence(directory.Path());
    StartServer();
    SarvexClient client(socketPath);

    client.Send(Request("job-1", sequence, preset.file, "movie." + preset.extension));
    const auto reports = client.ReportsUntilFinal("job-1", In(kDeadline));

    ASSERT_GE(reports.size(), 3u);
    EXPECT_EQ(reports.front().status, JobStatus::Queued);
    ASSERT_EQ(reports.back().status, JobStatus::Encoded) << reports.back().message;
    EXPECT_EQ(reports.back().fraction, 1.0);
    double previous = 0.0;
    for (std::size_t index = 1; index + 1 < reports.size(); ++index) {
        EXPECT_EQ(reports[index].status, JobStatus::Encoding);
        EXPECT_GE(reports[index].fraction, previous);
        EXPECT_LE(reports[index].fraction, 1.0);
        EXPECT_TRUE(reports[index].remainingSeconds == -1.0 ||
                    reports[index].remainingSeconds >= 0);
        previous = reports[index].fraction;
    }

    const auto output = OutputFolder() / ("movie." + preset.extension);
    const auto probe = ProbeMedia(output);
    EXPECT_NE(probe.formatName.find(preset.formatName), std::string::npos) << probe.formatName;
    EXPECT_EQ(probe.videoCodecs, std::vector<std::string>{preset.videoCodec});
    EXPECT_EQ(probe.width, 320);
    EXPECT_EQ(probe.height, 240);
    EXPECT_EQ(probe.audioCodecs.size(), 1u);
    // Two frames at 25 fps either way of the sum of the spans.
    EXPECT_NEAR(probe.duration, sequence.Duration(), 2.0 / 25.0);
    EXPECT_EQ(DirectoryEntries(OutputFolder()),
              std::vector<std::string>{"movie." + preset.extension});
}

INSTANTIATE_TEST_SUITE_P(Presets, SarvexServeWithShippedPreset,
                         ::testing::Values(ShippedPreset{"h264-mp4.json", "mp4", "mp4", "h264"},
                                           ShippedPreset{"h265-mp4.json", "mp4", "mp4", "hevc"},
                                           ShippedPreset{"prores-422-proxy-mov.json", "mov", "mov",
                                                         "prores"},
                                           ShippedPreset{"vp9-webm.json", "webm", "webm", "vp9"}),
                         [](const ::testing::TestParamInfo<ShippedPreset>& param) {
                             auto name = param.param.file.substr(0, param.param.file.find('.'));
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST_F(SarvexServe, CancellingARunningJobStopsItAndLeavesNoFile) {
    const auto sequence = MakeTwoClipSequence(directory.Path(), true);
    StartServer({"--pace", "realtime"});
    SarvexClient client(socketPath);
    client.Send(Request("job-1", sequence, "h264-mp4.json", "movie.mp4"));
    const auto before = client.ReportsUntil("job-1", IsEncodingUnderway, In(kDeadline));
    ASSERT_FALSE(before.empty());
    ASSERT_EQ(before.back().status, JobStatus::Encoding);

    client.Send(CancelRequest{"job-1"});
    const auto after = client.ReportsUntilFinal("job-1", In(kDeadline));

    ASSERT_FALSE(after.empty());
    EXPECT_EQ(after.back().status, JobStatus::Cancelled);
    EXPECT_TRUE(DirectoryEntries(OutputFolder()).empty());
}

TEST_F(SarvexServe, CancellingAQueuedJobDropsItBeforeItStarts) {
    const auto sequence = MakeTwoClipSequence(directory.Path(), true);
    StartServer({"--pace", "realtime", "--jobs", "1"});
    SarvexClient client(socketPath);
    client.Send(Request("first", sequence, "h264-mp4.json", "first.mp4"));
    client.Send(Request("second", sequence, "h264-mp4.json", "second.mp4"));
    ASSERT_FALSE(client.ReportsUntil("first", IsEncodingUnderway, In(kDeadline)).empty());

    client.Send(CancelRequest{"second"});
    const auto second = client.ReportsUntilFinal("second", In(kDeadline));
    client.Send(CancelRequest{"first"});
    const auto first = client.ReportsUntilFinal("first", In(kDeadline));

    EXPECT_EQ(Statuses(second), (std::vector<JobStatus>{JobStatus::Queued, JobStatus::Cancelled}));
    ASSERT_FALSE(first.empty());
    EXPECT_EQ(first.back().status, JobStatus::Cancelled);
    EXPECT_TRUE(DirectoryEntries(OutputFolder()).empty());
}

TEST_F(SarvexServe, AClosedConnectionCancelsItsJobs) {
    const auto sequence = MakeTwoClipSequence(directory.Path(), true);
    StartServer({"--pace", "realtime", "--jobs", "1"});
    {
        SarvexClient leaving(socketPath);
        leaving.Send(Request("job-1", sequence, "h264-mp4.json", "left.mp4"));
        const auto reports = leaving.ReportsUntil("job-1", IsEncodingUnderway, In(kDeadline));
        ASSERT_FALSE(reports.empty());
        ASSERT_EQ(reports.back().status, JobStatus::Encoding);
    }

    // With one job at a time, the next job starts only once the abandoned one has ended.
    SarvexClient staying(socketPath);
    staying.Send(
        Request("job-2", MakeTwoClipSequence(directory.Path()), "h264-mp4.json", "stayed.mp4"));
    const auto started = staying.ReportsUntil(
        "job-2",
        [](const JobReport& report) {
            return report.status == JobStatus::Encoding || sarvex::protocol::IsFinal(report.status);
        },
        In(kDeadline));
    ASSERT_FALSE(started.empty());
    ASSERT_EQ(started.back().status, JobStatus::Encoding);
    for (const auto& name : DirectoryEntries(OutputFolder()))
        EXPECT_EQ(name.find("left"), std::string::npos) << name;

    const auto finished = staying.ReportsUntilFinal("job-2", In(kDeadline));
    ASSERT_FALSE(finished.empty());
    EXPECT_EQ(finished.back().status, JobStatus::Encoded) << finished.back().message;
    EXPECT_EQ(DirectoryEntries(OutputFolder()), std::vector<std::string>{"stayed.mp4"});
}

TEST_F(SarvexServe, ALateCancelLeavesAFinishedFileAlone) {
    StartServer();
    SarvexClient client(socketPath);
    client.Send(Request("job-1", MakeTwoClipSequence(directory.Path()), "h264-mp4.json", "a.mp4"));
    const auto reports = client.ReportsUntilFinal("job-1", In(kDeadline));
    ASSERT_FALSE(reports.empty());
    ASSERT_EQ(reports.back().status, JobStatus::Encoded) << reports.back().message;

    client.Send(CancelRequest{"job-1"});
    client.Send(CancelRequest{"no-such-job"});
    // Requests are handled in order: once this answer arrives, both cancels have been.
    client.SendRaw("{}");
    const auto answer = client.NextReport(In(kDeadline));

    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->jobID, "");
    EXPECT_EQ(answer->status, JobStatus::Failed);
    EXPECT_EQ(DirectoryEntries(OutputFolder()), std::vector<std::string>{"a.mp4"});
}

TEST_F(SarvexServe, AnInvalidPresetFailsTheJobWithItsFault) {
    const auto preset = directory.Write(
        "sneaky.json", R"({"name": "Sneaky", "extension": "mp4", "args": ["-i", "/etc/passwd"]})");
    StartServer();
    SarvexClient client(socketPath);
    client.Send(Request("job-1", MakeTwoClipSequence(directory.Path()), preset.string(), "a.mp4"));
    const auto reports = client.ReportsUntilFinal("job-1", In(kDeadline));

    ASSERT_FALSE(reports.empty());
    EXPECT_EQ(reports.back().status, JobStatus::Failed);
    EXPECT_NE(reports.back().message.find(preset.string()), std::string::npos)
        << reports.back().message;
    EXPECT_NE(reports.back().message.find("-i"), std::string::npos) << reports.back().message;
    EXPECT_TRUE(DirectoryEntries(OutputFolder()).empty());
}

TEST_F(SarvexServe, AMissingClipFailsTheJobNamingTheFile) {
    auto sequence = MakeTwoClipSequence(directory.Path());
    const auto missing = (directory.Path() / "gone.mp4").string();
    sequence.clips[1].path = missing;
    StartServer();
    SarvexClient client(socketPath);
    client.Send(Request("job-1", sequence, "h264-mp4.json", "a.mp4"));
    const auto reports = client.ReportsUntilFinal("job-1", In(kDeadline));

    ASSERT_FALSE(reports.empty());
    EXPECT_EQ(reports.back().status, JobStatus::Failed);
    EXPECT_NE(reports.back().message.find(missing), std::string::npos) << reports.back().message;
    EXPECT_TRUE(DirectoryEntries(OutputFolder()).empty());
}

TEST_F(SarvexServe, AnUnreadableClipFailsWithFfmpegsOwnWords) {
    auto sequence = MakeTwoClipSequence(directory.Path());
    const auto garbage = directory.Write("garbage.mp4", "this is not a movie");
    sequence.clips[0].path = garbage.string();
    StartServer();
    SarvexClient client(socketPath);
    client.Send(Request("job-1", sequence, "h264-mp4.json", "a.mp4"));
    const auto reports = client.ReportsUntilFinal("job-1", In(kDeadline));

    ASSERT_FALSE(reports.empty());
    EXPECT_EQ(reports.back().status, JobStatus::Failed);
    EXPECT_NE(reports.back().message.find(garbage.string()), std::string::npos)
        << reports.back().message;
    EXPECT_NE(reports.back().message.find("Invalid data"), std::string::npos)
        << reports.back().message;
}

TEST_F(SarvexServe, AnFfmpegFailureCarriesItsOwnWordsAndLeavesNoFile) {
    const auto preset = directory.Write(
        "broken.json",
        R"({"name": "Broken", "extension": "mp4", "args": ["-c:v", "nosuchcodec"]})");
    StartServer();
    SarvexClient client(socketPath);
    client.Send(Request("job-1", MakeTwoClipSequence(directory.Path()), preset.string(), "a.mp4"));
    const auto reports = client.ReportsUntilFinal("job-1", In(kDeadline));

    ASSERT_FALSE(reports.empty());
    EXPECT_EQ(reports.back().status, JobStatus::Failed);
    EXPECT_NE(reports.back().message.find("ffmpeg"), std::string::npos) << reports.back().message;
    EXPECT_NE(reports.back().message.find("nosuchcodec"), std::string::npos)
        << reports.back().message;
    EXPECT_TRUE(DirectoryEntries(OutputFolder()).empty());
}

TEST_F(SarvexServe, JobsRunInTheOrderTheyCameOneAtATime) {
    const auto sequence = MakeTwoClipSequence(directory.Path());
    StartServer({"--jobs", "1"});
    SarvexClient client(socketPath);
    client.Send(Request("first", sequence, "h264-mp4.json", "first.mp4"));
    client.Send(Request("second", sequence, "h264-mp4.json", "second.mp4"));

    std::vector<std::pair<std::string, JobStatus>> seen;
    int finals = 0;
    while (finals < 2) {
        const auto report = client.NextReport(In(kDeadline));
        ASSERT_TRUE(report);
        seen.emplace_back(report->jobID, report->status);
        finals += sarvex::protocol::IsFinal(report->status) ? 1 : 0;
    }

    const auto position = [&](const std::string& job, JobStatus status) {
        return std::find(seen.begin(), seen.end(), std::make_pair(job, status)) - seen.begin();
    };
    ASSERT_LT(position("first", JobStatus::Encoded), static_cast<std::ptrdiff_t>(seen.size()));
    ASSERT_LT(position("second", JobStatus::Encoded), static_cast<std::ptrdiff_t>(seen.size()));
    EXPECT_LT(position("first", JobStatus::Encoded), position("second", JobStatus::Encoding));
}

TEST_F(SarvexServe, WithTwoSlotsTwoJobsRenderWhileTheThirdWaits) {
    const auto sequence = MakeTwoClipSequence(directory.Path(), true);
    StartServer({"--pace", "realtime", "--jobs", "2"});
    SarvexClient client(socketPath);
    for (const auto* job : {"one", "two", "three"})
        client.Send(Request(job, sequence, "h264-mp4.json", std::string(job) + ".mp4"));

    const auto one = client.ReportsUntil("one", IsEncodingUnderway, In(kDeadline));
    const auto two = client.ReportsUntil("two", IsEncodingUnderway, In(kDeadline));
    client.Send(CancelRequest{"three"});
    const auto three = client.ReportsUntilFinal("three", In(kDeadline));
    client.Send(CancelRequest{"one"});
    client.Send(CancelRequest{"two"});
    const auto oneEnd = client.ReportsUntilFinal("one", In(kDeadline));
    const auto twoEnd = client.ReportsUntilFinal("two", In(kDeadline));

    ASSERT_FALSE(one.empty());
    ASSERT_FALSE(two.empty());
    EXPECT_EQ(one.back().status, JobStatus::Encoding);
    EXPECT_EQ(two.back().status, JobStatus::Encoding);
    EXPECT_EQ(Statuses(three), (std::vector<JobStatus>{JobStatus::Queued, JobStatus::Cancelled}));
    ASSERT_FALSE(oneEnd.empty());
    ASSERT_FALSE(twoEnd.empty());
    EXPECT_EQ(oneEnd.back().status, JobStatus::Cancelled);
    EXPECT_EQ(twoEnd.back().status, JobStatus::Cancelled);
    EXPECT_TRUE(DirectoryEntries(OutputFolder()).empty());
}

TEST_F(SarvexServe, AMalformedLineIsAnsweredAndTheConnectionStaysOpen) {
    StartServer();
    SarvexClient client(socketPath);

    client.SendRaw("this is not JSON");
    const auto notJson = client.NextReport(In(kDeadline));
    client.SendRaw(R"({"op": "dance", "job": "job-9"})");
    const auto unknownOp = client.NextReport(In(kDeadline));
    client.Send(Request("job-1", MakeTwoClipSequence(directory.Path()), "h264-mp4.json", "a.mp4"));
    const auto reports = client.ReportsUntilFinal("job-1", In(kDeadline));

    ASSERT_TRUE(notJson);
    EXPECT_EQ(notJson->jobID, "");
    EXPECT_EQ(notJson->status, JobStatus::Failed);
    EXPECT_NE(notJson->message.find("not JSON"), std::string::npos) << notJson->message;
    ASSERT_TRUE(unknownOp);
    EXPECT_EQ(unknownOp->jobID, "job-9");
    EXPECT_NE(unknownOp->message.find("unknown op"), std::string::npos) << unknownOp->message;
    ASSERT_FALSE(reports.empty());
    EXPECT_EQ(reports.back().status, JobStatus::Encoded) << reports.back().message;
}

TEST_F(SarvexServe, ASecondJobWithALiveJobsIDIsRefused) {
    const auto sequence = MakeTwoClipSequence(directory.Path(), true);
    StartServer({"--pace", "realtime"});
    SarvexClient client(socketPath);
    client.Send(Request("job-1", sequence, "h264-mp4.json", "a.mp4"));
    ASSERT_EQ(client.NextReport(In(kDeadline))->status, JobStatus::Queued);

    client.Send(Request("job-1", sequence, "h264-mp4.json", "b.mp4"));
    const auto refusal = client.ReportsUntil(
        "job-1", [](const JobReport& report) { return report.status == JobStatus::Failed; },
        In(kDeadline));
    client.Send(CancelRequest{"job-1"});
    const auto rest = client.ReportsUntilFinal("job-1", In(kDeadline));

    ASSERT_FALSE(refusal.empty());
    EXPECT_EQ(refusal.back().status, JobStatus::Failed);
    EXPECT_NE(refusal.back().message.find("already"), std::string::npos);
    ASSERT_FALSE(rest.empty());
    EXPECT_EQ(rest.back().status, JobStatus::Cancelled);
}

TEST_F(SarvexServe, ASecondServerOnTheSameSocketRefusesToStart) {
    StartServer();
    Subprocess second({SarvexProgram().string(), "serve", "--socket", socketPath.string()});
    const auto exitCode = second.AwaitExit(In(kDeadline));

    ASSERT_TRUE(exitCode);
    EXPECT_EQ(*exitCode, 1);
    EXPECT_NE(second.ErrorOutput().find("already listening"), std::string::npos)
        << second.ErrorOutput();
    SarvexClient stillServed(socketPath);
}

TEST_F(SarvexServe, AMissingPresetFolderIsRefusedAtStart) {
    const auto missing = (directory.Path() / "no-presets").string();
    Subprocess refused(
        {SarvexProgram().string(), "serve", "--socket", socketPath.string(), "--presets", missing});
    const auto exitCode = refused.AwaitExit(In(kDeadline));

    ASSERT_TRUE(exitCode);
    EXPECT_EQ(*exitCode, 1);
    EXPECT_NE(refused.ErrorOutput().find(missing), std::string::npos) << refused.ErrorOutput();
    EXPECT_FALSE(std::filesystem::exists(socketPath));
}

TEST_F(SarvexServe, RelativePresetPathsAreFoundInThePresetFolder) {
    testsupport::TemporaryDirectory presets;
    presets.Write("fast.json",
                  R"({"name": "Fast", "extension": "mkv", "args": ["-c:v", "libx264", "-preset",
                      "ultrafast", "-c:a", "aac"]})");
    StartServer({"--presets", presets.Path().string()});
    SarvexClient client(socketPath);
    client.Send(Request("job-1", MakeTwoClipSequence(directory.Path()), "fast.json", "a.mkv"));
    const auto reports = client.ReportsUntilFinal("job-1", In(kDeadline));

    ASSERT_FALSE(reports.empty());
    EXPECT_EQ(reports.back().status, JobStatus::Encoded) << reports.back().message;
    EXPECT_NE(ProbeMedia(OutputFolder() / "a.mkv").formatName.find("matroska"), std::string::npos);
}

TEST_F(SarvexServe, AStaleSocketFileIsTakenOver) {
    const int stale = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strcpy(address.sun_path, socketPath.c_str());
    ASSERT_EQ(::bind(stale, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    ::close(stale);
    ASSERT_TRUE(std::filesystem::exists(socketPath));

    StartServer();
    SarvexClient client(socketPath);
    client.SendRaw("{}");
    const auto answer = client.NextReport(In(kDeadline));

    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, JobStatus::Failed);
}

TEST_F(SarvexServe, TerminatingCancelsRunningJobsAndRemovesTheSocket) {
    const auto sequence = MakeTwoClipSequence(directory.Path(), true);
    StartServer({"--pace", "realtime"});
    SarvexClient client(socketPath);
    client.Send(Request("job-1", sequence, "h264-mp4.json", "a.mp4"));
    ASSERT_FALSE(client.ReportsUntil("job-1", IsEncodingUnderway, In(kDeadline)).empty());

    server->Signal(SIGTERM);
    const auto reports = client.ReportsUntilFinal("job-1", In(kDeadline));
    const auto exitCode = server->AwaitExit(In(kDeadline));

    ASSERT_FALSE(reports.empty());
    EXPECT_EQ(reports.back().status, JobStatus::Cancelled);
    ASSERT_TRUE(exitCode);
    EXPECT_EQ(*exitCode, 0);
    EXPECT_FALSE(std::filesystem::exists(socketPath));
    EXPECT_TRUE(DirectoryEntries(OutputFolder()).empty());
}

}  // namespace
}  // namespace sarvextest
