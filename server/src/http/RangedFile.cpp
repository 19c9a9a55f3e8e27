#include "http/RangedFile.h"

#include <array>
#include <cstdio>
#include <ctime>

#include "http/ByteRange.h"

namespace vantroserver::http {

namespace {

using beasthttp::field;
using beasthttp::status;

std::string_view Trim(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
        text.remove_prefix(1);
    }
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) {
        text.remove_suffix(1);
    }
    return text;
}

std::string_view WithoutWeakPrefix(std::string_view tag) {
    return tag.starts_with("W/") ? tag.substr(2) : tag;
}

std::string Hex(std::uint64_t value) {
    std::array<char, 17> text{};
    std::snprintf(text.data(), text.size(), "%llx", static_cast<unsigned long long>(value));
    return text.data();
}

void SetFileHeaders(Response& response, const std::string& etag, const std::string& lastModified,
                    std::string_view cacheControl) {
    response.Set("Accept-Ranges", "bytes");
    response.Set("ETag", etag);
    response.Set("Last-Modified", lastModified);
    response.Set("Cache-Control", cacheControl);
}

}  // namespace

std::string RangedFile::HttpDate(std::int64_t secondsSinceEpoch) {
    static constexpr std::array<const char*, 7> kDays{"Sun", "Mon", "Tue", "Wed",
                                                      "Thu", "Fri", "Sat"};
    static constexpr std::array<const char*, 12> kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const std::time_t time = static_cast<std::time_t>(secondsSinceEpoch);
    std::tm parts{};
    gmtime_r(&time, &parts);
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%s, %02d %s %04d %02d:%02d:%02d GMT",
                  kDays[static_cast<std::size_t>(parts.tm_wday)], parts.tm_mday,
                  kMonths[static_cast<std::size_t>(parts.tm_mon)], parts.tm_year + 1900,
                  parts.tm_hour, parts.tm_min, parts.tm_sec);
    return text.data();
}

bool RangedFile::NoneMatchHits(std::string_view ifNoneMatch, std::string_view etag) {
    ifNoneMatch = Trim(ifNoneMatch);
    if (ifNoneMatch == "*") {
        return true;
    }
    const std::string_view ours = WithoutWeakPrefix(etag);
    while (!ifNoneMatch.empty()) {
        const std::size_t comma = ifNoneMatch.find(',');
        const std::string_view tag = Trim(ifNoneMatch.substr(0, comma));
        if (!tag.empty() && WithoutWeakPrefix(tag) == ours) {
            return true;
        }
        if (comma == std::string_view::npos) {
            break;
        }
        ifNoneMatch.remove_prefix(comma + 1);
    }
    return false;
}

Response RangedFile::Serve(const RequestContext& context, const std::filesystem::path& path,
                           const Options& options) {
    FileSliceBody::value_type body;
    boost::beast::error_code openError;
    if (!body.Open(path, openError)) {
        return Response::Error(status::not_found, "not_found", "no such file");
    }
    const std::uint64_t size = body.FileSize();
    const std::string etag = options.etag.empty()
                                 ? "\"" + Hex(size) + "-" +
                                       Hex(static_cast<std::uint64_t>(body.ModifiedNanoseconds())) +
                                       "\""
                                 : options.etag;
    const std::string lastModified = HttpDate(body.ModifiedNanoseconds() / 1'000'000'000);
    const auto& request = context.Request();

    if (const auto found = request.find(field::if_none_match); found != request.end()) {
        if (NoneMatchHits(found->value(), etag)) {
            Response response;
            response.AsString().result(status::not_modified);
            SetFileHeaders(response, etag, lastModified, options.cacheControl);
            return response;
        }
    }

    ByteRange range;
    if (const auto found = request.find(field::range); found != request.end()) {
        // A range applies only while the client's copy is still ours: an If-Range naming
        // another version (or any weak tag) asks for the whole file instead.
        bool current = true;
        if (const auto ifRange = request.find(field::if_range); ifRange != request.end()) {
            const std::string_view validator = Trim(ifRange->value());
            current = validator.starts_with("\"") ? validator == etag : validator == lastModified;
        }
        if (current) {
            range = ByteRange::Parse(found->value(), size);
        }
    }

    if (range.outcome == ByteRange::Outcome::Unsatisfiable) {
        auto response = Response::Error(
            status::range_not_satisfiable, "range_not_satisfiable",
            "the requested range is outside the file's " + std::to_string(size) + " bytes");
        response.Set("Content-Range", "bytes */" + std::to_string(size));
        SetFileHeaders(response, etag, lastModified, options.cacheControl);
        return response;
    }
    if (range.outcome == ByteRange::Outcome::Partial) {
        body.Restrict(range.first, range.length);
    }
    auto response = Response::File(std::move(body), options.contentType);
    if (range.outcome == ByteRange::Outcome::Partial) {
        response.AsFile().result(status::partial_content);
        response.Set("Content-Range", range.ContentRange(size));
    }
    SetFileHeaders(response, etag, lastModified, options.cacheControl);
    return response;
}

}  // namespace vantroserver::http
