// What to upload and where: a file on disk, the folder it goes into, the name it takes there
// (the file's own name unless set), an optional version stack to join, and a progress function.
// A plain value, copied by TransferManager::Upload; any thread.
//
//   UploadRequest request(folder, "/media/cut3.mov", [](std::uint64_t sent, std::uint64_t total) {
//       ShowProgress(sent, total); });
//   request.SetAutoversionId(stack);
//   client->GetTransferManager()->Upload(request, transferID);
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include <vantrocommon/Guid.h>
#include <vantrosdk/VantroRequest.h>

namespace vantrosdk {

class UploadRequest : public VantroRequest {
public:
    /// (bytes the server has acknowledged, the file's size). Called on the SDK's executor or
    /// the transport's thread, never under an SDK lock; it must be quick and must not block.
    using ProgressFunction = std::function<void(std::uint64_t sent, std::uint64_t total)>;

    /// `progress` may be empty.
    UploadRequest(vantrocommon::Guid folderId, std::string path, ProgressFunction progress)
        : folderId(folderId), path(std::move(path)), progress(std::move(progress)) {}

    /// The version stack the file joins: with an id that does not exist yet, the first
    /// upload makes a stack with exactly that id and the file is its version 1; with an
    /// existing stack's id the file becomes its next version. The nil id means none.
    void SetAutoversionId(vantrocommon::Guid autoversionId) { this->autoversionId = autoversionId; }
    /// The name the file takes in the folder; empty (the default) means the file's own name.
    void SetName(std::string name) { this->name = std::move(name); }

    const vantrocommon::Guid& GetFolderId() const { return folderId; }
    const std::string& GetPath() const { return path; }
    const ProgressFunction& GetProgress() const { return progress; }
    /// Nil when no version stack is asked for.
    const vantrocommon::Guid& GetAutoversionId() const { return autoversionId; }
    /// The name as set; empty when the file's own name is used.
    const std::string& GetName() const { return name; }

private:
    vantrocommon::Guid folderId;
    std::string path;
    ProgressFunction progress;
    vantrocommon::Guid autoversionId;
    std::string name;
};

}  // namespace vantrosdk
