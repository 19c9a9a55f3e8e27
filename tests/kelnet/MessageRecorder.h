// A listener on the connection monitor's station that keeps every ConnectionChangedMessage it
// receives, for a test to wait on. Owned by the test; it joins the station when made and leaves
// it when destroyed. Receives on the monitor's thread; the other methods: any thread.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

#include <kelcore/messaging/Listener.h>

namespace kelnettest {

class MessageRecorder : public kelcore::messaging::Listener {
public:
    MessageRecorder();
    ~MessageRecorder() override;

    /// The values of the messages received so far, in order.
    std::vector<bool> Messages();

    /// Waits until at least `count` messages have come; false when `limit` passes first, which
    /// only a failing test reaches.
    bool WaitForMessages(std::size_t count, std::chrono::seconds limit = std::chrono::seconds(20));

    /// Runs `action` in each receive, after the message is kept; for a listener that throws.
    void SetBeforeKeeping(std::function<void()> action);

    void ReceiveRawMessage(const kelcore::messaging::RawMessage& message) override;

private:
    std::mutex mutex;
    std::condition_variable received;
    std::vector<bool> messages;
    std::function<void()> beforeKeeping;
};

}  // namespace kelnettest
