#include <vantrosdk/TransferManager.h>

#include <utility>

#include <vantrocommon/ResultCodes.h>

#include "detail/ClientCore.h"
#include "detail/TransferRegistry.h"
#include "detail/UploadJob.h"

namespace vantrosdk {

TransferManager::TransferManager(std::shared_ptr<detail::ClientCore> core)
    : core(std::move(core)), registry(this->core->Transfers()) {}

TransferManager::~TransferManager() = default;

kelcore::async::Future<std::shared_ptr<UploadResponse>> TransferManager::Upload(
    const UploadRequest& request, vantrocommon::Guid& transferID) {
    transferID = vantrocommon::Guid::CreateUnique();
    auto job = std::make_shared<detail::UploadJob>(core, registry, transferID, request);
    registry->Add(transferID, job);
    auto future = job->GetFuture();
    job->Start();
    return future;
}

vantrocommon::Response TransferManager::UploadCancel(vantrocommon::Guid transferID) {
    const auto job = registry->Find(transferID);
    if (!job || !job->Cancel()) {
        return vantrocommon::Response(vantrocommon::kResultInvalidArgument,
                                      "no running upload has the id " + transferID.AsString());
    }
    return vantrocommon::Response::Success();
}

}  // namespace vantrosdk
