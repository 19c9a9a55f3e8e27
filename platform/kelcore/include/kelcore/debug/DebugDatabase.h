// A small key/value store of developer switches, such as "VantroNative.UseVantroCppSdk".
// Entries come from a file of "key=value" lines (lines starting with '#' are comments;
// whitespace around key and value is trimmed; a later line wins) and from the environment,
// which wins over the file: the key "A.b-c" is read from KELDEBUG_A_b_c, every character
// other than an ASCII letter or digit becoming '_'. The file is $KELCORE_DEBUG_DATABASE when
// set, else $XDG_CONFIG_HOME/vantrokelui/debug.conf, else ~/.config/vantrokelui/debug.conf.
// Every call looks again, so a change is seen at the next call. One instance per process;
// any thread.
//
//   bool useSdk = DebugDatabase::Instance().GetBoolEntry("VantroNative.UseVantroCppSdk", true);
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace kelcore::debug {

class DebugDatabase {
public:
    /// The process's database. Any thread.
    static DebugDatabase& Instance();

    /// The text stored for `key`, or `defaultText` when neither the environment nor the file
    /// has it. Any thread.
    std::string GetEntry(std::string_view key, std::string_view defaultText) const;

    /// True exactly when the entry (or, without one, the default) reads "true": case matters,
    /// so "TRUE" is false. Any thread.
    bool GetBoolEntry(std::string_view key, bool defaultValue) const;

    /// The file read now, from the environment as it is.
    /// Any thread.
    static std::filesystem::path FilePath();

    /// The environment variable that overrides `key`. Any thread.
    static std::string EnvironmentName(std::string_view key);

    DebugDatabase(const DebugDatabase&) = delete;
    DebugDatabase& operator=(const DebugDatabase&) = delete;

private:
    DebugDatabase();
    ~DebugDatabase();

    struct Cache;
    std::unique_ptr<Cache> cache;
};

}  // namespace kelcore::debug
