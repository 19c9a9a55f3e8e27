// What vantro-share lends the library: the four sequence functions over the project file, the
// encoder's two functions over a sarvex connection, whether the encoder is there, and sarvex's
// reports forwarded to the share pipeline on the main thread (queued, encoding with progress and
// time left, encoded then the upload, failed). It also works the library's cancel queue and
// remembers how each job ended at sarvex, so a cancel can wait until sarvex has let go of it.
//
// Owned by a shared_ptr in the host's main function; the functions it hands out hold it weakly.
// Those functions run on any thread; reports arrive on the connection's reader thread and are
// applied on the main thread. Everything shared sits behind one mutex, never held while calling
// into the library.
//
//   auto host = ShareHost::Create(projectFile);
//   host->SetActiveSequence(sequence);
//   host->AttachSarvex(socketPath);     // throws SarvexError
//   host->Install(viewModel);
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <kelcore/utility/Guid.h>
#include <sarvex/protocol/JobReport.h>
#include <vantrokelui/model/AssetFunctions.h>

#include "ProjectFile.h"
#include "SarvexConnection.h"

namespace vantrokelui::viewmodel {
class ShareForReviewViewModel;
}

namespace vantroshare {

class ShareHost : public std::enable_shared_from_this<ShareHost> {
public:
    using Guid = kelcore::utility::Guid;
    using string = kelcore::string::string;

    static std::shared_ptr<ShareHost> Create(std::shared_ptr<ProjectFile> project);
    ~ShareHost();

    /// The sequence the library sees as active. Any thread.
    void SetActiveSequence(const Guid& sequence);
    Guid ActiveSequence() const;
    /// Keys the library must not be handed for this run (their stored text made it throw); the
    /// file keeps them as they are until the library writes them anew. Any thread.
    void IgnoreStoredValue(const std::string& key);

    /// Connects to sarvex at `socketPath`. Throws SarvexError. Main thread.
    void AttachSarvex(const std::string& socketPath);
    /// Drops the connection (joins its reader). Main thread.
    void DetachSarvex();

    /// Hands the functions to the library: the sequence functions and the encoder to the
    /// pipeline, the sequence functions and the encoder check to `viewModel`. Main thread.
    void Install(const std::shared_ptr<vantrokelui::viewmodel::ShareForReviewViewModel>& viewModel);

    vantrokelui::model::GetActiveSequenceFunction GetActiveSequenceFn();
    vantrokelui::model::GetSequenceValueFunction GetSequenceValueFn();
    vantrokelui::model::SetSequenceValueFunction SetSequenceValueFn();
    vantrokelui::model::ClearSequenceValueFunction ClearSequenceValueFn();
    vantrokelui::model::AssetProcessingFunction AssetProcessingFn();
    vantrokelui::model::CancelProcessingFunction CancelProcessingFn();
    /// True while the sarvex connection stands. Any thread.
    bool SarvexReachable() const;

    /// Has sarvex drop every job the library put in its cancel queue, as the library asks of a
    /// host. Returns the ids worked. Main thread.
    std::vector<string> WorkCancelQueue();
    /// Whether sarvex has nothing more to do for `jobID`: it reported an end, or the connection
    /// is gone, or it never had the job. Any thread.
    bool SarvexDoneWith(const std::string& jobID) const;
    /// Ids of the jobs submitted to sarvex, oldest first. Any thread.
    std::vector<std::string> SubmittedJobs() const;
    /// A reason when the connection broke during the run; empty otherwise. Any thread.
    std::string ConnectionLost() const;
    /// The active sequence's stored value of `key`, when it is text.
    std::optional<std::string> Stored(kelcore::string::string_view key) const;
    /// Save failures of the project file seen during the run, in order. Any thread.
    std::vector<std::string> SaveFailures() const;

private:
    explicit ShareHost(std::shared_ptr<ProjectFile> project);

    // Reader thread.
    void OnReport(const sarvex::protocol::JobReport& report);
    void OnClosed(const std::string& reason);
    // Main thread: what a report means to the pipeline.
    void ApplyReport(const sarvex::protocol::JobReport& report);
    void Submit(const string& outputFilePath, const string& jobID, const string& presetPath);
    std::shared_ptr<SarvexConnection> Connection() const;
    bool IsSequence(const Guid& project, const Guid& sequence) const;

    const std::shared_ptr<ProjectFile> project;
    mutable std::mutex mutex;
    Guid activeSequence;
    std::set<std::string> ignoredKeys;
    std::shared_ptr<SarvexConnection> connection;
    std::map<std::string, sarvex::protocol::JobStatus> sarvexStatus;  // by job id
    std::vector<std::string> submitted;
    std::string connectionLost;
    std::vector<std::string> saveFailures;
};

}  // namespace vantroshare
