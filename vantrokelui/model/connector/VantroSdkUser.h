// The signed-in user as the SDK back end sees them: made by GetCurrentUser from the service's
// answer, with no parent. FetchChildren asks for the user's accounts in one request (accounts
// are not paged) and stores them as VantroSdkAccount nodes, whose setter then fills the tree
// eagerly down to each project's root folder. Owned by the panel's view model like any user.
// FetchChildren: main thread or a view model continuation; AddAccounts: the SDK's executor.
//
//   auto user = std::make_shared<VantroSdkUser>(response->GetUserObject());
//   user->FetchChildren();   // Accounts empty, Fetching; later the accounts, Fetched
#pragma once

#include <memory>
#include <mutex>

#include <kelcore/async/Future.h>
#include <vantrokelui/nodes/VantroUser.h>
#include <vantrosdk/GetCurrentUserAccountListResponse.h>
#include <vantrosdk/User.h>

namespace vantrokelui::model::VantroConnectorIntegration {

class VantroSdkUser : public VantroUser {
public:
    /// A user with the record's id and name, at the top of its tree.
    explicit VantroSdkUser(const vantrosdk::User& user);
    ~VantroSdkUser() override;

    /// Empties Accounts, sets Fetching, and asks for the account list. Without an SDK client
    /// it stops there and the state stays Fetching. Any thread.
    void FetchChildren() override;

    /// Replaces Accounts by a VantroSdkAccount for each account of a successful answer, then
    /// sets Fetched. A failed exchange or a refused answer changes nothing. Bound weakly: a
    /// user that has died gets nothing. The SDK's executor.
    void AddAccounts(
        const kelcore::async::Future<std::shared_ptr<vantrosdk::GetCurrentUserAccountListResponse>>&
            answer);

private:
    // FetchChildren may be called again from another thread while a chain is held.
    std::mutex fetchMutex;
    // The end of the account request's chain, kept to hold the chain alive.
    kelcore::async::Future<void> fetchFuture;
};

}  // namespace vantrokelui::model::VantroConnectorIntegration
