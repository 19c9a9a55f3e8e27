#include "api/Service.h"

#include <stdexcept>

#include "api/OAuthEndpoints.h"
#include "api/ResourceEndpoints.h"
#include "api/ReviewLinkEndpoints.h"
#include "events/ChangeWatcher.h"
#include "hooks/EventStreamCloser.h"
#include "hooks/FaultInjector.h"
#include "hooks/StreamSink.h"
#include "http/Paging.h"
#include "http/StaticFiles.h"
#include "web/WebEndpoints.h"

namespace vantroserver::api {

Service::Service(const store::DataDirectory& directory, const http::ServeOptions& options)
    : store(directory.GetStore()) {
    if (options.pageSize == 0 || options.pageSize > http::Paging::kMaxPageSize) {
        throw std::runtime_error("page size must be from 1 to " +
                                 std::to_string(http::Paging::kMaxPageSize));
    }
    hub = std::make_shared<events::EventHub>(events::ChangeWatcher::VisibilityOf(store));
    tokens =
        std::make_shared<const AccessTokens>(store, directory.SigningKey(), options.accessTokenTtl);

    publicBase = std::make_shared<http::PublicBase>(options.publicUrl);

    auto router = std::make_shared<http::Router>();
    std::make_shared<OAuthEndpoints>(store, tokens)->AddRoutes(*router);
    std::make_shared<ResourceEndpoints>(store, hub, options.pageSize)->AddRoutes(*router);
    http::StaticFiles(directory.StaticDirectory()).AddRoutes(*router);
    uploads = std::make_shared<UploadEndpoints>(store, directory, options.uploadTtl);
    uploads->AddRoutes(*router);
    // Uploads that ran out while the server was down go before anyone asks for them.
    uploads->SweepExpired();
    std::make_shared<ReviewLinkEndpoints>(store, publicBase, options.pageSize)->AddRoutes(*router);
    std::make_shared<web::WebEndpoints>(store, publicBase, directory.SigningKey(),
                                        directory.MediaDirectory(), options.tlsCert.has_value())
        ->AddRoutes(*router);
    std::shared_ptr<hooks::FaultInjector> faults;
    if (options.enableTestHooks) {
        faults = std::make_shared<hooks::FaultInjector>();
        faults->AddRoutes(*router);
        hooks::StreamSink(directory.UploadDirectory()).AddRoutes(*router);
        hooks::EventStreamCloser(hub).AddRoutes(*router);
    }
    dispatcher = std::make_shared<http::Dispatcher>(
        router, std::make_shared<http::RateLimiter>(options.rateLimit.value_or(kDefaultRateLimit)),
        [tokens = tokens](std::string_view token) { return tokens->Verify(token); }, faults);
}

}  // namespace vantroserver::api
