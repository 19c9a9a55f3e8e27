#include <vantrokelui/model/client/UserFunctions.h>

#include <exception>
#include <typeinfo>

#include <kelcore/async/Future.h>
#include <kelcore/config/ErrorHandling.h>
#include <kelcore/string/String.h>
#include <vantrokelui/model/client/VantroClientUser.h>
#include <vantrokelui/model/client/detail/ClientDatastore.h>

namespace vantrokelui::model::VantroClientIntegration {

void GetCurrentUser(const std::function<void(const std::shared_ptr<VantroUser>&)>& callback) {
    // Once per process, thread-safe by the language's rule for function-local statics.
    static const kelcore::async::Future<kelcore::classref::InterfaceRef<vantro::VantroUser>>
        sCurrentUser = detail::Datastore()->GetCurrentUser();
    sCurrentUser.Then(
        detail::ExecutorOf(sCurrentUser),
        [callback](const kelcore::classref::InterfaceRef<vantro::VantroUser>& user) {
            callback(CreateClientUser(user));
        },
        [](const std::exception_ptr&) {});
}

std::shared_ptr<VantroUser> CreateClientUser(
    const kelcore::classref::InterfaceRef<vantro::VantroUser>& user) {
    if (!user) {
        kelcore::config::DoThrowNullPtrException(typeid(vantro::VantroUser));
    }
    auto node = std::make_shared<VantroClientUser>();
    node->SetID(user->GetID());
    node->SetName(kelcore::string::StdToUTF16String(user->GetName()));
    return node;
}

void SignOut() {
    detail::Datastore()->SignOutJwt();
    detail::Datastore()->SignOutOAuth2();
}

}  // namespace vantrokelui::model::VantroClientIntegration
