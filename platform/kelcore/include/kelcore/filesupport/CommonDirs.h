// Where the product keeps its files, following the XDG base directory rules. Any thread.
//
//   File output(commondirs::UserCacheDir(), u"Clip 2.mp4");
#pragma once

#include <kelcore/string/String.h>

namespace kelcore::filesupport::commondirs {

/// The product's cache directory, `$XDG_CACHE_HOME/vantrokelui`, or `$HOME/.cache/vantrokelui`
/// when XDG_CACHE_HOME is unset, empty or relative (the home directory comes from the user
/// database when HOME is unset). Missing directories on the way are created with mode 0700;
/// when that fails the path is still returned and the failure logged, so that writing the
/// file reports it. Any thread.
string::string UserCacheDir();

/// The product's state directory for logs and records that outlive a run but are not worth a
/// backup: `$XDG_STATE_HOME/vantrokelui`, or `$HOME/.local/state/vantrokelui`, made and reported
/// as UserCacheDir does. Any thread.
string::string UserStateDir();

/// The product's configuration directory for what the user would keep across machines or
/// reinstalls: `$XDG_CONFIG_HOME/vantrokelui`, or `$HOME/.config/vantrokelui`, made and reported
/// as UserCacheDir does. Any thread.
string::string UserConfigDir();

}  // namespace kelcore::filesupport::commondirs
