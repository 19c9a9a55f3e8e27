#include "detail/UploadJob.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <set>
#include <utility>

#include <boost/json/object.hpp>

#include <vantrocommon/ResultCodes.h>

#include "detail/Exchange.h"
#include "detail/Futures.h"
#include "detail/Records.h"
#include "detail/TransferRegistry.h"

namespace vantrosdk::detail {

namespace {

using kelcore::async::Future;
using vantrocommon::http::Reply;
using vantrocommon::http::Request;

constexpr std::uint64_t kMiB = 1024 * 1024;
// The service's bounds on parts.
constexpr std::uint64_t kMinimumPartSize = 5 * kMiB;
constexpr std::uint64_t kMaximumPartSize = 1024 * kMiB;
constexpr std::uint64_t kMaximumPartCount = 10'000;
// Large enough for the digests to run at full speed, small enough to stay in cache while both
// lanes read it.
constexpr std::size_t kHashBlock = 1 * kMiB;
// Blocks read ahead of the whole-file lane at most: bounds the memory to a few MiB.
constexpr int kBlocksAhead = 8;
// Blocks the reading lane handles per task before it posts the next, so a cancel is seen soon.
constexpr int kBlocksPerTask = 4;
// What a part refused with 409 or 422 is retried as.
const Reply kAsUnavailable = [] {
    Reply reply;
    reply.status = 503;
    return reply;
}();
// Rounds of "complete, resend the parts it misses" before giving up.
constexpr int kMaximumCompleteTries = 4;

std::uint64_t ChoosePartSize(std::uint64_t configured, std::uint64_t fileSize) {
    std::uint64_t size = std::clamp(configured, kMinimumPartSize, kMaximumPartSize);
    if (fileSize > size * kMaximumPartCount) {
        const std::uint64_t needed = (fileSize + kMaximumPartCount - 1) / kMaximumPartCount;
        size = std::min(kMaximumPartSize, (needed + kMiB - 1) / kMiB * kMiB);
    }
    return size;
}

std::string FileError(const std::string& what, const std::string& path, int error) {
    return what + " " + path + ": " + std::strerror(error);
}

}  // namespace

UploadJob::UploadJob(std::shared_ptr<ClientCore> core, std::weak_ptr<TransferRegistry> registry,
                     vantrocommon::Guid transferId, UploadRequest request)
    : core(std::move(core)),
      registry(std::move(registry)),
      transferId(transferId),
      request(std::move(request)),
      promise(this->core->Executor()),
      progress(this->request.GetProgress()) {}

UploadJob::~UploadJob() {
    if (descriptor >= 0) {
        ::close(descriptor);
    }
}

void UploadJob::Start() {
    core->Executor()->Post([self = shared_from_this()] { self->Begin(); });
}

void UploadJob::Begin() {
    if (IsFinished()) {
        return;
    }
    const std::string& path = request.GetPath();
    descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        Fail(MakeFailure(vantrocommon::kResultFileError, FileError("cannot open", path, errno)));
        return;
    }
    struct stat status {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        Fail(MakeFailure(vantrocommon::kResultFileError, "not a regular file: " + path));
        return;
    }
    fileSize = static_cast<std::uint64_t>(status.st_size);
    progress.SetTotal(fileSize);

    std::string name = request.GetName();
    if (name.empty()) {
        name = std::filesystem::path(path).filename().string();
    }
    boost::json::object body{{"name", name},
                             {"filesize", fileSize},
                             {"part_size", ChoosePartSize(core->PartSize(), fileSize)}};
    if (!request.GetAutoversionId().IsNil()) {
        body["autoversion_id"] = request.GetAutoversionId().AsString();
    }
    // Sent once, and without the cancel token: an upload the service made after a cancel must
    // still be seen, so that it can be deleted.
    core->Send(PostJson(*core, "/v2/assets/" + request.GetFolderId().AsString() + "/uploads", body),
               ClientCore::Retry::Once)
        .Then(core->Executor(), [self = shared_from_this()](const Future<Reply>& answer) {
            self->OnCreated(answer);
        });
}

