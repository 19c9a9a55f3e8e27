#include <vantrokelui/model/connector/UserFunctions.h>

#include <exception>
#include <mutex>
#include <utility>

#include <kelcore/async/Executors.h>
#include <kelcore/async/Future.h>
#include <vantrokelui/model/connector/SdkClient.h>
#include <vantrokelui/model/connector/VantroSdkUser.h>
#include <vantrosdk/Accounts.h>
#include <vantrosdk/GetAccountRequest.h>
#include <vantrosdk/GetCurrentUserRequest.h>

namespace vantrokelui::model::VantroConnectorIntegration {

namespace {

// Where a continuation runs: the future's own executor, or the default one, never inline.
template <class T>
std::shared_ptr<kelcore::threads::AsyncExecutor> ExecutorOf(const kelcore::async::Future<T>& f) {
    std::shared_ptr<kelcore::threads::AsyncExecutor> executor = f.GetExecutor();
    return executor ? executor : kelcore::async::GetDefaultExecutor();
}

}  // namespace

void GetCurrentUser(const std::function<void(const std::shared_ptr<VantroUser>&)>& callback) {
    const std::shared_ptr<vantrosdk::VantroClient> client = GetClient();
    if (!client) {
        callback(nullptr);
        return;
    }
    const auto answer = client->GetAccounts()->GetCurrentUser(vantrosdk::GetCurrentUserRequest());
    auto chain = answer.Then(ExecutorOf(answer), [callback](const auto& completed) {
        if (kelcore::config::ExtractResultFromException(completed) < 0) {
            return;
        }
        const auto& response = completed.Get();
        if (!response->IsSuccessful()) {
            return;
        }
        callback(std::make_shared<VantroSdkUser>(response->GetUserObject()));
    });
    // The last request's chain is kept; a new call replaces it. Calls may come from two threads.
    static std::mutex sChainMutex;
    static kelcore::async::Future<void> sChain;
    const std::lock_guard lock(sChainMutex);
    sChain = std::move(chain);
}

void CheckStorageLimitOnAccount(const vantrocommon::Guid& accountId,
                                const std::function<void(bool)>& callback) {
    const std::shared_ptr<vantrosdk::VantroClient> client = GetClient();
    if (!client) {
        return;
    }
    const auto answer = client->GetAccounts()->GetAccount(vantrosdk::GetAccountRequest(accountId));
    answer.Then(
        ExecutorOf(answer),
        [callback](const std::shared_ptr<vantrosdk::GetAccountResponse>& response) {
            bool overLimit = false;
            if (response && response->IsSuccessful()) {
                const vantrosdk::Account& account = response->GetAccountResponseObject();
                if (account.plan && account.plan->storageLimit && account.storageUsed) {
                    overLimit = *account.storageUsed > *account.plan->storageLimit;
                }
            }
            callback(overLimit);
        },
        [callback](const std::exception_ptr&) { callback(false); });
}

}  // namespace vantrokelui::model::VantroConnectorIntegration
