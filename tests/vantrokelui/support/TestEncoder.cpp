#include "TestEncoder.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

#include <kelcore/threads/MainThread.h>
#include <vantrokelui/model/EncodingStatus.h>
#include <vantrokelui/model/ShareModel.h>

#include "TestClip.h"

namespace vantrokelui::model::testing {

namespace {

constexpr std::uint64_t kPartialBytes = 64 * 1024;

std::filesystem::path PathOf(const kelcore::string::string& text) {
    return std::filesystem::path(kelcore::string::UTF16toStdString(text));
}

// Pseudo-random bytes (xorshift), so nothing on the way can compress or skip them.
void WriteBytes(const std::filesystem::path& path, std::uint64_t size) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    std::vector<std::uint64_t> block(128 * 1024);
    std::uint64_t state = 0x2545f4914f6cdd1dULL ^ size;
    for (std::uint64_t written = 0; written < size;) {
        for (auto& word : block) {
            state ^= state << 13;
            state ^= state >> 7;
            state ^= state << 17;
            word = state;
        }
        const auto count =
            std::min<std::uint64_t>(block.size() * sizeof(std::uint64_t), size - written);
        out.write(reinterpret_cast<const char*>(block.data()), static_cast<std::streamsize>(count));
        written += count;
    }
    if (!out) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

}  // namespace

void TestEncoder::RenderTestClip() {
    const std::lock_guard lock(mutex);
    renderBytes.reset();
}

void TestEncoder::RenderBytes(std::uint64_t bytes) {
    const std::lock_guard lock(mutex);
    renderBytes = bytes;
}

AssetProcessingFunction TestEncoder::AssetProcessingFn() {
    return [self = shared_from_this()](const string& outputFilePath, const string& jobID,
                                       const string& presetPath) {
        {
            const std::lock_guard lock(self->mutex);
            self->jobs.push_back({outputFilePath, jobID, presetPath, State::Queued});
        }
        // The host hears of a new render on its own thread; a test pumping the main thread
        // learns of it here.
        kelcore::threads::AsyncCallFromMainThread([] {});
    };
}

CancelProcessingFunction TestEncoder::CancelProcessingFn() {
    return [self = shared_from_this()](const string& jobID) {
        {
            const std::lock_guard lock(self->mutex);
            self->cancelledJobIDs.push_back(jobID);
        }
        if (const auto output = self->OutputOf(jobID)) {
            std::error_code ignored;
            std::filesystem::remove(*output, ignored);
        }
        self->SetState(jobID, State::Cancelled);
    };
}

std::vector<TestEncoder::Job> TestEncoder::Jobs() const {
    const std::lock_guard lock(mutex);
    return jobs;
}

std::size_t TestEncoder::JobCount() const {
    const std::lock_guard lock(mutex);
    return jobs.size();
}

std::optional<TestEncoder::Job> TestEncoder::FindJob(const string& jobID) const {
    const std::lock_guard lock(mutex);
    const auto found =
        std::find_if(jobs.begin(), jobs.end(), [&](const Job& job) { return job.jobID == jobID; });
    return found == jobs.end() ? std::nullopt : std::optional<Job>(*found);
}

std::vector<TestEncoder::string> TestEncoder::CancelledJobIDs() const {
    const std::lock_guard lock(mutex);
    return cancelledJobIDs;
}

void TestEncoder::BeginEncoding(const string& jobID) {
    SetState(jobID, State::Encoding);
    SetShareJobEncodingStatusForJob(EncodingStatus::Encoding, jobID);
    if (const auto output = OutputOf(jobID)) {
        WriteOutput(*output, true);
    }
    SetCurrentActiveSequenceAndProperties();
}

void TestEncoder::ReportProgress(const string& jobID, double fraction) {
    SetShareJobEncodingProgressForJob(fraction, jobID);
    SetEncodingRemainingTimeForJob(jobID, fraction);
    SetCurrentActiveSequenceAndProperties();
}

void TestEncoder::FinishEncoding(const string& jobID) {
    if (const auto output = OutputOf(jobID)) {
        WriteOutput(*output, false);
    }
    SetState(jobID, State::Encoded);
    SetShareJobEncodingStatusForJob(EncodingStatus::Encoded, jobID);
    SetCurrentActiveSequenceAndProperties();
}

void TestEncoder::RunThroughEncoding(const string& jobID) {
    BeginEncoding(jobID);
    for (const double fraction : {0.25, 0.5, 0.75, 1.0}) {
        ReportProgress(jobID, fraction);
    }
    FinishEncoding(jobID);
}

void TestEncoder::StartUploading(const string& jobID) {
    SetState(jobID, State::Uploading);
    // Reported before the upload starts, never after: a short upload could otherwise finish
    // first, and a late Uploading would overwrite its UploadDone.
    SetShareJobEncodingStatusForJob(EncodingStatus::Uploading, jobID);
    SetCurrentActiveSequenceAndProperties();
    StartUpload(jobID);
}

void TestEncoder::FailEncoding(const string& jobID) {
    // A render that fails leaves what it had written; clearing it up is the library's part.
    SetState(jobID, State::Failed);
    SetShareJobEncodingStatusForJob(EncodingStatus::EncodingFailed, jobID);
}

std::vector<TestEncoder::string> TestEncoder::WorkCancelQueue() {
    // Walked by a copy taken first: removing an entry shifts the ones after it down.
    const std::vector<string> queue = GetCancelJobQueue();
    for (const string& jobID : queue) {
        RemoveCanceledJobInSarvex(jobID);
        RemoveJobInCancelJobQueueAt(0);
    }
    return queue;
}

void TestEncoder::SetState(const string& jobID, State state) {
    const std::lock_guard lock(mutex);
    for (Job& job : jobs) {
        if (job.jobID == jobID) {
            job.state = state;
        }
    }
}

std::optional<std::filesystem::path> TestEncoder::OutputOf(const string& jobID) const {
    const auto job = FindJob(jobID);
    return job ? std::optional(PathOf(job->outputFilePath)) : std::nullopt;
}

void TestEncoder::WriteOutput(const std::filesystem::path& path, bool partial) const {
    std::optional<std::uint64_t> bytes;
    {
        const std::lock_guard lock(mutex);
        bytes = renderBytes;
    }
    if (bytes) {
        WriteBytes(path, partial ? std::min(*bytes, kPartialBytes) : *bytes);
        return;
    }
    const std::filesystem::path clip = TestClip::Path();
    if (partial) {
        std::ifstream in(clip, std::ios::binary);
        std::vector<char> head(kPartialBytes);
        in.read(head.data(), static_cast<std::streamsize>(head.size()));
        std::ofstream(path, std::ios::binary | std::ios::trunc).write(head.data(), in.gcount());
        return;
    }
    std::filesystem::copy_file(clip, path, std::filesystem::copy_options::overwrite_existing);
}

}  // namespace vantrokelui::model::testing
