#include <vantrokelui/model/connector/SdkClient.h>

#include <mutex>
#include <utility>

namespace vantrokelui::model::VantroConnectorIntegration {

namespace {

// Copied by callers on many threads while sign-in replaces it; the mutex only guards the copy.
std::mutex sClientMutex;
std::shared_ptr<vantrosdk::VantroClient> sClient;

}  // namespace

std::shared_ptr<vantrosdk::VantroClient> GetClient() {
    const std::lock_guard lock(sClientMutex);
    return sClient;
}

void SetClient(std::shared_ptr<vantrosdk::VantroClient> client) {
    const std::lock_guard lock(sClientMutex);
    sClient = std::move(client);
}

void ClearClient() {
    SetClient(nullptr);
}

}  // namespace vantrokelui::model::VantroConnectorIntegration
