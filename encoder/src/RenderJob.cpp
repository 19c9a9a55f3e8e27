#include "RenderJob.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "FfmpegCommand.h"
#include "Preset.h"

namespace sarvex {
namespace {

using protocol::JobStatus;

std::filesystem::path ResolvePreset(const std::filesystem::path& preset,
                                    const std::filesystem::path& directory) {
    if (preset.is_absolute() || directory.empty())
        return preset;
    return directory / preset;
}

// Nothing when the clip can be opened for reading; otherwise why not, in a user's words.
std::optional<std::string> UnreadableReason(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        return std::string(std::generic_category().message(errno));
    if (S_ISDIR(status.st_mode))
        return std::string("it is a folder");
    if (::access(path.c_str(), R_OK) != 0)
        return std::string(std::generic_category().message(errno));
    return std::nullopt;
}

}  // namespace

RenderJob::RenderJob(boost::asio::io_context& io, protocol::SubmitRequest request,
                     RenderSettings settings, ReportHandler onReport, FinishHandler onFinished)
    : io(io),
      request(std::move(request)),
      settings(std::move(settings)),
      onReport(std::move(onReport)),
      onFinished(std::move(onFinished)) {}

void RenderJob::Start() {
    if (stage != Stage::Waiting)
        return;
    stage = Stage::Probing;
    try {
        const auto preset =
            Preset::Load(ResolvePreset(request.presetPath, settings.presetDirectory));
        preset.CheckOutputPath(request.outputPath);
        presetArguments = preset.Arguments();
    } catch (const PresetError& failure) {
        Finish(JobStatus::Failed, failure.what());
        return;
    }
    const auto outputDirectory = std::filesystem::path(request.outputPath).parent_path();
    std::error_code error;
    if (!outputDirectory.empty() && !std::filesystem::is_directory(outputDirectory, error)) {
        Finish(JobStatus::Failed,
               "the output's folder " + outputDirectory.string() + " does not exist");
        return;
    }
    ProbeNextClip();
}

void RenderJob::ProbeNextClip() {
    const auto index = clipHasAudio.size();
    if (index == request.sequence.clips.size()) {
        StartEncoding();
        return;
    }
    const auto& path = request.sequence.clips[index].path;
    if (const auto reason = UnreadableReason(path)) {
        Finish(JobStatus::Failed, "cannot read clip " + path + ": " + *reason);
        return;
    }
    clipHasAudio.push_back(false);
    clipHasVideo.push_back(false);
    // Weak: a probe outliving a dropped job just ends; shared: the job stays for its result.
    child = ChildProcess::Start(
        io,
        {settings.ffprobe, "-v", "error", "-show_entries", "stream=codec_type", "-of", "csv=p=0",
         "file:" + path},
        [self = weak_from_this(), index](std::string_view line) {
            auto job = self.lock();
            if (!job)
                return;
            if (line.rfind("audio", 0) == 0)
                job->clipHasAudio[index] = true;
            if (line.rfind("video", 0) == 0)
                job->clipHasVideo[index] = true;
        },
        [self = shared_from_this(), index](const ChildProcess::Outcome& outcome) {
            self->OnProbed(index, outcome);
        });
}

void RenderJob::OnProbed(std::size_t index, const ChildProcess::Outcome& outcome) {
    child.reset();
    if (cancelRequested) {
        Finish(JobStatus::Cancelled);
        return;
    }
    const auto& path = request.sequence.clips[index].path;
    if (!outcome.Succeeded()) {
        Finish(JobStatus::Failed,
               "cannot read clip " + path + " (ffprobe " + outcome.Describe() + ")");
        return;
    }
    if (!clipHasVideo[index]) {
        Finish(JobStatus::Failed, "clip " + path + " has no video stream");
        return;
    }
    ProbeNextClip();
}

void RenderJob::StartEncoding() {
    if (settings.printCommand) {
        settings.printCommand(FfmpegCommand(request.sequence, clipHasAudio, presetArguments,
                                            request.outputPath, settings.realtime, settings.ffmpeg)
                                  .Arguments());
        Finish(JobStatus::Cancelled, "the command was printed, not run");
        return;
    }
    // A hidden name in the output's own folder (so the rename cannot cross file systems) that
    // keeps the extension, from which FFmpeg picks the container.
    const std::filesystem::path output(request.outputPath);
    auto folder = output.parent_path();
    const auto extension = output.extension().string();
    auto pattern =
        (folder / ("." + output.stem().string() + ".partial-XXXXXX" + extension)).string();
    const int fd = ::mkstemps(pattern.data(), static_cast<int>(extension.size()));
    if (fd < 0) {
        Finish(JobStatus::Failed, "cannot write in the output's folder " +
                                      (folder.empty() ? std::string(".") : folder.string()) + ": " +
                                      std::generic_category().message(errno));
        return;
    }
    // mkstemps makes the file private; the finished file gets the usual permissions.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(fd, 0666 & ~mask);
    ::close(fd);
    temporaryPath = pattern;

    const FfmpegCommand command(request.sequence, clipHasAudio, presetArguments,
                                temporaryPath.string(), settings.realtime, settings.ffmpeg);
    stage = Stage::Encoding;
    progress.emplace(request.sequence.Duration(), ProgressParser::Clock::now());
    Report(JobStatus::Encoding, 0.0, -1.0);
    child = ChildProcess::Start(
        io, command.Arguments(),
        [self = weak_from_this()](std::string_view line) {
            auto job = self.lock();
            if (!job || job->cancelRequested || !job->progress)
                return;
            if (const auto update = job->progress->Feed(line, ProgressParser::Clock::now()))
                job->Report(JobStatus::Encoding, update->fraction, update->remainingSeconds);
        },
        [self = shared_from_this()](const ChildProcess::Outcome& outcome) {
            self->OnEncoderExit(outcome);
        });
}

void RenderJob::OnEncoderExit(const ChildProcess::Outcome& outcome) {
    child.reset();
    if (cancelRequested) {
        Finish(JobStatus::Cancelled);
        return;
    }
    if (!outcome.Succeeded()) {
        Finish(JobStatus::Failed, "ffmpeg failed (" + outcome.Describe() + ")");
        return;
    }
    std::error_code error;
    std::filesystem::rename(temporaryPath, request.outputPath, error);
    if (error) {
        Finish(JobStatus::Failed,
               "cannot move the finished file to " + request.outputPath + ": " + error.message());
        return;
    }
    temporaryPath.clear();
    Finish(JobStatus::Encoded);
}

void RenderJob::Cancel() {
    if (stage == Stage::Finished || cancelRequested)
        return;
    cancelRequested = true;
    if (stage == Stage::Waiting) {
        Finish(JobStatus::Cancelled);
        return;
    }
    // The child's exit handler finishes the job; without a child nothing is in flight.
    if (child)
        child->Stop(settings.stopGrace);
    else
        Finish(JobStatus::Cancelled);
}

void RenderJob::Finish(JobStatus status, std::string message) {
    if (stage == Stage::Finished)
        return;
    stage = Stage::Finished;
    RemoveTemporaryFile();
    const double fraction = status == JobStatus::Encoded ? 1.0
                            : progress                   ? progress->Fraction()
                                                         : 0.0;
    Report(status, fraction, status == JobStatus::Encoded ? 0.0 : -1.0, std::move(message));
    onReport = nullptr;
    if (auto finished = std::move(onFinished)) {
        onFinished = nullptr;
        finished(*this);
    }
}

void RenderJob::RemoveTemporaryFile() {
    if (temporaryPath.empty())
        return;
    std::error_code ignored;
    std::filesystem::remove(temporaryPath, ignored);
    temporaryPath.clear();
}

void RenderJob::Report(JobStatus status, double fraction, double remaining, std::string message) {
    if (onReport)
        onReport(
            protocol::JobReport{request.jobID, status, fraction, remaining, std::move(message)});
}

}  // namespace sarvex
