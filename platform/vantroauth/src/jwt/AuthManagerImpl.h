// The process-wide manager behind the free functions of vantroauth/jwt/AuthManager.h: the
// configuration of the last InitializeAuthManager, the current user and their tokens in
// memory, the interactive sign-in that may be running, the refresh in flight and the timer that
// refreshes ahead of expiry. Made on first use and kept until exit (Instance); callbacks that
// may outlive a call hold it weakly.
//
// Any thread. One mutex guards the state and is never held while calling out (opener, store,
// transport, a caller's function). A second one, `storeMutex`, is held only around store calls
// together with the memory change they follow, so that, for instance, a refresh that ends while
// the user signs out cannot write its tokens back after the sign-out deleted them; the store
// never calls back, so it cannot deadlock. Order: storeMutex before mutex.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <kelcore/async/Future.h>
#include <kelcore/async/Promise.h>
#include <kelcore/threads/Clock.h>
#include <vantrocommon/EnvironmentType.h>
#include <vantrocommon/Response.h>
#include <vantrocommon/http/Reply.h>

#include "StoredTokens.h"

namespace vantroauth::jwt {

class AuthManagerImpl : public std::enable_shared_from_this<AuthManagerImpl> {
public:
    /// The process's manager. Any thread.
    static std::shared_ptr<AuthManagerImpl> Instance();
    /// Stops a sign-in that still runs.
    ~AuthManagerImpl();
    AuthManagerImpl(const AuthManagerImpl&) = delete;
    AuthManagerImpl& operator=(const AuthManagerImpl&) = delete;

    vantrocommon::Response Initialize(const std::string& clientId, const std::string& redirectUri,
                                      vantrocommon::EnvironmentType environment,
                                      const std::string& profile);
    vantrocommon::Response AccessTokenExists(const std::string& userId);
    kelcore::async::Future<std::string> GetAccessToken(bool forceRefresh);
    vantrocommon::Response Login(const std::string& userId, std::function<void(int)> onFinished);
    vantrocommon::Response Logout();
    vantrocommon::Response StoreTokenAnswer(const std::string& userId,
                                            const std::string& tokenJson);
    void SetLoginTimeout(std::chrono::milliseconds timeout);

private:
    struct Config;
    struct Session;
    struct LoginAttempt;
    struct RefreshOperation;
    struct TimerPlan {
        std::string user;
        std::uint64_t version = 0;
        kelcore::threads::Clock::TimePoint at;
    };
    using TokenPromise = std::shared_ptr<kelcore::async::Promise<std::string>>;
    using ReplyFuture = kelcore::async::Future<vantrocommon::http::Reply>;

    AuthManagerImpl();

    /// Reads `user`'s tokens from the store into memory unless they are there already.
    vantrocommon::Response LoadSession(const std::string& user);
    /// With `mutex` held: makes `tokens` the session of `user`; answers the refresh timer to
    /// set when there is a refresh token.
    std::optional<TimerPlan> InstallLocked(const std::string& user, const StoredTokens& tokens);
    void ScheduleRefresh(const TimerPlan& plan);
    void OnRefreshTimer(const std::string& user, std::uint64_t version);

    /// Answers `promise` from the current state: a valid token, a refresh (shared), the
    /// running sign-in, or a failure.
    void Dispatch(const TokenPromise& promise, bool forceRefresh);
    /// With `mutex` held: the refresh of the session's token that `promise` (may be null)
    /// joins; a new operation to send when none was in flight.
    std::shared_ptr<RefreshOperation> JoinRefreshLocked(const TokenPromise& promise);
    void SendRefresh(const std::shared_ptr<RefreshOperation>& operation);
    void FinishRefresh(const std::shared_ptr<RefreshOperation>& operation,
                       const ReplyFuture& reply);
    /// With `mutex` held: ends `operation` as the refresh in flight and moves its waiters to
    /// `waiters`; true when the session is still the one the refresh started from.
    bool RetireRefreshLocked(const std::shared_ptr<RefreshOperation>& operation,
                             std::vector<TokenPromise>& waiters);
    void CommitRefresh(const std::shared_ptr<RefreshOperation>& operation,
                       const StoredTokens& fresh);
    void EndSession(const std::shared_ptr<RefreshOperation>& operation);
    void FailRefresh(const std::shared_ptr<RefreshOperation>& operation,
                     kelcore::config::ResultCode code, const std::string& reason);

    /// On the listener's thread: checks the redirect and starts the code exchange.
    bool OnRedirect(const std::shared_ptr<LoginAttempt>& attempt,
                    const std::map<std::string, std::string>& query);
    void FinishLogin(const std::shared_ptr<LoginAttempt>& attempt, const ReplyFuture& reply);
    /// Ends `attempt` with `code` unless it ended already: its functions and waiters hear it.
    void FailLogin(const std::shared_ptr<LoginAttempt>& attempt, kelcore::config::ResultCode code,
                   const std::string& reason);

    std::mutex storeMutex;
    std::mutex mutex;
    std::shared_ptr<const Config> config;
    std::string currentUser;
    std::unique_ptr<Session> session;
    std::shared_ptr<LoginAttempt> login;
    std::shared_ptr<RefreshOperation> refresh;
    std::uint64_t nextVersion = 1;
    std::chrono::milliseconds loginTimeout{std::chrono::minutes(5)};
};

}  // namespace vantroauth::jwt
