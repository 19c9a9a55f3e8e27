#include "LoginResult.h"

#include <condition_variable>
#include <mutex>
#include <vector>

namespace vantroauthtest {

struct LoginResult::State {
    mutable std::mutex mutex;
    mutable std::condition_variable called;
    std::vector<int> codes;
};

LoginResult::LoginResult() : state(std::make_shared<State>()) {}

std::function<void(int)> LoginResult::Function() const {
    return [state = state](int code) {
        std::lock_guard lock(state->mutex);
        state->codes.push_back(code);
        state->called.notify_all();
    };
}

int LoginResult::Wait(std::chrono::milliseconds timeout) const {
    std::unique_lock lock(state->mutex);
    if (!state->called.wait_for(lock, timeout, [&] { return !state->codes.empty(); })) {
        return 1;
    }
    return state->codes.front();
}

std::size_t LoginResult::CallCount() const {
    std::lock_guard lock(state->mutex);
    return state->codes.size();
}

bool LoginResult::Called() const {
    std::lock_guard lock(state->mutex);
    return !state->codes.empty();
}

}  // namespace vantroauthtest
