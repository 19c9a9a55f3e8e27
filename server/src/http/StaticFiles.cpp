#include "http/StaticFiles.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

#include "http/RangedFile.h"

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
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 15> kTypes{{
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
        {".mov", "video/quicktime"},
        {".mkv", "video/x-matroska"},
        {".m4v", "video/mp4"},
        {".woff2", "font/woff2"},
    }};
    for (const auto& [extension, type] : kTypes) {
        if (name.size() > extension.size() &&
            std::equal(extension.begin(), extension.end(), name.end() - extension.size(),
                       [](char ours, char theirs) {
                           return ours == std::tolower(static_cast<unsigned char>(theirs));
                       })) {
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
    RangedFile::Options options;
    options.contentType = ContentType(name);
    return RangedFile::Serve(context, path, options);
}

void StaticFiles::AddRoutes(Router& router) const {
    // The handler keeps its own copy of the directory, so it does not depend on this object.
    router.Add(beasthttp::verb::get, "/static/{name}", Router::Access::Public,
               [files = *this](RequestContext& context) { return files.Serve(context); });
}

}  // namespace vantroserver::http
