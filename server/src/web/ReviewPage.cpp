#include "web/ReviewPage.h"

#include "web/HtmlDocument.h"

namespace vantroserver::web {

namespace {

std::string Size(std::int64_t bytes) {
    constexpr std::int64_t kMiB = 1024 * 1024;
    if (bytes >= kMiB) {
        return std::to_string(bytes / kMiB) + "." + std::to_string(bytes % kMiB * 10 / kMiB) +
               " MiB";
    }
    return std::to_string(bytes) + " bytes";
}

}  // namespace

std::string ReviewPage::MediaPath(const store::ReviewLink& link, const store::Asset& file) {
    return "/r/" + link.token + "/media/" + file.id;
}

std::string ReviewPage::PagePath(const store::ReviewLink& link, const store::ReviewLinkItem& item,
                                 std::int64_t version) {
    std::string path = "/r/" + link.token + "?item=" + item.added.id;
    if (version > 0) {
        path += "&version=" + std::to_string(version);
    }
    return path;
}

std::string ReviewPage::Body(const View& view) {
    const auto& item = view.items.at(view.selectedItem);
    const std::string& title = item.versionStack ? item.versionStack->name : item.added.name;
    std::string html;
    html += "<header><h1 id=\"asset-name\">" + HtmlDocument::Escape(title) + "</h1>";
    html += "<span class=\"muted\">" + HtmlDocument::Escape(view.link.name) + "</span></header>\n";
    html += "<main class=\"review\">\n<section class=\"player\">\n";
    if (view.shown) {
        html += "<video id=\"player\" controls preload=\"metadata\" playsinline src=\"" +
                HtmlDocument::Escape(MediaPath(view.link, *view.shown)) + "\" data-asset-id=\"" +
                view.shown->id + "\" data-version=\"" + std::to_string(view.shown->version) +
                "\"></video>\n";
        html += "<p class=\"muted\">" + HtmlDocument::Escape(view.shown->name);
        if (view.shown->version > 0) {
            html += " · version " + std::to_string(view.shown->version);
        }
        html += " · " + Size(view.shown->filesize) + " · " +
                store::FormatIso8601(view.shown->createdAt) + "</p>\n";
    } else {
        html += "<p>No version has been uploaded yet.</p>\n";
    }
    html += "</section>\n<aside class=\"lists\">\n";
    if (!view.versions.empty()) {
        html += "<h2>Versions</h2>\n<ol id=\"versions\">\n";
        for (const auto& version : view.versions) {
            const bool current = view.shown && view.shown->id == version.id;
            html += "<li";
            if (current) {
                html += " aria-current=\"true\"";
            }
            html += "><a href=\"" +
                    HtmlDocument::Escape(PagePath(view.link, item, version.version)) +
                    "\" data-version=\"" + std::to_string(version.version) + "\">Version " +
                    std::to_string(version.version) + "</a> <span class=\"muted\">" +
                    store::FormatIso8601(version.createdAt) + "</span></li>\n";
        }
        html += "</ol>\n";
    }
    if (view.items.size() > 1) {
        html += "<h2>In this link</h2>\n<ul id=\"items\">\n";
        for (std::size_t i = 0; i < view.items.size(); ++i) {
            const auto& other = view.items[i];
            const std::string& name =
                other.versionStack ? other.versionStack->name : other.added.name;
            html += "<li";
            if (i == view.selectedItem) {
                html += " aria-current=\"true\"";
            }
            html += "><a href=\"" + HtmlDocument::Escape(PagePath(view.link, other)) + "\">" +
                    HtmlDocument::Escape(name) + "</a></li>\n";
        }
        html += "</ul>\n";
    }
    html += "</aside>\n</main>\n";
    return html;
}

}  // namespace vantroserver::web
