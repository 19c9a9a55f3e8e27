#include "http/StaticFiles.h"

#include <algorithm>
#include <array>
#include <utility>

namespace vantroserver::http {

namespace {

bool IsPlainName(std::string_view name) {
    if (name.empty() || name.front() == '.' || name.size() > 255) {
        return false;
    }
    return std::none_of(name.begin(), name.end(), [](char c) {
        return c == '/' || c == '\\' || static_cast<unsigned char>(c) < 0x20;
    });
}

}  // namespace

StaticFiles::StaticFiles(std::filesystem::path directory) : directory(std::move(directory)) {}

std::string_view StaticFiles::ContentType(std::string_view name) {
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 12> kTypes{{
        {".html", "text/html; charset=utf-8"},
        {".css", "text/css; charset=utf-8"},
        {".js", "text/javascript; charset=utf-8"},
        {".json", "application/json"},
        {".txt", "text/plain; charset=utf-8"},
        {".svg", "image/svg+xml"},
        {".png", "image/png"},
        {".jpg", "image/jpeg"},
        {".ico", "image/x-icon"},
        {".mp4", "video/mp4"},
        {".webm", "video/webm"},
        {".woff2", "font/woff2"},
    }};
    for (const auto& [extension, type] : kTypes) {
        if (name.size() > extension.size() && name.ends_with(extension)) {
            return type;
        }
    }
    return "application/octet-stream";
}

Response StaticFiles::Serve(const RequestContext& context) const {
    const std::string_view name = context.Param("name");
    if (!IsPlainName(name)) {
        return Response::Error(beasthttp::status::not_found, "not_found", "no such file");
    }
    const auto path = directory / std::filesystem::path(std::string(name));
    std::error_code statError;
    if (!std::filesystem::is_regular_file(path, statError)) {
        return Response::Error(beasthttp::status::not_found, "not_found", "no such file");
    }
    beasthttp::file_body::value_type body;
    boost::beast::error_code openError;
    body.open(path.c_str(), boost::beast::file_mode::scan, openError);
    if (openError) {
        return Response::Error(beasthttp::status::not_found, "not_found", "no such file");
    }
    return Response::File(std::move(body), ContentType(name));
}

void StaticFiles::AddRoutes(Router& router) const {
    // The handler keeps its own copy of the directory, so it does not depend on this object.
    router.Add(beasthttp::verb::get, "/static/{name}", Router::Access::Public,
               [files = *this](RequestContext& context) { return files.Serve(context); });
}

}  // namespace vantroserver::http
