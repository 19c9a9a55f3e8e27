#include <vantroauth/jwt/AuthManager.h>

#include "jwt/AuthManagerImpl.h"

namespace vantroauth::jwt {

vantrocommon::Response InitializeAuthManager(const std::string& clientId,
                                             const std::string& redirectUri,
                                             vantrocommon::EnvironmentType environment,
                                             const std::string& profile) {
    return AuthManagerImpl::Instance()->Initialize(clientId, redirectUri, environment, profile);
}

vantrocommon::Response AccessTokenExists(const std::string& userId) {
    return AuthManagerImpl::Instance()->AccessTokenExists(userId);
}

kelcore::async::Future<std::string> GetAccessToken(bool forceRefresh) {
    return AuthManagerImpl::Instance()->GetAccessToken(forceRefresh);
}

vantrocommon::Response Login(const std::string& userId, std::function<void(int)> onFinished) {
    return AuthManagerImpl::Instance()->Login(userId, std::move(onFinished));
}

vantrocommon::Response Logout() {
    return AuthManagerImpl::Instance()->Logout();
}

vantrocommon::Response StoreTokenAnswer(const std::string& userId, const std::string& tokenJson) {
    return AuthManagerImpl::Instance()->StoreTokenAnswer(userId, tokenJson);
}

void SetLoginTimeout(std::chrono::milliseconds timeout) {
    AuthManagerImpl::Instance()->SetLoginTimeout(timeout);
}

}  // namespace vantroauth::jwt
