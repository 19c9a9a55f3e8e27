// What Login's completion function was called with, for tests: the function to pass, and a
// wait for its call. Copies share the result; the function may be called on any thread.
//
//   LoginResult result;
//   vantroauth::jwt::Login("ann", result.Function());
//   EXPECT_EQ(result.Wait(), 0);
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>

namespace vantroauthtest {

class LoginResult {
public:
    LoginResult();
    std::function<void(int)> Function() const;
    /// The code Login's function was called with (a wall-clock bound for a failing test only;
    /// 1 when it was not called in time).
    int Wait(std::chrono::milliseconds timeout = std::chrono::seconds(30)) const;
    bool Called() const;
    /// How many times the function was called so far.
    std::size_t CallCount() const;

private:
    struct State;
    std::shared_ptr<State> state;
};

}  // namespace vantroauthtest
