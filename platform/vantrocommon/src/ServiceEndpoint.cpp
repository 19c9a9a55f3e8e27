#include <vantrocommon/ServiceEndpoint.h>

#include <cstdlib>
#include <string_view>

#include <kelcore/debug/DebugDatabase.h>

namespace vantrocommon {
namespace {

constexpr std::string_view kDefaultApiBase = "http://127.0.0.1:8080";

/// The environment variable when set and not empty, else the debug database's entry (read
/// again at each call), else `fallback`.
std::string Configured(const char* environmentName, std::string_view debugKey,
                       std::string_view fallback) {
    if (const char* value = std::getenv(environmentName); value != nullptr && *value != '\0') {
        return value;
    }
    return kelcore::debug::DebugDatabase::Instance().GetEntry(debugKey, fallback);
}

std::string WithoutTrailingSlash(std::string url) {
    while (!url.empty() && url.back() == '/') {
        url.pop_back();
    }
    return url;
}

}  // namespace

ServiceEndpoint ServiceEndpoint::Resolve(EnvironmentType /*environment*/) {
    // Only the configured service exists, so every environment resolves the same way.
    ServiceEndpoint endpoint;
    endpoint.apiBase =
        WithoutTrailingSlash(Configured("VANTRO_SERVICE_URL", "Vantro.ServiceURL", ""));
    if (endpoint.apiBase.empty()) {
        endpoint.apiBase = kDefaultApiBase;
    }
    endpoint.webBase =
        WithoutTrailingSlash(Configured("VANTRO_SERVICE_WEB_URL", "Vantro.ServiceWebURL", ""));
    if (endpoint.webBase.empty()) {
        endpoint.webBase = endpoint.apiBase;
    }
    endpoint.caFile = Configured("VANTRO_CA_FILE", "Vantro.CAFile", "");
    return endpoint;
}

}  // namespace vantrocommon
