#include "jwt/AuthManagerImpl.h"

#include <openssl/crypto.h>

#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <utility>

#include <kelcore/async/Executors.h>
#include <kelcore/config/kel_exception.h>
#include <kelcore/debug/DebugDatabase.h>
#include <kelcore/debug/Trace.h>
#include <kelcore/logging/Logging.h>
#include <kelcore/string/String.h>
#include <kelcore/threads/ThreadPoolExecutor.h>
#include <kelcore/utility/Keychain.h>
#include <vantroauth/ResultCodes.h>
#include <vantrocommon/ResultCodes.h>
#include <vantrocommon/RetryPolicy.h>
#include <vantrocommon/RetryingSender.h>
#include <vantrocommon/ServiceEndpoint.h>
#include <vantrocommon/http/CurlTransport.h>

#include "FileTokenStore.h"
#include "LoopbackListener.h"
#include "MemoryTokenStore.h"
#include "OAuthRequests.h"
#include "OpenBrowser.h"
#include "Pkce.h"
#include "SecretServiceTokenStore.h"
#include "TokenKey.h"
#include "TokenStoreBase.h"

namespace vantroauth::jwt {

namespace {

using kelcore::config::kel_exception;
using kelcore::config::ResultCode;
using vantrocommon::Response;

constexpr const char* kTraceCategory = "vantroauth";
/// The longest a keyring call may hold up its caller.
constexpr std::chrono::milliseconds kKeyringBound{10'000};
/// The longest Logout waits for the service to confirm the revocation.
constexpr std::chrono::milliseconds kRevokeWait{2'000};
constexpr std::chrono::milliseconds kRevokeTimeout{5'000};
constexpr std::chrono::seconds kMaxRefreshMargin{60};

void Trace(const std::string& text) {
    kelcore::debug::Trace(kTraceCategory, 5, text);
}

std::string Hex(ResultCode code) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(code));
    return text;
}

std::shared_ptr<kelcore::threads::AsyncExecutor> Executor() {
    return kelcore::async::GetDefaultExecutor();
}

// Every outcome is posted to the default executor, so no future completes inline in a call.
void Resolve(const std::shared_ptr<kelcore::async::Promise<std::string>>& promise,
             std::string token) {
    Executor()->Post([promise, token = std::move(token)] { promise->SetValue(token); });
}

void Reject(const std::shared_ptr<kelcore::async::Promise<std::string>>& promise, ResultCode code,
            const std::string& message) {
    auto error = std::make_exception_ptr(kel_exception(message, code));
    Executor()->Post([promise, error] { promise->SetException(error); });
}

void Notify(const std::function<void(int)>& onFinished, ResultCode code) {
    Executor()->Post([onFinished, code] { onFinished(code); });
}

std::string HomeUser() {
    return kelcore::string::UTF16toStdString(kelcore::utility::Keychain::GetHomeUserID());
}

bool TokenFileAllowed() {
    if (const char* allowed = std::getenv("VANTRO_ALLOW_TOKEN_FILE");
        allowed && std::string_view(allowed) == "1") {
        return true;
    }
    return kelcore::debug::DebugDatabase::Instance().GetBoolEntry("VantroAuth.AllowTokenFile",
                                                                  false);
}

bool SameSecret(const std::string& a, const std::string& b) {
    return a.size() == b.size() && CRYPTO_memcmp(a.data(), b.data(), a.size()) == 0;
}

// An OAuth error code from the redirect, fit for the log: letters and '_' only, bounded.
std::string Printable(const std::string& errorCode) {
    std::string out;
    for (char c : errorCode.substr(0, 64)) {
        out += ((c >= 'a' && c <= 'z') || c == '_') ? c : '?';
    }
    return out;
}

}  // namespace

struct AuthManagerImpl::Config {
    std::string clientId;
    std::string redirectPath;
    std::string apiBase;
    std::string profile;
    std::shared_ptr<TokenStoreBase> store;
    std::shared_ptr<vantrocommon::http::Transport> transport;

    TokenKey KeyFor(const std::string& user) const { return {apiBase, clientId, profile, user}; }
};

struct AuthManagerImpl::Session {
    std::string user;
    /// Whether `tokens` reflect the store for `user` (empty tokens then mean signed out).
    bool loaded = false;
    StoredTokens tokens;
    /// When the access token expires, on kelcore's clock.
    kelcore::threads::Clock::TimePoint expiry;
    /// Moves with every change of the tokens; a timer for an older version does nothing.
    std::uint64_t version = 0;

