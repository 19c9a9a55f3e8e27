// One render from submission to its end: checks the preset and the output path, probes each
// clip (readable, has a picture, has sound or not), runs FFmpeg into a temporary file beside
// the output and renames it into place only when complete. Any failure or a cancel removes the
// temporary file, so nothing partial is ever left at or beside the output. Reports "encoding"
// with its progress and ends with exactly one final report: encoded, failed or cancelled.
// Owned by the render queue (or the one-shot command) through shared_ptr; lives on the
// io_context's thread, and its child processes keep it alive until they are reaped.
//
//   auto job = std::make_shared<RenderJob>(io, request, settings, onReport, onFinished);
//   job->Start();
//   job->Cancel();  // later, at any stage
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <sarvex/protocol/JobReport.h>
#include <sarvex/protocol/SubmitRequest.h>
#include <boost/asio/io_context.hpp>

#include "ChildProcess.h"
#include "ProgressParser.h"
#include "RenderSettings.h"

namespace sarvex {

class RenderJob : public std::enable_shared_from_this<RenderJob> {
public:
    using ReportHandler = std::function<void(const protocol::JobReport& report)>;
    using FinishHandler = std::function<void(RenderJob& job)>;

    /// `onReport` gets every report, the final one included; `onFinished` runs once after the
    /// final report, when no child process and no temporary file of the job remain.
    RenderJob(boost::asio::io_context& io, protocol::SubmitRequest request, RenderSettings settings,
              ReportHandler onReport, FinishHandler onFinished);

    const std::string& ID() const { return request.jobID; }
    const protocol::SubmitRequest& Request() const { return request; }

    /// Begins the work. Does nothing if started or finished already.
    void Start();
    /// Stops the job wherever it is; it ends with a cancelled report once its child process
    /// has gone and its temporary file is removed. Does nothing once the job has finished, so
    /// a late cancel never touches a finished file.
    void Cancel();

    bool Started() const { return stage != Stage::Waiting; }
    bool Finished() const { return stage == Stage::Finished; }

private:
    enum class Stage { Waiting, Probing, Encoding, Finished };

    void ProbeNextClip();
    void OnProbed(std::size_t index, const ChildProcess::Outcome& outcome);
    void StartEncoding();
    void OnEncoderExit(const ChildProcess::Outcome& outcome);
    void Finish(protocol::JobStatus status, std::string message = {});
    void RemoveTemporaryFile();
    void Report(protocol::JobStatus status, double fraction, double remaining,
                std::string message = {});

    boost::asio::io_context& io;
    protocol::SubmitRequest request;
    RenderSettings settings;
    ReportHandler onReport;
    FinishHandler onFinished;

    Stage stage = Stage::Waiting;
    bool cancelRequested = false;
    std::vector<std::string> presetArguments;
    std::vector<bool> clipHasAudio;
    std::vector<bool> clipHasVideo;
    std::shared_ptr<ChildProcess> child;
    std::optional<ProgressParser> progress;
    std::filesystem::path temporaryPath;
};

}  // namespace sarvex
