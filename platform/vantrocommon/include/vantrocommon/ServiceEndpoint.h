// Where the service is: the base URL of its API (also its sign-in endpoints) and of its web
// pages, and a CA file to trust besides the system's. Resolved from configuration at each call,
// so a test or a host can point a process at its own server. Any thread.
//
// Order: the environment (VANTRO_SERVICE_URL, VANTRO_CA_FILE), then the debug database
// ("Vantro.ServiceURL", "Vantro.CAFile"), then the embedded default http://127.0.0.1:8080.
#pragma once

#include <string>

#include <vantrocommon/EnvironmentType.h>

namespace vantrocommon {

struct ServiceEndpoint {
    /// No trailing slash, e.g. "http://127.0.0.1:8080".
    std::string apiBase{};
    /// Base of the service's web pages; a project's settings page is webBase + "/projects/" + id.
    std::string webBase{};
    /// Extra CA certificates (PEM) to trust, e.g. a local test CA; empty for the system's only.
    std::string caFile{};

    /// The endpoint configured for `environment`.
    static ServiceEndpoint Resolve(EnvironmentType environment = EnvironmentType::Configured);
};

}  // namespace vantrocommon
