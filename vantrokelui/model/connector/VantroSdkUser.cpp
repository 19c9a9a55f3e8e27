#include <vantrokelui/model/connector/VantroSdkUser.h>

#include <vantrokelui/model/connector/SdkClient.h>
#include <vantrokelui/model/connector/VantroSdkAccount.h>
#include <vantrokelui/model/connector/detail/NodeIdentity.h>
#include <vantrokelui/utility/WeakBindMemberFunction.h>
#include <vantrosdk/Accounts.h>
#include <vantrosdk/GetCurrentUserAccountListRequest.h>

namespace vantrokelui::model::VantroConnectorIntegration {

VantroSdkUser::VantroSdkUser(const vantrosdk::User& user) : VantroUser(std::weak_ptr<VantroNode>()) {
    detail::SetIdentity(*this, user.id, user.name);
}

VantroSdkUser::~VantroSdkUser() = default;

void VantroSdkUser::FetchChildren() {
    SetAccounts({});
    VantroUser::FetchChildren();
    const std::shared_ptr<vantrosdk::VantroClient> client = GetClient();
    if (!client) {
        return;
    }
    const auto answer = client->GetAccounts()->GetCurrentUserAccountList(
        vantrosdk::GetCurrentUserAccountListRequest());
    std::shared_ptr<kelcore::threads::AsyncExecutor> executor = answer.GetExecutor();
    if (!executor) {
        executor = kelcore::async::GetDefaultExecutor();
    }
    auto chain = answer.Then(
        std::move(executor),
        utility::WeakBindMemberFunction(WeakAs<VantroSdkUser>(), &VantroSdkUser::AddAccounts));
    const std::lock_guard lock(fetchMutex);
    fetchFuture = std::move(chain);
}

void VantroSdkUser::AddAccounts(
    const kelcore::async::Future<std::shared_ptr<vantrosdk::GetCurrentUserAccountListResponse>>&
        answer) {
    if (kelcore::config::ExtractResultFromException(answer) < 0) {
        return;
    }
    const std::shared_ptr<vantrosdk::GetCurrentUserAccountListResponse>& response = answer.Get();
    if (!response->IsSuccessful()) {
        return;
    }
    const std::shared_ptr<VantroNode> self = SharedAs<VantroNode>();
    utility::SharedPtrVector<VantroAccount> accounts;
    for (const vantrosdk::Account& account : response->GetCurrentUserAccountListObject()) {
        accounts.push_back(std::make_shared<VantroSdkAccount>(account, self));
    }
    SetAccounts(accounts);
    SetFetchChildrenState(FetchChildrenState::Fetched);
}

}  // namespace vantrokelui::model::VantroConnectorIntegration