void UploadJob::OnCreated(const Future<Reply>& answer) {
    if (const auto failure = FailureOf(answer)) {
        Fail(failure);
        return;
    }
    const Reply& reply = answer.Get();
    boost::json::value body;
    try {
        body = ParseBody(reply);
    } catch (...) {
        Fail(std::current_exception());
        return;
    }
    if (!reply.IsSuccessStatus()) {
        Refuse(std::make_shared<UploadResponse>(reply.status, reply.headers, Asset()));
        return;
    }
    const std::string id = StringMember(body, "upload_id");
    const auto partSize = UnsignedMember(body, "part_size");
    const auto partCount = UnsignedMember(body, "part_count");
    const std::uint64_t expectedCount =
        fileSize == 0 || !partSize || *partSize == 0 ? 1 : (fileSize + *partSize - 1) / *partSize;
    bool cancelledMeanwhile = false;
    {
        std::lock_guard lock(mutex);
        cancelledMeanwhile = finished;
        if (!finished) {
            uploadId = id;  // From here on, an ending deletes it.
        }
    }
    if (cancelledMeanwhile) {
        DeleteAtService(id);
        return;
    }
    if (id.empty() || !partSize || *partSize == 0 || !partCount || *partCount != expectedCount) {
        Fail(MakeFailure(vantrocommon::kResultBadResponse,
                         "the service's upload does not describe its parts"));
        return;
    }
    {
        std::lock_guard lock(mutex);
        parts.resize(*partCount);
        for (std::uint64_t i = 0; i < *partCount; ++i) {
            parts[i].offset = i * *partSize;
            parts[i].length = std::min(*partSize, fileSize - parts[i].offset);
        }
        phase = Phase::Sending;
    }
    core->Executor()->Post([self = shared_from_this()] { self->ReadAndHashParts(); });
}

void UploadJob::ReadAndHashParts() {
    for (int handled = 0; handled < kBlocksPerTask; ++handled) {
        if (IsFinished()) {
            return;
        }
        Block block;
        {
            std::lock_guard lock(hashMutex);
            if (blocksOut >= kBlocksAhead) {
                readerParked = true;  // The whole-file lane posts this lane again.
                return;
            }
            ++blocksOut;
            if (!spareBuffers.empty()) {
                block.data = std::move(spareBuffers.back());
                spareBuffers.pop_back();
            }
        }
        block.data.resize(kHashBlock);
        std::uint64_t partOffset = 0;
        std::uint64_t partLength = 0;
        {
            std::lock_guard lock(mutex);
            partOffset = parts[readPart].offset;
            partLength = parts[readPart].length;
        }
        const auto wanted =
            static_cast<std::size_t>(std::min<std::uint64_t>(partLength - readInPart, kHashBlock));
        if (wanted > 0) {
            const ssize_t got = ::pread(descriptor, block.data.data(), wanted,
                                        static_cast<off_t>(partOffset + readInPart));
            if (got <= 0) {
                Fail(MakeFailure(
                    vantrocommon::kResultFileError,
                    got == 0 ? "the file became shorter while it was read: " + request.GetPath()
                             : FileError("cannot read", request.GetPath(), errno)));
                return;
            }
            block.size = static_cast<std::size_t>(got);
            partDigest.Update(block.data.data(), block.size);
            readInPart += block.size;
        }
        const bool partDone = readInPart == partLength;
        // The part table's size is fixed once hashing starts.
        const bool lastPart = readPart + 1 == parts.size();
        block.last = partDone && lastPart;
        bool startWholeLane = false;
        {
            std::lock_guard lock(hashMutex);
            blocks.push_back(std::move(block));
            startWholeLane = !wholeLaneRunning;
            wholeLaneRunning = true;
        }
        if (startWholeLane) {
            core->Executor()->Post([self = shared_from_this()] { self->HashWholeFile(); });
        }
        if (partDone) {
            const std::string digest = partDigest.FinishHex();
            {
                std::lock_guard lock(mutex);
                Part& done = parts[readPart];
                done.sha256 = digest;
                if (!done.held && !done.inFlight) {
                    ready.push_back(readPart);
                }
            }
            PumpSenders();
            if (lastPart) {
                return;
            }
            ++readPart;
            readInPart = 0;
        }
    }
    core->Executor()->Post([self = shared_from_this()] { self->ReadAndHashParts(); });
}

