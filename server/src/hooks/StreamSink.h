// `PUT /test/sink`: streams its body into a temporary file under the data directory's uploads/,
// counts it, deletes it and answers 201 `{"bytes": N}`. The plain-stream baseline the upload
// benchmark measures chunked uploads against. Exists only with --enable-test-hooks; owned by
// the router's handler; any thread.
#pragma once

#include <filesystem>

#include "http/Router.h"

namespace vantroserver::hooks {

class StreamSink {
public:
    explicit StreamSink(std::filesystem::path directory);

    /// Adds `PUT /test/sink`.
    void AddRoutes(http::Router& router) const;

private:
    std::filesystem::path directory;
};

}  // namespace vantroserver::hooks
