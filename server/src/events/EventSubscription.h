// One open event stream: the user it belongs to and the frames waiting to be written. The
// connection owns it (shared); the hub observes it (weak) and pushes frames from its thread.
// The connection installs a wake-up that posts to its own strand, then drains the queue there.
#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace vantroserver::events {

class EventSubscription {
public:
    explicit EventSubscription(std::string userId) : userId(std::move(userId)) {}

    const std::string& UserId() const { return userId; }

    /// Queues a frame and wakes the connection. Any thread.
    void Push(std::string frame);
    /// Takes every queued frame, oldest first. Any thread (the connection's strand in practice).
    std::vector<std::string> TakePending();
    /// True once frames were refused because the client stopped reading; the connection then
    /// closes, and the client reconnects and reloads its lists.
    bool Overflowed();
    /// Asks the connection to end the stream cleanly (the last chunk, then close) and wakes it;
    /// false when it had been asked already. Any thread.
    bool Close();
    /// True once Close was called. Any thread.
    bool CloseRequested();
    /// Called after each Push, from the pushing thread; must only post. Replaces the previous
    /// one; an empty function detaches the connection.
    void SetWakeUp(std::function<void()> wakeUp);

private:
    const std::string userId;
    std::mutex mutex;
    std::vector<std::string> pending;
    bool overflowed = false;
    bool closeRequested = false;
    std::function<void()> wakeUp;
};

}  // namespace vantroserver::events
