#include "support/TestBrowser.h"

#include <utility>

#include "support/HttpClient.h"
#include "support/QueryText.h"

namespace testsupport {

namespace {

// The URL with the value of `name` in its query replaced by `value`.
std::string WithQueryValue(const std::string& url, const std::string& name,
                           const std::string& value) {
    std::string out = url.substr(0, url.find('?')) + "?";
    bool first = true;
    for (const auto& [key, old] : QueryPairs(url)) {
        out += (first ? "" : "&") + HttpClient::Escape(key) + "=" +
               HttpClient::Escape(key == name ? value : old);
        first = false;
    }
    return out;
}

}  // namespace

struct TestBrowser::State {
    Options options;
    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    std::vector<Visit> visits;
    std::size_t finished = 0;
    std::vector<std::thread> threads;
    bool closed = false;

    void Run(std::size_t index, const std::string& authorizeUrl) {
        Visit visit;
        visit.authorizeUrl = authorizeUrl;
        Browse(visit);
        std::lock_guard lock(mutex);
        visits[index] = std::move(visit);
        ++finished;
        changed.notify_all();
    }

    void Browse(Visit& visit) {
        if (options.behaviour == Behaviour::NeverRespond) {
            return;
        }
        HttpClient client;
        const std::string& url = visit.authorizeUrl;
        const auto form = client.Get(url);
        visit.formStatus = form.status;
        if (form.status == 0) {
            visit.failure = form.transportError;
            return;
        }
        const std::string redirectUri = QueryValue(url, "redirect_uri");
        if (options.behaviour == Behaviour::Deny) {
            const auto answer = client.Get(redirectUri + "?error=access_denied&state=" +
                                           HttpClient::Escape(QueryValue(url, "state")));
            visit.callbackStatus = answer.status;
            visit.callbackBody = answer.body;
            visit.failure = answer.transportError;
            return;
        }
        HttpClient::Headers fields;
        for (const auto& field : QueryPairs(url)) {
            fields.push_back(field);
        }
        fields.emplace_back("username", options.username);
        fields.emplace_back("password", options.behaviour == Behaviour::WrongPassword
                                            ? options.password + "-wrong"
                                            : options.password);
        const std::string base = url.substr(0, url.find("/oauth/authorize"));
        const auto signIn = client.PostForm(base + "/oauth/authorize", fields);
        visit.signInStatus = signIn.status;
        if (signIn.status != 302) {
            visit.failure = signIn.transportError;
            return;
        }
        visit.location = signIn.Header("location");
        visit.code = QueryValue(visit.location, "code");
        std::string target = visit.location;
        if (options.behaviour == Behaviour::WrongState) {
            target = WithQueryValue(target, "state", "not-the-state-that-was-sent");
        }
        HttpClient loopback;  // another host: a connection of its own, as a browser would
        const auto answer = loopback.Get(target);
        visit.callbackStatus = answer.status;
        visit.callbackBody = answer.body;
        visit.failure = answer.transportError;
    }
};

TestBrowser::TestBrowser(Options options) : state(std::make_shared<State>()) {
    state->options = std::move(options);
}

TestBrowser::~TestBrowser() {
    std::vector<std::thread> threads;
    {
        std::lock_guard lock(state->mutex);
        state->closed = true;
        threads = std::move(state->threads);
    }
    for (auto& thread : threads) {
        thread.join();
    }
}

std::function<bool(const std::string&)> TestBrowser::Opener() const {
    return [state = state](const std::string& authorizeUrl) {
        std::lock_guard lock(state->mutex);
        if (state->closed || state->options.behaviour == Behaviour::Refuse) {
            return false;
        }
        const std::size_t index = state->visits.size();
        state->visits.push_back(Visit{.authorizeUrl = authorizeUrl});
        state->threads.emplace_back(
            [state, index, authorizeUrl] { state->Run(index, authorizeUrl); });
        return true;
    };
}

bool TestBrowser::WaitForVisits(std::size_t count, std::chrono::milliseconds timeout) const {
    std::unique_lock lock(state->mutex);
    return state->changed.wait_for(lock, timeout, [&] { return state->finished >= count; });
}

std::vector<TestBrowser::Visit> TestBrowser::Visits() const {
    std::lock_guard lock(state->mutex);
    return state->visits;
}

std::string TestBrowser::QueryValue(const std::string& url, const std::string& name) {
    for (const auto& [key, value] : QueryPairs(url)) {
        if (key == name) {
            return value;
        }
    }
    return {};
}

}  // namespace testsupport
