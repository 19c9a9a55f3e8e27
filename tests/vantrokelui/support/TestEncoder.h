// A stand-in for the separate encoding application, as the host drives it: it keeps the renders
// the library queues (assetProcessingMethod) by job id, and a test steps each one through the
// encoder's life, sending the reports a host sends: queued, encoding (with progress fractions
// and time estimates), a REAL file at the output path (a copy of the test clip, or a file of a
// given size), encoded, then the upload. It honours cancelProcessingMethod by dropping the job
// and deleting its partial output, and can fail a job (status 4), which leaves its partial output
// behind as a crashed render would.
//
// Held by shared pointer: the injected functions hold it too. The injected functions may run on
// any thread (the library calls them from the main thread or the cloud library's); each new job
// wakes the main thread's queue, so a test pumping it sees the job arrive. The steps run on the
// test's thread, as the host's own reports do.
//
//   auto encoder = TestEncoder::Create();
//   model::SetAssetProcessingMethod(encoder->AssetProcessingFn(), encoder->CancelProcessingFn());
//   ... share; pump until encoder->JobCount() == 1 ...
//   encoder->RunThroughEncoding(id);
//   encoder->StartUploading(id);
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include <kelcore/string/String.h>
#include <vantrokelui/model/AssetFunctions.h>

namespace vantrokelui::model::testing {

class TestEncoder : public std::enable_shared_from_this<TestEncoder> {
public:
    using string = kelcore::string::string;

    enum class State { Queued, Encoding, Encoded, Uploading, Cancelled, Failed };

    struct Job {
        string outputFilePath;
        string jobID;
        string presetPath;
        State state = State::Queued;
    };

    static std::shared_ptr<TestEncoder> Create() { return std::make_shared<TestEncoder>(); }

    /// From now on renders are copies of the test clip (the default).
    void RenderTestClip();
    /// From now on renders are files of exactly `bytes` pseudo-random bytes.
    void RenderBytes(std::uint64_t bytes);

    /// The host's assetProcessingMethod: queues the job and wakes the main thread. Any thread.
    AssetProcessingFunction AssetProcessingFn();
    /// The host's cancelProcessingMethod: marks the job cancelled and deletes what it had
    /// written. Any thread.
    CancelProcessingFunction CancelProcessingFn();

    /// Every job ever queued, oldest first. Any thread.
    std::vector<Job> Jobs() const;
    std::size_t JobCount() const;
    /// The job `jobID`, if it was ever queued. Any thread.
    std::optional<Job> FindJob(const string& jobID) const;
    /// The ids cancelProcessingMethod was called with, in call order. Any thread.
    std::vector<string> CancelledJobIDs() const;

    /// Starts rendering: reports Encoding, writes the first part of the output, publishes.
    void BeginEncoding(const string& jobID);
    /// Reports `fraction` done and a time estimate, and publishes.
    void ReportProgress(const string& jobID, double fraction);
    /// Writes the whole output file, reports Encoded and publishes.
    void FinishEncoding(const string& jobID);
    /// BeginEncoding, progress from a quarter to all, FinishEncoding.
    void RunThroughEncoding(const string& jobID);
    /// Hands the finished file to the library: reports Uploading, publishes, calls StartUpload.
    void StartUploading(const string& jobID);
    /// The render failed: reports EncodingFailed (status 4), leaving any partial output.
    void FailEncoding(const string& jobID);
    /// Works the library's cancel queue as a host does: each entry is taken from the encoder
    /// (RemoveCanceledJobInSarvex) and dropped from the queue. Answers the ids it worked.
    std::vector<string> WorkCancelQueue();

private:
    void SetState(const string& jobID, State state);
    std::optional<std::filesystem::path> OutputOf(const string& jobID) const;
    void WriteOutput(const std::filesystem::path& path, bool partial) const;

    mutable std::mutex mutex;
    std::vector<Job> jobs;
    std::vector<string> cancelledJobIDs;
    std::optional<std::uint64_t> renderBytes;  // a file of this size instead of the clip
};

}  // namespace vantrokelui::model::testing