void UploadJob::HashWholeFile() {
    for (;;) {
        const bool stopped = IsFinished();
        Block block;
        {
            std::lock_guard lock(hashMutex);
            if (blocks.empty() || stopped) {
                wholeLaneRunning = false;
                return;
            }
            block = std::move(blocks.front());
            blocks.pop_front();
        }
        wholeFile.Update(block.data.data(), block.size);
        bool wakeReader = false;
        {
            std::lock_guard lock(hashMutex);
            --blocksOut;
            spareBuffers.push_back(std::move(block.data));
            wakeReader = readerParked;
            readerParked = false;
        }
        if (wakeReader) {
            core->Executor()->Post([self = shared_from_this()] { self->ReadAndHashParts(); });
        }
        if (block.last) {
            const std::string digest = wholeFile.FinishHex();
            {
                std::lock_guard lock(mutex);
                wholeFileSha256 = digest;
                hashingDone = true;
            }
            MaybeComplete();
            return;  // Nothing follows the last block; the lane stays marked as running.
        }
    }
}

void UploadJob::PumpSenders() {
    std::vector<std::size_t> starting;
    {
        std::lock_guard lock(mutex);
        if (finished || phase != Phase::Sending || resumeWanted) {
            return;
        }
        const int limit = std::max(1, core->PartsInFlight());
        while (inFlight < limit && !ready.empty()) {
            const std::size_t index = ready.front();
            ready.pop_front();
            Part& part = parts[index];
            if (part.held || part.inFlight) {
                continue;
            }
            part.inFlight = true;
            part.schedule.emplace(core->Policy());  // A fresh budget for each round.
            ++inFlight;
            starting.push_back(index);
        }
    }
    for (const std::size_t index : starting) {
        SendPart(index);
    }
}

void UploadJob::SendPart(std::size_t index) {
    if (IsFinished()) {
        return;
    }
    Request put;
    {
        std::lock_guard lock(mutex);
        const Part& part = parts[index];
        put = MakeRequest(
            "PUT", core->Url("/v2/uploads/" + uploadId + "/parts/" + std::to_string(index + 1)));
        put.headers.emplace_back("X-Content-SHA256", part.sha256);
        put.body = vantrocommon::http::FileRange{request.GetPath(), part.offset, part.length};
    }
    core->Send(std::move(put), ClientCore::Retry::Once, cancel)
        .Then(core->Executor(), [self = shared_from_this(), index](const Future<Reply>& answer) {
            self->OnPartAnswered(index, answer);
        });
}

void UploadJob::OnPartAnswered(std::size_t index, const Future<Reply>& answer) {
    if (IsFinished()) {
        return;
    }
    const std::exception_ptr failure = FailureOf(answer);
    if (!failure && answer.Get().status == 200) {
        std::uint64_t sent = 0;
        {
            std::lock_guard lock(mutex);
            Part& part = parts[index];
            part.inFlight = false;
            part.held = true;
            --inFlight;
            if (!part.counted) {
                part.counted = true;
                acknowledged += part.length;
            }
            sent = acknowledged;
        }
        progress.Report(sent);
        PumpSenders();
        MaybeResume();
        MaybeComplete();
        return;
    }

    std::optional<std::chrono::milliseconds> delay;
    std::exception_ptr reason = failure;
    {
        std::lock_guard lock(mutex);
        auto& schedule = *parts[index].schedule;
        if (failure) {
            delay = schedule.NextDelay(kelcore::async::ResultOf(answer));
        } else {
            const Reply& reply = answer.Get();
            reason = MakeFailure(vantrocommon::kResultHttpError,
                                 "part " + std::to_string(index + 1) + " of an upload: status " +
                                     std::to_string(reply.status));
            // A part still being received (409) or damaged on the way (422) is worth another
            // try here, though not for the policy's other requests: ask as for a 503.
            const bool partRetryable = reply.status == 409 || reply.status == 422;
            delay = partRetryable ? schedule.NextDelay(kAsUnavailable) : schedule.NextDelay(reply);
        }
        if (!delay) {
            parts[index].inFlight = false;
            --inFlight;
            resumeWanted = true;
            lastFailure = reason;
        }
    }
    if (delay) {
        core->Executor()->PostAfterDelay(
            [self = shared_from_this(), index] { self->SendPart(index); },
            static_cast<std::uint64_t>(delay->count()));
        return;
    }
    MaybeResume();
}

