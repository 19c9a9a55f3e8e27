// The absolute address people reach this server at, for URLs the server hands out (review
// links, their pages). Either fixed by `serve --public-url`, or learnt from the listening
// socket once it is bound. Shared by the service and the server; any thread.
//
//   auto base = std::make_shared<PublicBase>(options.publicUrl);
//   base->SetListening(false, "127.0.0.1", port);   // after bind
//   std::string url = base->Url() + "/r/" + token;
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace vantroserver::http {

class PublicBase {
public:
    /// `configured`: an absolute http(s) URL; a trailing slash is dropped.
    explicit PublicBase(std::optional<std::string> configured);

    /// Records the bound address (`https` when `tls`); does nothing when a URL was configured.
    void SetListening(bool tls, std::string_view host, unsigned short port);

    /// E.g. `http://127.0.0.1:8080`, without a trailing slash; empty before the server listens
    /// when nothing was configured.
    std::string Url() const;

    /// Whether `text` is an absolute http or https URL without query or fragment, fit for
    /// `--public-url`.
    static bool IsAcceptable(std::string_view text);

private:
    mutable std::mutex mutex;
    std::string url;
    const bool fixed;
};

}  // namespace vantroserver::http
