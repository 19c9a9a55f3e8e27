#include <kelcore/utility/Keychain.h>

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

namespace kelcore::utility {

string::string Keychain::GetHomeUserID() {
    return GetUserIDFor(geteuid());
}

string::string Keychain::GetUserIDFor(uid_t uid) {
    const long suggested = sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(suggested > 0 ? static_cast<std::size_t>(suggested) : 1024);
    passwd entry{};
    passwd* found = nullptr;
    int error = 0;
    while ((error = getpwuid_r(uid, &entry, buffer.data(), buffer.size(), &found)) == ERANGE &&
           buffer.size() < (1u << 20)) {
        buffer.resize(buffer.size() * 2);
    }
    if (error == 0 && found != nullptr && found->pw_name != nullptr && found->pw_name[0] != '\0') {
        return string::StdToUTF16String(found->pw_name);
    }
    return string::StdToUTF16String("uid" + std::to_string(uid));
}

}  // namespace kelcore::utility