void UploadJob::MaybeResume() {
    std::string id;
    {
        std::lock_guard lock(mutex);
        if (finished || !resumeWanted || inFlight > 0 || phase != Phase::Sending) {
            return;
        }
        phase = Phase::Resuming;
        id = uploadId;
    }
    core->Send(MakeRequest("GET", core->Url("/v2/uploads/" + id)), ClientCore::Retry::Policy,
               cancel)
        .Then(core->Executor(),
              [self = shared_from_this()](const Future<Reply>& answer) { self->OnStatus(answer); });
}

void UploadJob::OnStatus(const Future<Reply>& answer) {
    if (IsFinished()) {
        return;
    }
    if (const auto failure = FailureOf(answer)) {
        Fail(failure);
        return;
    }
    const Reply& reply = answer.Get();
    if (reply.status != 200) {
        Fail(MakeFailure(
            vantrocommon::kResultHttpError,
            "the upload's status could not be read: status " + std::to_string(reply.status)));
        return;
    }
    boost::json::value body;
    try {
        body = ParseBody(reply);
    } catch (...) {
        Fail(std::current_exception());
        return;
    }
    std::set<std::uint64_t> listed;
    if (const auto* object = body.if_object()) {
        if (const auto* held = object->if_contains("parts"); held && held->is_array()) {
            for (const auto& entry : held->get_array()) {
                if (const auto number = UnsignedMember(entry, "part")) {
                    listed.insert(*number);
                }
            }
        }
    }
    std::exception_ptr giveUp;
    std::optional<std::uint64_t> sent;  // Set when the listing acknowledged more bytes.
    {
        std::lock_guard lock(mutex);
        int held = 0;
        for (std::size_t i = 0; i < parts.size(); ++i) {
            held += listed.count(i + 1) ? 1 : 0;
        }
        if (held <= heldAtLastResume) {
            // The last round moved nothing forward: another would fail the same way.
            giveUp = lastFailure ? lastFailure
                                 : MakeFailure(vantrocommon::kResultRetriesExhausted,
                                               "an upload's parts could not be sent");
        } else {
            heldAtLastResume = held;
            ready.clear();
            for (std::size_t i = 0; i < parts.size(); ++i) {
                Part& part = parts[i];
                part.held = listed.count(i + 1) > 0;
                if (part.held && !part.counted) {
                    part.counted = true;
                    acknowledged += part.length;
                    sent = acknowledged;
                }
                if (!part.held && !part.sha256.empty()) {
                    ready.push_back(i);
                }
            }
            resumeWanted = false;
            phase = Phase::Sending;
        }
    }
    if (giveUp) {
        Fail(giveUp);
        return;
    }
    if (sent) {
        progress.Report(*sent);
    }
    PumpSenders();
    MaybeComplete();
}

void UploadJob::MaybeComplete() {
    {
        std::lock_guard lock(mutex);
        if (finished || phase != Phase::Sending || !hashingDone || inFlight > 0 || resumeWanted) {
            return;
        }
        for (const Part& part : parts) {
            if (!part.held) {
                return;
            }
        }
        phase = Phase::Completing;
    }
    SendComplete();
}

void UploadJob::SendComplete() {
    if (IsFinished()) {
        return;
    }
    std::string id;
    std::string sha256;
    {
        std::lock_guard lock(mutex);
        id = uploadId;
        sha256 = wholeFileSha256;
        ++completeTries;
    }
    core->Send(PostJson(*core, "/v2/uploads/" + id + "/complete",
                        boost::json::object{{"sha256", sha256}}),
               ClientCore::Retry::Policy, cancel)
        .Then(core->Executor(), [self = shared_from_this()](const Future<Reply>& answer) {
            self->OnCompleted(answer);
        });
}

