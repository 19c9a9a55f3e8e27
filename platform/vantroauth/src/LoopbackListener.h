// The redirect target of an interactive sign-in: an HTTP listener on 127.0.0.1 and a port the
// system picks, on a thread of its own. It answers GET <path>?... once, by handing the query to
// the handler and showing the browser a short page (signed in, or failed), then closes. Other
// paths (a favicon, say) get 404 and the listener goes on. Idle connections that browsers open
// ahead of time do not hold it up. Owned by one sign-in attempt (shared pointer); its thread
// holds it too until that thread ends, so it never goes away under its own feet. Any thread.
//
//   auto listener = LoopbackListener::Start("/callback", [](const auto& query) { ... });
//   redirect.set_port_number(listener->Port());
//   listener->Stop();   // from any thread but the listener's own
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace vantroauth {

class LoopbackListener {
public:
    using Query = std::map<std::string, std::string>;
    /// Called once, on the listener's thread, with the redirect's decoded query; answers
    /// whether the sign-in goes on (the page then says signed in). Must not call Stop.
    using RedirectHandler = std::function<bool(const Query& query)>;

    /// Binds 127.0.0.1:0 and starts listening for `path` (the encoded path, e.g. "/callback").
    /// Throws kel_exception (kResultLoginFailed) when no socket can be had.
    static std::shared_ptr<LoopbackListener> Start(std::string path, RedirectHandler handler);

    /// Stops and joins; on the listener's own thread (which held the last reference as it
    /// ended) it lets that thread finish by itself.
    ~LoopbackListener();
    LoopbackListener(const LoopbackListener&) = delete;
    LoopbackListener& operator=(const LoopbackListener&) = delete;

    /// The port the system gave.
    unsigned short Port() const { return port; }

    /// Any thread but the listener's. Closes the listener and waits for its thread; does
    /// nothing the second time.
    void Stop();

private:
    LoopbackListener(std::string path, RedirectHandler handler);
    void Run();
    /// Answers one complete request head; true when it was the redirect.
    bool Answer(int fd, const std::string& head);

    const std::string path;
    RedirectHandler handler;
    int listenFd = -1;
    int wakeFds[2] = {-1, -1};
    unsigned short port = 0;
    std::mutex stopMutex;
    std::thread thread;
};

}  // namespace vantroauth
