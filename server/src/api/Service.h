// Everything the server answers, without the network: the routes of the sign-in flow, the API,
// the static files and (when asked) the test hooks, behind one dispatcher; the event hub the
// API's event streams subscribe to. The server puts connections in front of it; the fuzzer
// drives the dispatcher directly. Built once at start, then used from any thread.
//
//   api::Service service(store::DataDirectory::Open(dir), options);
//   Response answer = service.GetDispatcher()->Dispatch(request, std::nullopt);
#pragma once

#include <memory>

#include "api/AccessTokens.h"
#include "api/UploadEndpoints.h"
#include "events/EventHub.h"
#include "http/Dispatcher.h"
#include "http/PublicBase.h"
#include "http/ServeOptions.h"
#include "store/DataDirectory.h"

namespace vantroserver::api {

class Service {
public:
    /// Advertised when no rate limit is given: generous enough that no honest client meets it.
    static constexpr http::RateLimit kDefaultRateLimit{100'000, std::chrono::milliseconds(60'000)};

    /// Throws std::runtime_error for options out of range (the page size).
    Service(const store::DataDirectory& directory, const http::ServeOptions& options);

    const std::shared_ptr<http::Dispatcher>& GetDispatcher() const { return dispatcher; }
    const std::shared_ptr<events::EventHub>& Hub() const { return hub; }
    const std::shared_ptr<const AccessTokens>& Tokens() const { return tokens; }
    const std::shared_ptr<store::Store>& Store() const { return store; }
    /// Where people reach the server; Server fills it in once it listens.
    const std::shared_ptr<http::PublicBase>& PublicAddress() const { return publicBase; }
    /// The upload API, for the server's periodic sweep of expired uploads.
    const std::shared_ptr<UploadEndpoints>& Uploads() const { return uploads; }

private:
    std::shared_ptr<store::Store> store;
    std::shared_ptr<events::EventHub> hub;
    std::shared_ptr<const AccessTokens> tokens;
    std::shared_ptr<http::PublicBase> publicBase;
    std::shared_ptr<UploadEndpoints> uploads;
    std::shared_ptr<http::Dispatcher> dispatcher;
};

}  // namespace vantroserver::api
