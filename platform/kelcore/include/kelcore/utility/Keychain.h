// Who the host runs as, in the form the sign-in layer keys stored tokens by: the login name of
// the effective user. Stateless; any thread.
//
//   const std::string user = string::UTF16toStdString(Keychain::GetHomeUserID());
#pragma once

#include <sys/types.h>

#include <kelcore/string/String.h>

namespace kelcore::utility {

class Keychain {
public:
    /// The login name of the process's effective user, as GetUserIDFor(geteuid()). Any thread.
    static string::string GetHomeUserID();
    /// The login name of `uid` in the user database, or "uid" followed by the number when the
    /// database has no entry for it (as in some containers). Never empty. Any thread.
    static string::string GetUserIDFor(uid_t uid);
};

}  // namespace kelcore::utility
