#include "web/ReviewLinksPage.h"

#include "api/ReviewLinkViews.h"
#include "web/HtmlDocument.h"

namespace vantroserver::web {

std::string ReviewLinksPage::Body(const store::Project& project,
                                  const std::vector<LinkWithItems>& links,
                                  std::string_view publicBase) {
    std::string html;
    html += "<header><h1>" + HtmlDocument::Escape(project.name) + ": review links</h1></header>\n";
    html += "<main>\n";
    if (links.empty()) {
        html += "<p id=\"no-links\">This project has no review links yet.</p>\n";
    } else {
        html +=
            "<table id=\"links\">\n<thead><tr><th>Name</th><th>URL</th><th>Items</th>"
            "<th>Created</th></tr></thead>\n<tbody>\n";
        for (const auto& [link, items] : links) {
            const std::string url = api::ReviewLinkViews::Url(link, publicBase);
            html += "<tr><td>" + HtmlDocument::Escape(link.name) + "</td><td><a href=\"" +
                    HtmlDocument::Escape(url) + "\">" + HtmlDocument::Escape(url) + "</a></td><td>";
            if (items.empty()) {
                html += "<span class=\"muted\">none</span>";
            }
            for (std::size_t i = 0; i < items.size(); ++i) {
                const auto& item = items[i];
                const std::string& name =
                    item.versionStack ? item.versionStack->name : item.added.name;
                html += (i > 0 ? "<br>" : "") + HtmlDocument::Escape(name);
                if (item.current && item.current->version > 0) {
                    html += " <span class=\"muted\">(v" + std::to_string(item.current->version) +
                            ")</span>";
                }
            }
            html += "</td><td>" + store::FormatIso8601(link.createdAt) + "</td></tr>\n";
        }
        html += "</tbody>\n</table>\n";
    }
    html += "</main>\n";
    return html;
}

}  // namespace vantroserver::web
