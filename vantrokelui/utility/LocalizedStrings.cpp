#include <vantrokelui/utility/LocalizedStrings.h>

#include <dlfcn.h>

#include <kelcore/config/Localizer.h>

namespace vantrokelui::utility {

std::filesystem::path LocalizedStringsDirectory() {
    // The library's own file: the module that holds this very function.
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&LocalizedStringsDirectory), &info) == 0 ||
        !info.dli_fname) {
        return {};
    }
    const std::filesystem::path library(info.dli_fname);
    return library.parent_path().parent_path() / "share" / "vantrokelui" / "locales";
}

bool LoadLocalizedStrings(std::string_view locale) {
    const auto directory = LocalizedStringsDirectory();
    return !directory.empty() && kelcore::config::Localizer::Get().LoadLocale(directory, locale);
}

}  // namespace vantrokelui::utility
