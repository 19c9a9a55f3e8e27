#include <vantrokelui/model/CloudTransferCalls.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <kelcore/async/Future.h>
#include <kelcore/config/ErrorHandling.h>
#include <vantrocommon/Guid.h>
#include <vantrocommon/ResultCodes.h>
#include <vantrokelui/model/connector/SdkClient.h>
#include <vantrosdk/AddAssetsToReviewLinkRequest.h>
#include <vantrosdk/AddAssetsToReviewLinkResponse.h>
#include <vantrosdk/CreateReviewLinkRequest.h>
#include <vantrosdk/CreateReviewLinkResponse.h>
#include <vantrosdk/ReviewLinks.h>
#include <vantrosdk/TransferManager.h>
#include <vantrosdk/UploadRequest.h>
#include <vantrosdk/UploadResponse.h>

namespace vantrokelui::model {

namespace {

using kelcore::async::Future;
using kelcore::config::ExtractResultFromException;

vantrocommon::Guid ToSdk(const kelcore::utility::Guid& guid) {
    return vantrocommon::Guid(guid.AsStdString());
}

kelcore::utility::Guid FromSdk(const vantrocommon::Guid& guid) {
    return kelcore::utility::Guid(guid.AsString());
}

}  // namespace

bool UploadToFolder(const kelcore::string::string& filePath,
                    const kelcore::utility::Guid& folderGuid,
                    const kelcore::utility::Guid& autoversionGuid,
                    kelcore::string::string& transferID, const UploadProgressCallback& progress,
                    const UploadFinishedCallback& finished) {
    const auto client = VantroConnectorIntegration::GetClient();
    if (!client) {
        return false;
    }
    // The SDK calls the progress function itself, on its transfer thread.
    vantrosdk::UploadRequest request(ToSdk(folderGuid), kelcore::string::UTF16toStdString(filePath),
                                     progress);
    request.SetAutoversionId(ToSdk(autoversionGuid));

    vantrocommon::Guid transfer;
    const Future<std::shared_ptr<vantrosdk::UploadResponse>> uploaded =
        client->GetTransferManager()->Upload(request, transfer);
    // Before the continuation is attached: an answer that is already there runs it at once.
    transferID = kelcore::string::StdToUTF16String(transfer.AsString());

    uploaded.Then([finished](const Future<std::shared_ptr<vantrosdk::UploadResponse>>& answer) {
        const kelcore::config::ResultCode result = ExtractResultFromException(answer);
        if (result >= 0) {
            const std::shared_ptr<vantrosdk::UploadResponse>& response = answer.Get();
            if (response && response->IsSuccessful() && response->GetAssetObject().id) {
                finished(true, false, FromSdk(*response->GetAssetObject().id));
                return;
            }
        }
        finished(false, result == vantrocommon::kResultCancelled, kelcore::utility::Guid());
    });
    return true;
}

bool CreateReviewLink(const kelcore::utility::Guid& projectGuid,
                      const kelcore::string::string& linkName,
                      const ReviewLinkCreatedCallback& created) {
    const auto client = VantroConnectorIntegration::GetClient();
    if (!client) {
        return false;
    }
    const vantrosdk::CreateReviewLinkRequest request(ToSdk(projectGuid),
                                                     kelcore::string::UTF16toStdString(linkName));
    client->GetReviewLinks()->CreateReviewLink(request).Then(
        [created](const Future<std::shared_ptr<vantrosdk::CreateReviewLinkResponse>>& answer) {
            if (ExtractResultFromException(answer) >= 0) {
                const std::shared_ptr<vantrosdk::CreateReviewLinkResponse>& response = answer.Get();
                if (response && response->IsSuccessful()) {
                    const vantrosdk::ReviewLink& link = response->GetReviewLinkObject();
                    if (link.id && link.url) {
                        created(true, FromSdk(*link.id),
                                kelcore::string::StdToUTF16String(*link.url));
                        return;
                    }
                }
            }
            created(false, kelcore::utility::Guid(), kelcore::string::string());
        });
    return true;
}

bool AddAssetToLink(const kelcore::utility::Guid& assetGuid,
                    const kelcore::utility::Guid& reviewLinkGuid, const AssetAddedCallback& added) {
    const auto client = VantroConnectorIntegration::GetClient();
    if (!client) {
        return false;
    }
    const vantrosdk::AddAssetsToReviewLinkRequest request(
        ToSdk(reviewLinkGuid), std::vector<vantrocommon::Guid>{ToSdk(assetGuid)});
    client->GetReviewLinks()->AddAssetsToReviewLink(request).Then(
        [added](const Future<std::shared_ptr<vantrosdk::AddAssetsToReviewLinkResponse>>& answer) {
            if (ExtractResultFromException(answer) < 0) {
                added(false);
                return;
            }
            const std::shared_ptr<vantrosdk::AddAssetsToReviewLinkResponse>& response =
                answer.Get();
            added(response && response->IsSuccessful());
        });
    return true;
}

bool CancelUploadByID(const kelcore::string::string& transferID) {
    const auto client = VantroConnectorIntegration::GetClient();
    if (!client) {
        return false;
    }
    const vantrocommon::Guid transfer(kelcore::string::UTF16toStdString(transferID));
    return client->GetTransferManager()->UploadCancel(transfer).IsSuccess();
}

}  // namespace vantrokelui::model
