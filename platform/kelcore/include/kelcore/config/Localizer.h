// Looks up user-visible text. Every text is written in the code as a key with its default:
// "$$$/Corvane/area/Name=Default text". A locale file may override the text of a key; without
// one, the default after the first '=' is the answer. Thread-safe; the instance lives for the
// whole process.
//
//   auto title = Localizer::Get().GetString("$$$/Corvane/app/Title=Share for review");
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include <kelcore/string/String.h>

namespace kelcore::config {

class Localizer {
public:
    static Localizer& Get();

    /// The localised text of `keyWithDefault`, as UTF-16. Text that does not start with "$$$/"
    /// is returned as it stands.
    string::string GetString(std::string_view keyWithDefault) const;
    /// The same, as UTF-8.
    std::string GetUTF8String(std::string_view keyWithDefault) const;

    /// Loads the locale file for `locale` (such as "de_DE") from `resourceDir`; see Localizer.cpp
    /// for the file format. Returns false, keeping the defaults, when there is no such file.
    bool LoadLocale(const std::filesystem::path& resourceDir, std::string_view locale);
    /// Drops every override: defaults only.
    void Reset();

    Localizer(const Localizer&) = delete;
    Localizer& operator=(const Localizer&) = delete;

private:
    Localizer();
    ~Localizer();
    struct State;
    std::unique_ptr<State> state;
};

}  // namespace kelcore::config
