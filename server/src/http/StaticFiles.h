// Serves the files of one directory at `GET /static/{name}`, streamed from disk with ranges and
// validators (RangedFile). Only plain names: no path separators, no leading dot, so nothing
// outside the directory is reachable. Owned by the router's handler; any thread.
#pragma once

#include <filesystem>

#include "http/Router.h"

namespace vantroserver::http {

class StaticFiles {
public:
    explicit StaticFiles(std::filesystem::path directory);

    Response Serve(const RequestContext& context) const;
    /// Adds `GET /static/{name}`.
    void AddRoutes(Router& router) const;

    /// The content type for a file name, by its extension (any case).
    static std::string_view ContentType(std::string_view name);

private:
    std::filesystem::path directory;
};

}  // namespace vantroserver::http
