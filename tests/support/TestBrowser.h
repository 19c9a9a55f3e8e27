// A stand-in for the user's browser in sign-in tests: an opener (the shape of
// vantroauth::BrowserOpener) that, given the authorize URL, does on a thread of its own what a
// person would: loads the sign-in form, posts the username and password to /oauth/authorize,
// and follows the redirect to the application's loopback listener. The opener returns at once.
// Other behaviours: a wrong password (no redirect comes, the sign-in times out), denying the
// request (the redirect gets error=access_denied), a tampered state, or never answering.
// Owned by the test; its threads are joined when it goes. Any thread.
//
//   testsupport::TestBrowser browser({.username = "ann", .password = "secret"});
//   vantroauth::SetBrowserOpener(browser.Opener());
//   vantroauth::jwt::Login("ann", done);
//   browser.WaitForVisits(1);
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace testsupport {

class TestBrowser {
public:
    enum class Behaviour {
        SignIn,         ///< Signs in and follows the redirect to the listener.
        WrongPassword,  ///< Posts a wrong password; the service shows the form again.
        Deny,           ///< Calls the redirect URI with error=access_denied and the state.
        WrongState,     ///< Signs in, then follows the redirect with another state.
        NeverRespond,   ///< Records the URL and does nothing more.
        Refuse,         ///< The opener answers false: no browser could be started.
    };

    struct Options {
        std::string username{};
        std::string password = "secret";
        Behaviour behaviour = Behaviour::SignIn;
    };

    /// What happened to one authorize URL. Statuses are 0 for a step not taken.
    struct Visit {
        std::string authorizeUrl{};
        long formStatus = 0;      ///< GET of the authorize URL (the sign-in form).
        long signInStatus = 0;    ///< POST of the form.
        std::string location{};   ///< Where the service redirected (holds the code).
        std::string code{};       ///< The code in `location`.
        long callbackStatus = 0;  ///< The listener's answer to the redirect.
        std::string callbackBody{};
        std::string failure{};  ///< A transport failure on the way, if any.
    };

    explicit TestBrowser(Options options);
    /// Joins the visits still running; the opener refuses from then on.
    ~TestBrowser();
    TestBrowser(const TestBrowser&) = delete;
    TestBrowser& operator=(const TestBrowser&) = delete;

    /// The opener to install; it shares this browser's state and may outlive it.
    std::function<bool(const std::string&)> Opener() const;

    /// Waits until `count` visits have finished (a wall-clock bound for a failing test only).
    bool WaitForVisits(std::size_t count,
                       std::chrono::milliseconds timeout = std::chrono::seconds(30)) const;
    /// The visits so far, finished or not, in the order the URLs came.
    std::vector<Visit> Visits() const;

    /// The value of `name` in the query of `url`, percent-decoded; empty when absent.
    static std::string QueryValue(const std::string& url, const std::string& name);

private:
    struct State;
    std::shared_ptr<State> state;
};

}  // namespace testsupport
