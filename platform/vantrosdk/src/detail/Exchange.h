// Turns one request of a service into its typed response: the request is sent through the
// client's core, and the reply (whatever its status) is read into the response type. Stateless;
// any thread.
//
//   return Exchange<GetCurrentUserResponse>(core, Get(*core, "/v2/me", request),
//                                           ClientCore::Retry::Policy, ReadUser);
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>

#include <kelcore/async/Future.h>
#include <vantrocommon/http/Request.h>
#include <vantrosdk/VantroRequest.h>

#include "detail/ClientCore.h"
#include "detail/Records.h"

namespace vantrosdk::detail {

/// A request of `method` to `url`, without header fields or body.
inline vantrocommon::http::Request MakeRequest(std::string method, std::string url) {
    vantrocommon::http::Request request;
    request.method = std::move(method);
    request.url = std::move(url);
    return request;
}

/// A GET of `path`, with `page=N` when the request names a page.
inline vantrocommon::http::Request Get(const ClientCore& core, std::string_view path,
                                       const VantroRequest& request) {
    std::string url = core.Url(path);
    if (const auto page = request.GetPageNumber()) {
        url += "?page=" + std::to_string(*page);
    }
    return MakeRequest("GET", std::move(url));
}

/// A POST of `body` as JSON to `path`.
inline vantrocommon::http::Request PostJson(const ClientCore& core, std::string_view path,
                                            const boost::json::value& body) {
    auto request = MakeRequest("POST", core.Url(path));
    request.headers.emplace_back("Content-Type", "application/json");
    request.body = boost::json::serialize(body);
    return request;
}

/// Sends `request` and makes a `Response` from the status, the header fields and the body read
/// by `read`. Completes on the core's executor.
template <class Response, class Read>
kelcore::async::Future<std::shared_ptr<Response>> Exchange(const std::shared_ptr<ClientCore>& core,
                                                           vantrocommon::http::Request request,
                                                           ClientCore::Retry retry, Read read) {
    return core->Send(std::move(request), retry)
        .Then(core->Executor(),
              [read = std::move(read)](
                  const kelcore::async::Future<vantrocommon::http::Reply>& answer) {
                  const vantrocommon::http::Reply& reply =
                      answer.Get();  // Rethrows a failed exchange.
                  const boost::json::value body = ParseBody(reply);
                  return std::make_shared<Response>(reply.status, reply.headers, read(body));
              });
}

/// `read` for listings: each element with `element`.
template <class Element>
auto ListOf(Element element) {
    return [element](const boost::json::value& body) { return ReadList(body, element); };
}

}  // namespace vantrosdk::detail