    /// The time from which the access token is refreshed before use: 60 s or a tenth of its
    /// lifetime before expiry, whichever is nearer to it.
    kelcore::threads::Clock::TimePoint RefreshAt() const {
        const auto tenth = std::chrono::seconds(tokens.lifetime) / 10;
        return expiry - std::min<std::chrono::steady_clock::duration>(kMaxRefreshMargin, tenth);
    }
    bool HasUsableTokens() const {
        return tokens.HasRefreshToken() ||
               (!tokens.accessToken.empty() && kelcore::threads::Now() < expiry);
    }
};

struct AuthManagerImpl::LoginAttempt {
    std::string user;
    Pkce pkce;
    std::string redirectUri;
    std::shared_ptr<const Config> config;
    std::shared_ptr<LoopbackListener> listener;
    // Guarded by the manager's mutex:
    std::vector<std::function<void(int)>> callbacks;
    std::vector<TokenPromise> waiters;
    bool codeReceived = false;
    bool finished = false;
};

struct AuthManagerImpl::RefreshOperation {
    std::string user;
    std::string oldRefreshToken;
    std::shared_ptr<const Config> config;
    std::vector<TokenPromise> waiters;  // guarded by the manager's mutex
};

namespace {

std::shared_ptr<TokenStoreBase> ChooseStore(const TokenKey& probe) {
    auto keyring = std::make_shared<SecretServiceTokenStore>(kKeyringBound);
    try {
        keyring->Load(probe);
        Trace("tokens are kept in the Secret Service");
        return keyring;
    } catch (const kel_exception& error) {
        Trace("no keyring answers: " + error.GetText());
    }
    if (TokenFileAllowed()) {
        const auto path = FileTokenStore::DefaultPath();
        auto file = FileTokenStore::Open(path);
        kelcore::logging::LogWarning(
            "vantroauth: no keyring answers; as allowed (VantroAuth.AllowTokenFile), sign-in "
            "tokens are stored in plain text in " +
            path.string());
        return file;
    }
    kelcore::logging::LogWarning(
        "vantroauth: no keyring answers; sign-in tokens are kept in memory only and the sign-in "
        "will not survive this process");
    return std::make_shared<MemoryTokenStore>();
}

void RevokeInBackground(const std::shared_ptr<vantrocommon::http::Transport>& transport,
                        const std::string& apiBase, const std::string& refreshToken,
                        const std::function<void()>& onDone = {}) {
    auto request = OAuthRequests::Revoke(apiBase, refreshToken);
    request.timeout = kRevokeTimeout;
    transport->Send(std::move(request))
        .Then([onDone](const kelcore::async::Future<vantrocommon::http::Reply>& reply) {
            const auto code = kelcore::async::ResultOf(reply);
            Trace(code < 0 ? "the revocation was not sent (" + Hex(code) + ")"
                           : "the service answered the revocation with status " +
                                 std::to_string(reply.Get().status));
            if (onDone) {
                onDone();
            }
        })
        .KeepAlive();
}

}  // namespace

std::shared_ptr<AuthManagerImpl> AuthManagerImpl::Instance() {
    static const std::shared_ptr<AuthManagerImpl> sInstance(new AuthManagerImpl());
    return sInstance;
}

AuthManagerImpl::AuthManagerImpl() : session(std::make_unique<Session>()) {}

AuthManagerImpl::~AuthManagerImpl() {
    if (login && login->listener) {
        login->listener->Stop();
    }
}

void AuthManagerImpl::SetLoginTimeout(std::chrono::milliseconds timeout) {
    std::lock_guard lock(mutex);
    loginTimeout = timeout;
}

Response AuthManagerImpl::Initialize(const std::string& clientId, const std::string& redirectUri,
                                     vantrocommon::EnvironmentType environment,
                                     const std::string& profile) {
    const auto path = OAuthRequests::RedirectPath(redirectUri);
    if (clientId.empty() || !path) {
        return Response(vantrocommon::kResultInvalidArgument,
                        "a client id and an absolute http redirect URI are needed");
    }
    const auto endpoint = vantrocommon::ServiceEndpoint::Resolve(environment);
    std::string user;
    {
        std::lock_guard lock(mutex);
        user = currentUser.empty() ? HomeUser() : currentUser;
    }
    auto fresh = std::make_shared<Config>();
    fresh->clientId = clientId;
    fresh->redirectPath = *path;
    fresh->apiBase = endpoint.apiBase;
    fresh->profile = profile;
    try {
        fresh->store = ChooseStore(fresh->KeyFor(user));
    } catch (const kel_exception& error) {
        kelcore::logging::LogError("vantroauth: " + error.GetText());
        return Response(kResultStorageFailure, error.GetText());
    }
    // Replies complete on a thread of the transport's own, so a sign-out can wait for its
    // revocation even while a test drives the default executor by hand.
    fresh->transport = vantrocommon::http::CurlTransport::Create(
        {.caFile = endpoint.caFile,
         .executor = std::make_shared<kelcore::threads::ThreadPoolExecutor>(1)});

    std::shared_ptr<LoginAttempt> stopped;
    std::vector<std::function<void(int)>> callbacks;
    std::vector<TokenPromise> waiters;
    {
        std::lock_guard lock(mutex);
        config = fresh;
        currentUser = user;
        *session = Session{};
        refresh = nullptr;
        if (login) {
            stopped = std::exchange(login, nullptr);
            stopped->finished = true;
            callbacks = std::move(stopped->callbacks);
            waiters = std::move(stopped->waiters);
        }
    }
    if (stopped) {
        stopped->listener->Stop();
        for (const auto& callback : callbacks) {
            Notify(callback, kResultLoginFailed);
        }
        for (const auto& waiter : waiters) {
            Reject(waiter, kResultLoginFailed, "the sign-in manager was restarted");
        }
    }
    LoadSession(user);
    Trace("initialized for the client " + clientId + " at " + fresh->apiBase + "; tokens in " +
          fresh->store->Describe());
    return Response::Success();
}

Response AuthManagerImpl::LoadSession(const std::string& user) {
    std::lock_guard storeLock(storeMutex);
    std::shared_ptr<const Config> loading;
    {
        std::lock_guard lock(mutex);
        if (!config) {
            return Response(kResultNotInitialized, "InitializeAuthManager was not called");
        }
        if (session->loaded && session->user == user && session->HasUsableTokens()) {
            return Response::Success();
        }
        loading = config;
    }
    std::optional<StoredTokens> stored;
    try {
        stored = loading->store->Load(loading->KeyFor(user));
    } catch (const kel_exception& error) {
        kelcore::logging::LogWarning("vantroauth: the stored tokens could not be read: " +
                                     error.GetText());
        return Response(kResultStorageFailure, error.GetText());
    }
    std::optional<TimerPlan> plan;
    {
        std::lock_guard lock(mutex);
        if (config != loading || currentUser != user) {
            return Response::Success();  // someone moved on while the store answered
        }
        plan = InstallLocked(user, stored.value_or(StoredTokens{}));
    }
    Trace(stored ? "stored tokens found" : "no stored tokens");
    if (plan) {
        ScheduleRefresh(*plan);
    }
    return Response::Success();
}

std::optional<AuthManagerImpl::TimerPlan> AuthManagerImpl::InstallLocked(
    const std::string& user, const StoredTokens& tokens) {
    session->user = user;
    session->loaded = true;
    session->tokens = tokens;
    const auto remaining = std::chrono::seconds(tokens.expiresAt) -
                           std::chrono::duration_cast<std::chrono::seconds>(
                               std::chrono::system_clock::now().time_since_epoch());
    session->expiry = kelcore::threads::Now() + remaining;
    session->version = nextVersion++;
    if (!tokens.HasRefreshToken()) {
        return std::nullopt;
    }
    return TimerPlan{user, session->version, session->RefreshAt()};
}

void AuthManagerImpl::ScheduleRefresh(const TimerPlan& plan) {
    const auto delay = std::max<std::chrono::steady_clock::duration>(
        plan.at - kelcore::threads::Now(), std::chrono::steady_clock::duration::zero());
    const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(delay).count();
    Executor()->PostAfterDelay(
        [weak = weak_from_this(), user = plan.user, version = plan.version] {
            if (auto self = weak.lock()) {
                self->OnRefreshTimer(user, version);
            }
        },
        static_cast<std::uint64_t>(milliseconds));
}

void AuthManagerImpl::OnRefreshTimer(const std::string& user, std::uint64_t version) {
    std::shared_ptr<RefreshOperation> operation;
    {
        std::lock_guard lock(mutex);
        if (!config || session->user != user || session->version != version ||
            !session->tokens.HasRefreshToken() || (login && !login->finished)) {
            return;
        }
        operation = JoinRefreshLocked(nullptr);
    }
    if (operation) {
        Trace("refreshing the access token ahead of its expiry");
        SendRefresh(operation);
    }
}

Response AuthManagerImpl::AccessTokenExists(const std::string& userId) {
    {
        std::lock_guard lock(mutex);
        if (!config) {
            return Response(kResultNotInitialized, "InitializeAuthManager was not called");
        }
        currentUser = userId;
    }
    if (auto loaded = LoadSession(userId); !loaded.IsSuccess()) {
        return loaded;
    }
    std::lock_guard lock(mutex);
    if (session->user == userId && session->HasUsableTokens()) {
        return Response::Success();
    }
    return Response(kResultNotSignedIn, "no tokens are held or stored for this user");
}

kelcore::async::Future<std::string> AuthManagerImpl::GetAccessToken(bool forceRefresh) {
    auto promise = std::make_shared<kelcore::async::Promise<std::string>>(Executor());
    auto future = promise->GetFuture();
    Dispatch(promise, forceRefresh);
    return future;
}

void AuthManagerImpl::Dispatch(const TokenPromise& promise, bool forceRefresh) {
    bool loadedOnce = false;
    for (;;) {
        std::shared_ptr<RefreshOperation> operation;
        std::string user;
        {
            std::lock_guard lock(mutex);
            if (!config) {
                Reject(promise, kResultNotInitialized, "InitializeAuthManager was not called");
                return;
            }
            if (login && !login->finished) {
                login->waiters.push_back(promise);
                return;
            }
            user = currentUser;
            if (session->loaded && session->user == user) {
                const auto& tokens = session->tokens;
                const auto now = kelcore::threads::Now();
                if (!forceRefresh && !tokens.accessToken.empty() && now < session->RefreshAt()) {
                    Resolve(promise, tokens.accessToken);
                    return;
                }
                if (tokens.HasRefreshToken()) {
                    operation = JoinRefreshLocked(promise);
                    if (!operation) {
                        return;  // joined the refresh in flight, whose end answers
                    }
                } else if (!tokens.accessToken.empty() && now < session->expiry) {
                    Resolve(promise, tokens.accessToken);  // nothing to refresh it with
                    return;
                } else {
                    Reject(promise, kResultNotSignedIn, "no one is signed in");
                    return;
                }
            }
        }
        if (operation) {
            SendRefresh(operation);
            return;
        }
        // The user's tokens are not in memory yet: read the store, without the lock, and look
        // again (once: a user switched meanwhile is the next call's business).
        if (loadedOnce) {
            Reject(promise, kResultNotSignedIn, "no one is signed in");
            return;
        }
        loadedOnce = true;
        if (const auto loaded = LoadSession(user); !loaded.IsSuccess()) {
            Reject(promise, loaded.GetResult(), loaded.GetMessage());
            return;
        }
    }
}

std::shared_ptr<AuthManagerImpl::RefreshOperation> AuthManagerImpl::JoinRefreshLocked(
    const TokenPromise& promise) {
    if (refresh && refresh->config == config && refresh->user == session->user &&
        refresh->oldRefreshToken == session->tokens.refreshToken) {
        if (promise) {
            refresh->waiters.push_back(promise);
        }
        return nullptr;
    }
    refresh = std::make_shared<RefreshOperation>();
    refresh->user = session->user;
    refresh->oldRefreshToken = session->tokens.refreshToken;
    refresh->config = config;
    if (promise) {
        refresh->waiters.push_back(promise);
    }
    return refresh;
}

void AuthManagerImpl::SendRefresh(const std::shared_ptr<RefreshOperation>& operation) {
    Trace("sending the refresh token to the token endpoint");
    const auto& settings = *operation->config;
    const auto executor = Executor();
    vantrocommon::SendWithRetry(
        settings.transport,
        OAuthRequests::Refresh(settings.apiBase, settings.clientId, operation->oldRefreshToken),
        vantrocommon::RetryPolicy{}, executor)
        .Then(executor,
              [weak = weak_from_this(), operation](const ReplyFuture& reply) {
                  if (auto self = weak.lock()) {
                      self->FinishRefresh(operation, reply);
                  }
              })
        .KeepAlive();
}

void AuthManagerImpl::FinishRefresh(const std::shared_ptr<RefreshOperation>& operation,
                                    const ReplyFuture& reply) {
    const auto code = kelcore::async::ResultOf(reply);
    if (code < 0) {
        FailRefresh(operation, code, "the token endpoint could not be reached (" + Hex(code) + ")");
        return;
    }
    const auto& answer = reply.Get();
    if (answer.status == 200) {
        StoredTokens fresh;
        try {
            fresh = StoredTokens::FromTokenAnswer(answer.body, vantrocommon::kResultBadResponse);
        } catch (const kel_exception& error) {
            FailRefresh(operation, error.GetCode(), error.GetText());
            return;
        }
        if (!fresh.HasRefreshToken()) {
            fresh.refreshToken = operation->oldRefreshToken;  // the service did not rotate it
        }
        CommitRefresh(operation, fresh);
        return;
    }
    const auto error = OAuthRequests::ErrorOf(answer);
    if ((answer.status == 400 && error == "invalid_grant") || answer.status == 401) {
        EndSession(operation);
        return;
    }
    FailRefresh(
        operation, vantrocommon::kResultHttpError,
        "the token endpoint answered the refresh with status " + std::to_string(answer.status));
}

void AuthManagerImpl::FailRefresh(const std::shared_ptr<RefreshOperation>& operation,
                                  ResultCode code, const std::string& reason) {
    std::vector<TokenPromise> waiters;
    {
        std::lock_guard lock(mutex);
        if (refresh == operation) {
            refresh = nullptr;
        }
        waiters = std::move(operation->waiters);
    }
    kelcore::logging::LogWarning("vantroauth: the access token was not refreshed: " + reason);
    for (const auto& waiter : waiters) {
        Reject(waiter, code, reason);
    }
}

bool AuthManagerImpl::RetireRefreshLocked(const std::shared_ptr<RefreshOperation>& operation,
                                          std::vector<TokenPromise>& waiters) {
    if (refresh == operation) {
        refresh = nullptr;
    }
    waiters = std::move(operation->waiters);
    return config == operation->config && session->loaded && session->user == operation->user &&
           session->tokens.refreshToken == operation->oldRefreshToken;
}

namespace {
// With the store lock held: whether the store still holds the refresh token that `oldToken`
// was, so that a refresh which lost its session may still update what is stored.
bool StoreStillHolds(TokenStoreBase& store, const TokenKey& key, const std::string& oldToken) {
    const auto stored = store.Load(key);
    return stored && stored->refreshToken == oldToken;
}
}  // namespace

void AuthManagerImpl::CommitRefresh(const std::shared_ptr<RefreshOperation>& operation,
                                    const StoredTokens& fresh) {
    std::vector<TokenPromise> waiters;
    std::optional<TimerPlan> plan;
    bool installed = false;
    bool orphaned = false;
    const auto& settings = *operation->config;
    {
        std::lock_guard storeLock(storeMutex);
        {
            std::lock_guard lock(mutex);
            installed = RetireRefreshLocked(operation, waiters);
            if (installed) {
                plan = InstallLocked(operation->user, fresh);
            }
        }
        // The old refresh token no longer works: the new one replaces it in the store, unless
        // the user signed out or in again meanwhile, in which case it is not wanted at all.
        const auto key = settings.KeyFor(operation->user);
        try {
            if (installed || StoreStillHolds(*settings.store, key, operation->oldRefreshToken)) {
                settings.store->Save(key, fresh);
            } else {
                orphaned = true;
            }
        } catch (const kel_exception& error) {
            kelcore::logging::LogWarning(
                "vantroauth: the refreshed tokens could not be stored; the sign-in will not "
                "survive this process: " +
                error.GetText());
        }
    }
    if (orphaned) {
        RevokeInBackground(settings.transport, settings.apiBase, fresh.refreshToken);
    }
    if (plan) {
        ScheduleRefresh(*plan);
    }
    Trace("the access token was refreshed");
    for (const auto& waiter : waiters) {
        if (installed) {
            Resolve(waiter, fresh.accessToken);
        } else {
            Dispatch(waiter, false);
        }
    }
}

void AuthManagerImpl::EndSession(const std::shared_ptr<RefreshOperation>& operation) {
    std::vector<TokenPromise> waiters;
    bool ended = false;
    const auto& settings = *operation->config;
    {
        std::lock_guard storeLock(storeMutex);
        {
            std::lock_guard lock(mutex);
            ended = RetireRefreshLocked(operation, waiters);
            if (ended) {
                InstallLocked(operation->user, StoredTokens{});
            }
        }
        const auto key = settings.KeyFor(operation->user);
        try {
            if (ended || StoreStillHolds(*settings.store, key, operation->oldRefreshToken)) {
                settings.store->Erase(key);
            }
        } catch (const kel_exception& error) {
            kelcore::logging::LogWarning("vantroauth: the refused tokens could not be deleted: " +
                                         error.GetText());
        }
    }
    kelcore::logging::LogInfo(
        "vantroauth: the service refused the refresh token; the user is signed out");
    for (const auto& waiter : waiters) {
        if (ended) {
            Reject(waiter, kResultSessionEnded,
                   "the service refused the refresh token; the user is signed out");
        } else {
            Dispatch(waiter, false);
        }
    }
}

Response AuthManagerImpl::Login(const std::string& userId, std::function<void(int)> onFinished) {
    const Response pending(kResultLoginPending, "the sign-in goes on in the browser");
    std::shared_ptr<const Config> settings;
    std::chrono::milliseconds timeout;
    {
        std::lock_guard lock(mutex);
        if (!config) {
            return Response(kResultNotInitialized, "InitializeAuthManager was not called");
        }
        if (login && !login->finished) {
            if (onFinished) {
                login->callbacks.push_back(std::move(onFinished));
                return Response::Success();
            }
            return pending;
        }
        settings = config;
        timeout = loginTimeout;
    }

    auto attempt = std::make_shared<LoginAttempt>();
    attempt->user = userId;
    attempt->config = settings;
    const bool withFunction = static_cast<bool>(onFinished);
    if (withFunction) {
        attempt->callbacks.push_back(std::move(onFinished));
    }
    const std::weak_ptr<AuthManagerImpl> weakSelf = weak_from_this();
    const std::weak_ptr<LoginAttempt> weakAttempt = attempt;
    try {
        attempt->pkce = Pkce::Create();
        attempt->listener = LoopbackListener::Start(
            settings->redirectPath, [weakSelf, weakAttempt](const LoopbackListener::Query& query) {
                auto self = weakSelf.lock();
                auto running = weakAttempt.lock();
                return self && running && self->OnRedirect(running, query);
            });
    } catch (const kel_exception& error) {
        kelcore::logging::LogWarning("vantroauth: the sign-in could not start: " + error.GetText());
        return Response(error.GetCode(), error.GetText());
    }
    attempt->redirectUri =
        OAuthRequests::LoopbackRedirectUri(settings->redirectPath, attempt->listener->Port());
    const std::string url =
        OAuthRequests::AuthorizeUrl(settings->apiBase, settings->clientId, attempt->redirectUri,
                                    attempt->pkce.challenge, attempt->pkce.state);

    bool joined = false;
    {
        std::lock_guard lock(mutex);
        if (config != settings) {
            attempt->finished = true;
        } else if (login && !login->finished) {
            // Another Login got in first while this one made its listener: join that one.
            joined = true;
            for (auto& callback : attempt->callbacks) {
                login->callbacks.push_back(std::move(callback));
            }
        } else {
            login = attempt;
            currentUser = userId;
        }
    }
    if (attempt->finished || joined) {
        attempt->listener->Stop();
        if (attempt->finished) {
            return Response(kResultNotInitialized, "the sign-in manager was restarted");
        }
        return withFunction ? Response::Success() : pending;
    }

    Executor()->PostAfterDelay(
        [weakSelf, weakAttempt] {
            auto self = weakSelf.lock();
            auto running = weakAttempt.lock();
            if (self && running) {
                self->FailLogin(running, kResultLoginFailed,
                                "the browser did not come back in time");
            }
        },
        static_cast<std::uint64_t>(timeout.count()));

    Trace("opening the browser for the sign-in (redirect to port " +
          std::to_string(attempt->listener->Port()) + ")");
    if (!detail::OpenBrowser(url)) {
        // The caller hears of it from the answer; only those who joined meanwhile are called.
        if (withFunction) {
            std::lock_guard lock(mutex);
            if (!attempt->callbacks.empty()) {
                attempt->callbacks.erase(attempt->callbacks.begin());
            }
        }
        FailLogin(attempt, kResultBrowserUnavailable, "the browser could not be opened");
        return Response(kResultBrowserUnavailable, "the browser could not be opened");
    }
    return withFunction ? Response::Success() : pending;
}

bool AuthManagerImpl::OnRedirect(const std::shared_ptr<LoginAttempt>& attempt,
                                 const std::map<std::string, std::string>& query) {
    std::string code;
    std::string failure;
    {
        std::lock_guard lock(mutex);
        if (login != attempt || attempt->finished || attempt->codeReceived) {
            return false;
        }
        const auto state = query.find("state");
        const auto error = query.find("error");
        const auto received = query.find("code");
        if (state == query.end() || !SameSecret(state->second, attempt->pkce.state)) {
            failure = "the redirect did not carry this sign-in's state";
        } else if (error != query.end()) {
            failure = "the service answered " + Printable(error->second);
        } else if (received == query.end() || received->second.empty()) {
            failure = "the redirect carried no code";
        } else {
            attempt->codeReceived = true;
            code = received->second;
        }
    }
    if (!failure.empty()) {
        FailLogin(attempt, kResultLoginFailed, failure);
        return false;
    }
    Trace("exchanging the authorization code");
    const auto& settings = *attempt->config;
    const auto executor = Executor();
    vantrocommon::SendWithRetry(
        settings.transport,
        OAuthRequests::Exchange(settings.apiBase, settings.clientId, code, attempt->pkce.verifier,
                                attempt->redirectUri),
        vantrocommon::RetryPolicy{}, executor)
        .Then(executor,
              [weak = weak_from_this(), attempt](const ReplyFuture& reply) {
                  if (auto self = weak.lock()) {
                      self->FinishLogin(attempt, reply);
                  }
              })
        .KeepAlive();
    return true;
}

void AuthManagerImpl::FinishLogin(const std::shared_ptr<LoginAttempt>& attempt,
                                  const ReplyFuture& reply) {
    const auto code = kelcore::async::ResultOf(reply);
    if (code < 0) {
        FailLogin(attempt, code, "the code could not be exchanged (" + Hex(code) + ")");
        return;
    }
    const auto& answer = reply.Get();
    if (answer.status != 200) {
        FailLogin(attempt, kResultLoginFailed,
                  "the token endpoint refused the code with status " +
                      std::to_string(answer.status) + " " +
                      Printable(OAuthRequests::ErrorOf(answer)));
        return;
    }
    StoredTokens fresh;
    try {
        fresh = StoredTokens::FromTokenAnswer(answer.body, vantrocommon::kResultBadResponse);
    } catch (const kel_exception& error) {
        FailLogin(attempt, error.GetCode(), error.GetText());
        return;
    }

    std::vector<std::function<void(int)>> callbacks;
    std::vector<TokenPromise> waiters;
    std::optional<TimerPlan> plan;
    bool installed = false;
    bool cancelled = false;
    const auto& settings = *attempt->config;
    {
        std::lock_guard storeLock(storeMutex);
        {
            std::lock_guard lock(mutex);
            if (attempt->finished) {
                cancelled = true;  // signed out or restarted while the code was exchanged
            } else {
                attempt->finished = true;
                if (login == attempt) {
                    login = nullptr;
                }
                callbacks = std::move(attempt->callbacks);
                waiters = std::move(attempt->waiters);
                if (config == attempt->config && currentUser == attempt->user) {
                    plan = InstallLocked(attempt->user, fresh);
                    installed = true;
                }
            }
        }
        if (!cancelled) {
            try {
                settings.store->Save(settings.KeyFor(attempt->user), fresh);
            } catch (const kel_exception& error) {
                kelcore::logging::LogWarning(
                    "vantroauth: the tokens could not be stored; the sign-in will not survive "
                    "this process: " +
                    error.GetText());
            }
        }
    }
    attempt->listener->Stop();
    if (cancelled) {
        RevokeInBackground(settings.transport, settings.apiBase, fresh.refreshToken);
        return;
    }
    if (plan) {
        ScheduleRefresh(*plan);
    }
    Trace("signed in");
    for (const auto& callback : callbacks) {
        Notify(callback, kelcore::config::kResultSuccess);
    }
    for (const auto& waiter : waiters) {
        if (installed) {
            Resolve(waiter, fresh.accessToken);
        } else {
            Dispatch(waiter, false);
        }
    }
}

void AuthManagerImpl::FailLogin(const std::shared_ptr<LoginAttempt>& attempt, ResultCode code,
                                const std::string& reason) {
    std::vector<std::function<void(int)>> callbacks;
    std::vector<TokenPromise> waiters;
    {
        std::lock_guard lock(mutex);
        if (attempt->finished) {
            return;
        }
        attempt->finished = true;
        if (login == attempt) {
            login = nullptr;
        }
        callbacks = std::move(attempt->callbacks);
        waiters = std::move(attempt->waiters);
    }
    kelcore::logging::LogWarning("vantroauth: the sign-in failed: " + reason);
    attempt->listener->Stop();
    for (const auto& callback : callbacks) {
        Notify(callback, code);
    }
    for (const auto& waiter : waiters) {
        Reject(waiter, code, "the sign-in failed: " + reason);
    }
}

Response AuthManagerImpl::Logout() {
    std::shared_ptr<const Config> settings;
    std::shared_ptr<LoginAttempt> stopped;
    std::vector<std::function<void(int)>> callbacks;
    std::vector<TokenPromise> waiters;
    std::string refreshToken;
    Response result;
    {
        std::lock_guard storeLock(storeMutex);
        std::string user;
        {
            std::lock_guard lock(mutex);
            if (!config) {
                return Response(kResultNotInitialized, "InitializeAuthManager was not called");
            }
            settings = config;
            user = currentUser;
            if (session->loaded && session->user == user) {
                refreshToken = session->tokens.refreshToken;
            }
            InstallLocked(user, StoredTokens{});
            if (login && !login->finished) {
                stopped = login;
                stopped->finished = true;
                callbacks = std::move(stopped->callbacks);
                waiters = std::move(stopped->waiters);
            }
            login = nullptr;
        }
        const auto key = settings->KeyFor(user);
        try {
            if (refreshToken.empty()) {
                if (const auto stored = settings->store->Load(key)) {
                    refreshToken = stored->refreshToken;
                }
            }
            settings->store->Erase(key);
        } catch (const kel_exception& error) {
            kelcore::logging::LogError("vantroauth: the stored tokens could not be deleted: " +
                                       error.GetText());
            result = Response(kResultStorageFailure, error.GetText());
        }
    }
    if (stopped) {
        stopped->listener->Stop();
        for (const auto& callback : callbacks) {
            Notify(callback, kResultLoginFailed);
        }
        for (const auto& waiter : waiters) {
            Reject(waiter, kResultNotSignedIn, "signed out during the sign-in");
        }
    }
    if (!refreshToken.empty()) {
        // Best effort, waited for a moment so that a quick service has revoked the family by
        // the time Logout answers.
        struct Wait {
            std::mutex mutex;
            std::condition_variable done;
            bool finished = false;
        };
        auto wait = std::make_shared<Wait>();
        RevokeInBackground(settings->transport, settings->apiBase, refreshToken, [wait] {
            std::lock_guard lock(wait->mutex);
            wait->finished = true;
            wait->done.notify_all();
        });
        std::unique_lock lock(wait->mutex);
        wait->done.wait_for(lock, kRevokeWait, [&] { return wait->finished; });
    }
    Trace("signed out");
    return result;
}

Response AuthManagerImpl::StoreTokenAnswer(const std::string& userId,
                                           const std::string& tokenJson) {
    std::shared_ptr<const Config> settings;
    {
        std::lock_guard lock(mutex);
        if (!config) {
            return Response(kResultNotInitialized, "InitializeAuthManager was not called");
        }
        settings = config;
    }
    StoredTokens fresh;
    try {
        fresh = StoredTokens::FromTokenAnswer(tokenJson, kelcore::config::kResultParseError);
    } catch (const kel_exception& error) {
        return Response(error.GetCode(), error.GetText());
    }
    std::optional<TimerPlan> plan;
    Response result;
    {
        std::lock_guard storeLock(storeMutex);
        {
            std::lock_guard lock(mutex);
            if (config == settings && currentUser == userId) {
                plan = InstallLocked(userId, fresh);
            }
        }
        try {
            settings->store->Save(settings->KeyFor(userId), fresh);
        } catch (const kel_exception& error) {
            kelcore::logging::LogError("vantroauth: the tokens could not be stored: " +
                                       error.GetText());
            result = Response(kResultStorageFailure, error.GetText());
        }
    }
    if (plan) {
        ScheduleRefresh(*plan);
    }
    Trace("a token answer was stored");
    return result;
}

}  // namespace vantroauth::jwt
