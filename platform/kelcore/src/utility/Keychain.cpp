#include <kelcore/utility/Keychain.h>

#include <unistd.h>

#include <string>

#include "detail/Environment.h"

namespace kelcore::utility {

string::string Keychain::GetHomeUserID() {
    return GetUserIDFor(geteuid());
}

string::string Keychain::GetUserIDFor(uid_t uid) {
    if (auto user = kelcore::detail::LookUpUser(uid); user && !user->name.empty()) {
        return string::StdToUTF16String(user->name);
    }
    return string::StdToUTF16String("uid" + std::to_string(uid));
}

}  // namespace kelcore::utility
