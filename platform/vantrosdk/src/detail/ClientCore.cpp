#include "detail/ClientCore.h"

#include <algorithm>
#include <exception>
#include <utility>

#include <kelcore/logging/Logging.h>
#include <vantrocommon/ResultCodes.h>
#include <vantrocommon/RetryingSender.h>

#include "detail/Futures.h"
#include "detail/Jwt.h"
#include "detail/TransferRegistry.h"

namespace vantrosdk::detail {

using kelcore::async::Future;
using kelcore::async::Promise;
using vantrocommon::http::CancellationToken;
using vantrocommon::http::Reply;
using vantrocommon::http::Request;

ClientCore::ClientCore(Settings settings)
    : settings(std::move(settings)),
      transfers(std::make_shared<TransferRegistry>()),
      tokenRefreshRequested(this->settings.tokenRefreshRequested) {}

Future<Reply> ClientCore::Send(Request request, Retry retry, CancellationToken cancel) {
    const auto& executor = settings.executor;
    auto promise = std::make_shared<Promise<Reply>>(executor);
    auto result = promise->GetFuture();
    Token current;
    {
        std::lock_guard lock(mutex);
        current = token;
    }
    if (current.value.empty()) {
        executor->Post([promise] {
            promise->SetException(
                MakeFailure(vantrocommon::kResultNotReady, "no access token has been given yet"));
        });
        return result;
    }
    auto self = shared_from_this();
    SendWithToken(request, current.value, retry, cancel)
        .Then(executor, [self, promise, request = std::move(request), retry, cancel,
                         generation = current.generation](const Future<Reply>& first) {
            if (kelcore::async::ResultOf(first) != 0 || first.Get().status != 401 ||
                cancel.IsCancelled()) {
                Forward(first, *promise);
                return;
            }
            self->TokenAfter(generation)
                .Then(self->settings.executor, [self, promise, request, retry, cancel,
                                                first](const Future<std::string>& next) {
                    if (kelcore::async::ResultOf(next) != 0 || next.Get().empty()) {
                        promise->SetValue(first.Get());
                        return;
                    }
                    self->SendWithToken(request, next.Get(), retry, cancel)
                        .Then(self->settings.executor, [promise](const Future<Reply>& second) {
                            Forward(second, *promise);
                        });
                });
        });
    return result;
}

Future<Reply> ClientCore::SendWithToken(const Request& request, const std::string& token,
                                        Retry retry, const CancellationToken& cancel) {
    Request withToken = request;
    withToken.headers.emplace_back("Authorization", "Bearer " + token);
    if (retry == Retry::Once) {
        return settings.transport->Send(std::move(withToken), cancel);
    }
    vantrocommon::RetryPolicy policy = settings.retryPolicy;
    policy.retryTooManyRequests = false;  // A 429 is the caller's, with its headers.
    return vantrocommon::SendWithRetry(settings.transport, std::move(withToken), policy,
                                       settings.executor, cancel);
}

Future<std::string> ClientCore::TokenAfter(std::uint64_t generation) {
    {
        std::lock_guard lock(mutex);
        if (token.generation != generation) {
            return kelcore::async::MakeReadyFuture(std::string(token.value));
        }
        if (shutDown || !tokenRefreshRequested) {
            return kelcore::async::MakeReadyFuture(std::string());
        }
        if (pendingRefresh) {
            return pendingRefresh->GetFuture();
        }
    }
    RequestRefresh();
    std::lock_guard lock(mutex);
    if (token.generation != generation) {
        return kelcore::async::MakeReadyFuture(std::string(token.value));
    }
    if (!pendingRefresh) {  // Shut down in between.
        return kelcore::async::MakeReadyFuture(std::string());
    }
    return pendingRefresh->GetFuture();
}

void ClientCore::RequestRefresh() {
    std::uint64_t serial = 0;
    {
        std::lock_guard lock(mutex);
        if (shutDown || !tokenRefreshRequested || pendingRefresh) {
            return;
        }
        pendingRefresh = std::make_shared<Promise<std::string>>(settings.executor);
        serial = ++refreshSerial;
    }
    const std::weak_ptr<ClientCore> weak = weak_from_this();
    settings.executor->Post([weak] {
        const auto self = weak.lock();
        if (!self) {
            return;
        }
        std::function<void(const std::string&)> callback;
        {
            std::lock_guard lock(self->mutex);
            if (self->shutDown) {
                return;
            }
            callback = self->tokenRefreshRequested;
        }
        try {
            callback(std::string());
        } catch (const std::exception& e) {
            kelcore::logging::LogException("vantrosdk token refresh callback", e);
        }
    });
    // Without an answer in time, the requests waiting for it answer their 401.
    settings.executor->PostAfterDelay(
        [weak, serial] {
            const auto self = weak.lock();
            if (!self) {
                return;
            }
            std::shared_ptr<Promise<std::string>> expired;
            {
                std::lock_guard lock(self->mutex);
                if (self->refreshSerial == serial) {
                    expired = std::move(self->pendingRefresh);
                    self->pendingRefresh.reset();
                }
            }
            if (expired) {
                expired->SetValue(std::string());
            }
        },
        static_cast<std::uint64_t>(std::max<std::int64_t>(0, settings.tokenRefreshWait.count())));
}

vantrocommon::Response ClientCore::UpdateAccessToken(const std::string& newToken) {
    if (newToken.empty()) {
        return vantrocommon::Response(vantrocommon::kResultInvalidArgument,
                                      "an empty access token was given");
    }
    std::shared_ptr<Promise<std::string>> waiting;
    std::uint64_t generation = 0;
    {
        std::lock_guard lock(mutex);
        token.value = newToken;
        generation = ++token.generation;
        waiting = std::move(pendingRefresh);
        pendingRefresh.reset();
    }
    if (waiting) {
        waiting->SetValue(newToken);
    }
    ScheduleExpiryRefresh(newToken, generation);
    return vantrocommon::Response::Success();
}

void ClientCore::ScheduleExpiryRefresh(const std::string& newToken, std::uint64_t generation) {
    const auto times = ReadTokenTimes(newToken);
    if (!times) {
        return;
    }
    {
        std::lock_guard lock(mutex);
        if (shutDown || !tokenRefreshRequested) {
            return;
        }
    }
    const auto now = std::chrono::system_clock::now();
    const auto due = times->expiresAt - RefreshMargin(*times, now);
    const auto delay = std::max<std::int64_t>(
        0, std::chrono::duration_cast<std::chrono::milliseconds>(due - now).count());
    const std::weak_ptr<ClientCore> weak = weak_from_this();
    settings.executor->PostAfterDelay(
        [weak, generation] {
            const auto self = weak.lock();
            if (!self) {
                return;
            }
            {
                std::lock_guard lock(self->mutex);
                if (self->token.generation != generation) {
                    return;  // A newer token has its own timer.
                }
            }
            self->RequestRefresh();
        },
        static_cast<std::uint64_t>(delay));
}

void ClientCore::Shutdown() {
    transfers->CancelAll();
    std::shared_ptr<Promise<std::string>> waiting;
    {
        std::lock_guard lock(mutex);
        shutDown = true;
        tokenRefreshRequested = nullptr;
        waiting = std::move(pendingRefresh);
        pendingRefresh.reset();
    }
    if (waiting) {
        waiting->SetValue(std::string());
    }
}

}  // namespace vantrosdk::detail