void UploadJob::OnCompleted(const Future<Reply>& answer) {
    if (IsFinished()) {
        return;
    }
    if (const auto failure = FailureOf(answer)) {
        Fail(failure);
        return;
    }
    const Reply& reply = answer.Get();
    boost::json::value body;
    try {
        body = ParseBody(reply);
    } catch (...) {
        Fail(std::current_exception());
        return;
    }
    if (reply.IsSuccessStatus()) {
        Succeed(std::make_shared<UploadResponse>(reply.status, reply.headers, ReadAsset(body)));
        return;
    }
    if (reply.status != 409) {
        Refuse(std::make_shared<UploadResponse>(reply.status, reply.headers, Asset()));
        return;
    }
    // 409: parts are missing (send them, then complete again), or one is still being received.
    std::vector<std::uint64_t> missing;
    if (const auto* object = body.if_object()) {
        if (const auto* numbers = object->if_contains("missing_parts");
            numbers && numbers->is_array()) {
            for (const auto& number : numbers->get_array()) {
                if (number.is_int64() && number.get_int64() > 0) {
                    missing.push_back(static_cast<std::uint64_t>(number.get_int64()));
                } else if (number.is_uint64()) {
                    missing.push_back(number.get_uint64());
                }
            }
        }
    }
    bool exhausted = false;
    {
        std::lock_guard lock(mutex);
        exhausted = completeTries >= kMaximumCompleteTries;
        if (!exhausted) {
            for (const std::uint64_t number : missing) {
                if (number >= 1 && number <= parts.size() && parts[number - 1].held) {
                    parts[number - 1].held = false;
                    ready.push_back(number - 1);
                }
            }
            if (!missing.empty()) {
                phase = Phase::Sending;
            }
        }
    }
    if (exhausted) {
        Refuse(std::make_shared<UploadResponse>(reply.status, reply.headers, Asset()));
        return;
    }
    if (!missing.empty()) {
        PumpSenders();
        MaybeComplete();
        return;
    }
    const auto delay = core->Policy().initialDelay.count();
    core->Executor()->PostAfterDelay([self = shared_from_this()] { self->SendComplete(); },
                                     static_cast<std::uint64_t>(std::max<std::int64_t>(0, delay)));
}

bool UploadJob::IsFinished() const {
    std::lock_guard lock(mutex);
    return finished;
}

bool UploadJob::MarkFinished() {
    {
        std::lock_guard lock(mutex);
        if (finished) {
            return false;
        }
        finished = true;
        phase = Phase::Finished;
    }
    if (const auto owner = registry.lock()) {
        owner->Remove(transferId);
    }
    return true;
}

void UploadJob::Succeed(std::shared_ptr<UploadResponse> response) {
    if (!MarkFinished()) {
        return;
    }
    progress.Report(fileSize);
    progress.Flush();  // (size, size) is delivered before the future completes.
    promise.SetValue(std::move(response));
}

void UploadJob::Refuse(std::shared_ptr<UploadResponse> response) {
    if (!Abandon()) {
        return;
    }
    promise.SetValue(std::move(response));
}

void UploadJob::Fail(std::exception_ptr failure) {
    if (!Abandon()) {
        return;
    }
    promise.SetException(std::move(failure));
}

bool UploadJob::Abandon() {
    if (!MarkFinished()) {
        return false;
    }
    progress.Stop();
    cancel.Cancel();
    std::string id;
    {
        std::lock_guard lock(mutex);
        id = uploadId;
    }
    DeleteAtService(id);  // When the upload is still being made, OnCreated deletes it.
    return true;
}

bool UploadJob::Cancel() {
    if (!Abandon()) {
        return false;
    }
    // Completed on the executor: the caller of UploadCancel must not run continuations.
    core->Executor()->Post([self = shared_from_this()] {
        self->promise.SetException(
            MakeFailure(vantrocommon::kResultCancelled, "the upload was cancelled"));
    });
    return true;
}

void UploadJob::DeleteAtService(const std::string& id) {
    if (id.empty()) {
        return;
    }
    core->Send(MakeRequest("DELETE", core->Url("/v2/uploads/" + id)), ClientCore::Retry::Once)
        .Then(core->Executor(), [](const Future<Reply>&) {});
}

}  // namespace vantrosdk::detail
