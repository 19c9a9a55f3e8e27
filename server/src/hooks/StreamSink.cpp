#include "hooks/StreamSink.h"

#include <boost/json/object.hpp>

#include "api/WritableFile.h"
#include "security/Random.h"

namespace vantroserver::hooks {

namespace {

using boost::beast::http::status;

/// Writes the body to a file of its own and removes the file whatever happens.
class FileCountingSink final : public http::BodySink {
public:
    explicit FileCountingSink(std::filesystem::path path)
        : path(std::move(path)), file(api::WritableFile::Open(this->path, true)) {}
    ~FileCountingSink() override { Remove(); }

    std::optional<http::Response> Write(std::span<const char> piece) override {
        file.WriteAt(piece, bytes);
        bytes += piece.size();
        return std::nullopt;
    }

    http::Response Finish() override {
        Remove();
        return http::Response::Json(status::created, boost::json::object{{"bytes", bytes}});
    }

    void Abort() override { Remove(); }

private:
    void Remove() {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }

    std::filesystem::path path;
    api::WritableFile file;
    std::uint64_t bytes = 0;
};

}  // namespace

StreamSink::StreamSink(std::filesystem::path directory) : directory(std::move(directory)) {}

void StreamSink::AddRoutes(http::Router& router) const {
    router.AddStreamed(
        boost::beast::http::verb::put, "/test/sink", http::Router::Access::Public,
        [directory = directory](http::RequestContext&) -> http::Router::StreamStart {
            return std::make_shared<FileCountingSink>(directory / ("sink-" + security::NewId()));
        });
}

}  // namespace vantroserver::hooks
