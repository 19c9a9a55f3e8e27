#include "ShareHost.h"

#include <iostream>
#include <utility>

#include <kelcore/threads/MainThread.h>
#include <vantrokelui/model/EncodingStatus.h>
#include <vantrokelui/model/ShareModel.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

namespace vantroshare {

namespace model = vantrokelui::model;
using sarvex::protocol::JobStatus;
using vantrokelui::EncodingStatus;

namespace {

std::string Utf8(const kelcore::string::string& text) {
    return kelcore::string::UTF16toStdString(text);
}

}  // namespace

std::shared_ptr<ShareHost> ShareHost::Create(std::shared_ptr<ProjectFile> project) {
    return std::shared_ptr<ShareHost>(new ShareHost(std::move(project)));
}

ShareHost::ShareHost(std::shared_ptr<ProjectFile> project) : project(std::move(project)) {}

ShareHost::~ShareHost() {
    DetachSarvex();
}

void ShareHost::SetActiveSequence(const Guid& sequence) {
    const std::lock_guard lock(mutex);
    activeSequence = sequence;
}

ShareHost::Guid ShareHost::ActiveSequence() const {
    const std::lock_guard lock(mutex);
    return activeSequence;
}

void ShareHost::IgnoreStoredValue(const std::string& key) {
    const std::lock_guard lock(mutex);
    ignoredKeys.insert(key);
}

void ShareHost::AttachSarvex(const std::string& socketPath) {
    const std::weak_ptr<ShareHost> weak = weak_from_this();
    auto attached = SarvexConnection::Connect(
        socketPath,
        [weak](const sarvex::protocol::JobReport& report) {
            if (const auto self = weak.lock()) {
                self->OnReport(report);
            }
        },
        [weak](const std::string& reason) {
            if (const auto self = weak.lock()) {
                self->OnClosed(reason);
            }
        });
    const std::lock_guard lock(mutex);
    connection = std::move(attached);
}

void ShareHost::DetachSarvex() {
    std::shared_ptr<SarvexConnection> leaving;
    {
        const std::lock_guard lock(mutex);
        leaving = std::move(connection);
        connection.reset();
        // The close that follows is ours, not a lost connection.
        if (connectionLost.empty()) {
            connectionLost = "-";
        }
    }
    leaving.reset();  // joins the reader outside the lock: its callbacks take the lock
}

std::shared_ptr<SarvexConnection> ShareHost::Connection() const {
    const std::lock_guard lock(mutex);
    return connection;
}

bool ShareHost::SarvexReachable() const {
    const auto current = Connection();
    return current && current->IsOpen();
}

void ShareHost::Install(
    const std::shared_ptr<vantrokelui::viewmodel::ShareForReviewViewModel>& viewModel) {
    model::SetAssetDataMethods(GetActiveSequenceFn(), GetSequenceValueFn(), SetSequenceValueFn(),
                               ClearSequenceValueFn());
    model::SetAssetProcessingMethod(AssetProcessingFn(), CancelProcessingFn());
    if (viewModel) {
        viewModel->SetAssetDataMethods(GetActiveSequenceFn(), GetSequenceValueFn(),
                                       SetSequenceValueFn(), ClearSequenceValueFn());
        const std::weak_ptr<ShareHost> weak = weak_from_this();
        viewModel->SetAssetProcessorInstalledMethod([weak] {
            const auto self = weak.lock();
            return self && self->SarvexReachable();
        });
    }
}

bool ShareHost::IsSequence(const Guid& projectID, const Guid& sequence) const {
    return projectID == project->ProjectID() && !sequence.IsNil();
}

model::GetActiveSequenceFunction ShareHost::GetActiveSequenceFn() {
    return [weak = weak_from_this()](Guid& projectID, Guid& sequence) {
        const auto self = weak.lock();
        if (!self) {
            return false;
        }
        projectID = self->project->ProjectID();
        sequence = self->ActiveSequence();
        return !sequence.IsNil();
    };
}

model::GetSequenceValueFunction ShareHost::GetSequenceValueFn() {
    return [weak = weak_from_this()](const Guid& projectID, const Guid& sequence, const string& key,
                                     string& value) {
        const auto self = weak.lock();
        if (!self || !self->IsSequence(projectID, sequence)) {
            return false;
        }
        const std::string name = Utf8(key);
        {
            const std::lock_guard lock(self->mutex);
            if (self->ignoredKeys.count(name) > 0) {
                return false;
            }
        }
        const auto stored = self->project->GetValue(sequence, name);
        if (!stored) {
            return false;
        }
        value = kelcore::string::StdToUTF16String(*stored);
        return true;
    };
}

model::SetSequenceValueFunction ShareHost::SetSequenceValueFn() {
    return [weak = weak_from_this()](const Guid& projectID, const Guid& sequence, const string& key,
                                     const string& value) {
        const auto self = weak.lock();
        if (!self || !self->IsSequence(projectID, sequence)) {
            return false;
        }
        const std::string name = Utf8(key);
        if (!self->project->SetValue(sequence, name, Utf8(value))) {
            const std::lock_guard lock(self->mutex);
            self->saveFailures.push_back(self->project->LastSaveError());
            return false;
        }
        const std::lock_guard lock(self->mutex);
        self->ignoredKeys.erase(name);  // written anew: readable again
        return true;
    };
}

model::ClearSequenceValueFunction ShareHost::ClearSequenceValueFn() {
    return
        [weak = weak_from_this()](const Guid& projectID, const Guid& sequence, const string& key) {
            const auto self = weak.lock();
            if (!self || !self->IsSequence(projectID, sequence)) {
                return false;
            }
            const std::string name = Utf8(key);
            if (!self->project->ClearValue(sequence, name)) {
                const std::lock_guard lock(self->mutex);
                self->saveFailures.push_back(self->project->LastSaveError());
                return false;
            }
            const std::lock_guard lock(self->mutex);
            self->ignoredKeys.erase(name);
            return true;
        };
}

model::AssetProcessingFunction ShareHost::AssetProcessingFn() {
    return [weak = weak_from_this()](const string& outputFilePath, const string& jobID,
                                     const string& presetPath) {
        if (const auto self = weak.lock()) {
            self->Submit(outputFilePath, jobID, presetPath);
        }
    };
}

model::CancelProcessingFunction ShareHost::CancelProcessingFn() {
    return [weak = weak_from_this()](const string& jobID) {
        const auto self = weak.lock();
        if (!self) {
            return;
        }
        if (const auto current = self->Connection()) {
            current->Send(sarvex::protocol::CancelRequest{Utf8(jobID)});
        }
    };
}

void ShareHost::Submit(const string& outputFilePath, const string& jobID,
                       const string& presetPath) {
    const std::string id = Utf8(jobID);
    sarvex::protocol::SubmitRequest request;
    request.jobID = id;
    request.presetPath = Utf8(presetPath);
    request.outputPath = Utf8(outputFilePath);
    std::string failure;
    try {
        request.sequence = project->EncoderSequence(ActiveSequence());
    } catch (const std::exception& error) {
        failure = error.what();
    }
    const auto current = Connection();
    {
        const std::lock_guard lock(mutex);
        submitted.push_back(id);
    }
    if (failure.empty() && !(current && current->Send(request))) {
        failure = "sarvex is not reachable";
    }
    if (failure.empty()) {
        return;
    }
    {
        const std::lock_guard lock(mutex);
        sarvexStatus[id] = JobStatus::Failed;
    }
    std::cerr << "vantro-share: the render could not be submitted: " << failure << std::endl;
    // The library may call from its own thread; the report goes where reports go.
    kelcore::threads::AsyncCallFromMainThread([jobID] {
        model::SetShareJobEncodingStatusForJob(EncodingStatus::EncodingFailed, jobID);
        model::SetCurrentActiveSequenceAndProperties();
    });
}

void ShareHost::OnReport(const sarvex::protocol::JobReport& report) {
    if (report.jobID.empty()) {
        std::cerr << "vantro-share: " << report.message << std::endl;
        return;
    }
    {
        const std::lock_guard lock(mutex);
        sarvexStatus[report.jobID] = report.status;
    }
    const std::weak_ptr<ShareHost> weak = weak_from_this();
    kelcore::threads::AsyncCallFromMainThread([weak, report] {
        if (const auto self = weak.lock()) {
            self->ApplyReport(report);
        }
    });
}

void ShareHost::OnClosed(const std::string& reason) {
    std::vector<std::string> unfinished;
    {
        const std::lock_guard lock(mutex);
        if (!connectionLost.empty()) {
            return;  // our own detach
        }
        connectionLost = reason;
        for (const std::string& id : submitted) {
            const auto found = sarvexStatus.find(id);
            if (found == sarvexStatus.end() || !sarvex::protocol::IsFinal(found->second)) {
                unfinished.push_back(id);
                sarvexStatus[id] = JobStatus::Failed;
            }
        }
    }
    for (const std::string& id : unfinished) {
        OnReport({id, JobStatus::Failed, 0.0, -1.0, reason});
    }
    // Wakes a main loop that waits for nothing else.
    kelcore::threads::AsyncCallFromMainThread([] {});
}

void ShareHost::ApplyReport(const sarvex::protocol::JobReport& report) {
    const string jobID = kelcore::string::StdToUTF16String(report.jobID);
    switch (report.status) {
        case JobStatus::Queued:
            model::SetShareJobEncodingStatusForJob(EncodingStatus::Queued, jobID);
            model::SetCurrentActiveSequenceAndProperties();
            break;
        case JobStatus::Encoding:
            model::SetShareJobEncodingStatusForJob(EncodingStatus::Encoding, jobID);
            model::SetShareJobEncodingProgressForJob(report.fraction, jobID);
            model::SetEncodingRemainingTimeForJob(jobID, report.fraction);
            model::SetCurrentActiveSequenceAndProperties();
            break;
        case JobStatus::Encoded:
            model::SetShareJobEncodingStatusForJob(EncodingStatus::Encoded, jobID);
            model::SetCurrentActiveSequenceAndProperties();
            // Uploading is reported before the upload starts: a short upload's end would
            // otherwise be overwritten by it.
            model::SetShareJobEncodingStatusForJob(EncodingStatus::Uploading, jobID);
            model::SetCurrentActiveSequenceAndProperties();
            model::StartUpload(jobID);
            break;
        case JobStatus::Failed:
            if (!report.message.empty()) {
                std::cerr << "vantro-share: sarvex: " << report.message << std::endl;
            }
            model::SetShareJobEncodingStatusForJob(EncodingStatus::EncodingFailed, jobID);
            model::SetCurrentActiveSequenceAndProperties();
            break;
        case JobStatus::Cancelled:
            // The library dropped the job when it asked for the cancel; nothing to tell it.
            break;
    }
}

std::vector<ShareHost::string> ShareHost::WorkCancelQueue() {
    // Walked by a copy: removing an entry shifts the ones after it down.
    const std::vector<string> queue = model::GetCancelJobQueue();
    for (const string& jobID : queue) {
        model::RemoveCanceledJobInSarvex(jobID);
        model::RemoveJobInCancelJobQueueAt(0);
    }
    return queue;
}

bool ShareHost::SarvexDoneWith(const std::string& jobID) const {
    const std::lock_guard lock(mutex);
    if (!connection || !connection->IsOpen()) {
        return true;
    }
    const auto found = sarvexStatus.find(jobID);
    if (found == sarvexStatus.end()) {
        // Submitted but not yet answered: sarvex still owes a report.
        for (const std::string& id : submitted) {
            if (id == jobID) {
                return false;
            }
        }
        return true;
    }
    return sarvex::protocol::IsFinal(found->second);
}

std::vector<std::string> ShareHost::SubmittedJobs() const {
    const std::lock_guard lock(mutex);
    return submitted;
}

std::string ShareHost::ConnectionLost() const {
    const std::lock_guard lock(mutex);
    return connectionLost == "-" ? std::string() : connectionLost;
}

std::optional<std::string> ShareHost::Stored(kelcore::string::string_view key) const {
    return project->GetValue(ActiveSequence(), Utf8(string(key)));
}

std::vector<std::string> ShareHost::SaveFailures() const {
    const std::lock_guard lock(mutex);
    return saveFailures;
}

}  // namespace vantroshare
