#include <vantrocommon/http/CancellationToken.h>

#include <atomic>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

namespace vantrocommon::http {

struct CancellationToken::State {
    std::mutex mutex;
    // Read without the lock by IsCancelled; written under it so registration cannot miss it.
    std::atomic<bool> cancelled{false};
    std::uint64_t nextId = 1;
    std::map<std::uint64_t, std::function<void()>> callbacks;
};

CancellationToken::CancellationToken() : state(std::make_shared<State>()) {}

void CancellationToken::Cancel() const {
    std::map<std::uint64_t, std::function<void()>> toCall;
    {
        std::lock_guard lock(state->mutex);
        if (state->cancelled.load()) {
            return;
        }
        state->cancelled = true;
        toCall.swap(state->callbacks);
    }
    for (auto& [id, callback] : toCall) {
        callback();
    }
}

bool CancellationToken::IsCancelled() const {
    return state->cancelled.load();
}

std::uint64_t CancellationToken::OnCancel(std::function<void()> callback) const {
    std::uint64_t id = 0;
    {
        std::lock_guard lock(state->mutex);
        id = state->nextId++;
        if (!state->cancelled.load()) {
            state->callbacks.emplace(id, std::move(callback));
            return id;
        }
    }
    callback();
    return id;
}

void CancellationToken::RemoveOnCancel(std::uint64_t id) const {
    std::lock_guard lock(state->mutex);
    state->callbacks.erase(id);
}

}  // namespace vantrocommon::http
