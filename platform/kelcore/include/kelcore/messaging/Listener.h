// Receives the messages sent to the stations it was added to with AddRawListener. The owner of
// the derived object owns the listener; stations only observe it. Messages arrive on the
// thread that sends them (the main thread for PostMessage), one call at a time per send.
//
// The destructor removes the listener from every station and waits for calls in progress on
// other threads, but by then the derived part is already gone: a listener that may receive on
// another thread while it is destroyed calls RemoveRawListener (or
// RemoveRawListenerFromAllStations) in its own destructor.
//
//   class Monitor : public kelcore::messaging::Listener {
//       void ReceiveRawMessage(const RawMessage& message) override;
//   };
#pragma once

#include <kelcore/messaging/RawMessage.h>

namespace kelcore::messaging {

class Listener {
public:
    Listener() = default;
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    /// Removes this listener from every station it was added to, as
    /// RemoveRawListenerFromAllStations does.
    virtual ~Listener();

    /// Receives one message of a station this listener was added to. Does nothing here.
    /// Runs on the sending thread with no messaging lock held, so it may send, add or remove.
    virtual void ReceiveRawMessage(const RawMessage& message);
};

}  // namespace kelcore::messaging
