// Stations: named channels, each with an ordered list of listeners. Sending a message to a
// station calls each of its listeners in the order they were added, on the sending thread;
// posting copies the message and sends it later on the main thread. Process-wide; any thread.
//
//   kelcore::messaging::AddRawListener(station, &listener);
//   kelcore::messaging::SendMessage(station, ConnectionChangedMessage{true});   // now, here
//   kelcore::messaging::PostMessage(station, ConnectionChangedMessage{false});  // main thread
//
// Guarantees: no messaging lock is held while a listener runs; a listener removed (or
// destroyed) while a message is being delivered is not called after that; a listener added
// while a message is being delivered receives the next messages, not the current one.
#pragma once

#include <cstddef>
#include <memory>
#include <utility>

#include <kelcore/messaging/Listener.h>
#include <kelcore/messaging/MessageID.h>
#include <kelcore/messaging/RawMessage.h>
#include <kelcore/threads/MainThread.h>
#include <kelcore/utility/ImmutableString.h>

namespace kelcore::messaging {

/// Adds `listener` at the end of `station`'s listeners. Does nothing if it is already there.
/// A null listener throws (kResultNullPointer). Any thread.
void AddRawListener(const utility::ImmutableString& station, Listener* listener);

/// Removes `listener` from `station`; does nothing if it is not there. When this returns, the
/// listener is not called for `station` again, and calls to it in progress on other threads
/// have finished (a call in progress on this thread, such as the listener removing itself
/// from its own receive, is not waited for). Two listeners that remove each other from
/// receives running on two threads at once would wait for each other. Any thread.
void RemoveRawListener(const utility::ImmutableString& station, Listener* listener);

/// Removes `listener` from every station it was added to, waiting as RemoveRawListener does.
/// Does nothing for a listener on no station. Any thread.
void RemoveRawListenerFromAllStations(Listener* listener);

/// Calls each listener of `station` with `message`, in the order they were added, on this
/// thread, and returns when all have run. Does nothing for a station with no listeners.
/// Any thread.
void SendRawMessage(const utility::ImmutableString& station, const RawMessage& message);

/// Sends `message` to `station` now, on this thread, as SendRawMessage. Any thread.
template <typename T>
void SendMessage(const utility::ImmutableString& station, const T& message) {
    SendRawMessage(station, RawMessage(message));
}

/// Copies `message` and returns at once; the copy is sent to `station` on the main thread when
/// it next runs its queue, to the listeners the station has then. Any thread.
template <typename T>
void PostMessage(const utility::ImmutableString& station, T message) {
    auto payload = std::make_shared<const T>(std::move(message));
    threads::AsyncCallFromMainThread(
        [station, payload] { SendRawMessage(station, RawMessage(*payload)); }, 0);
}

/// How many listeners `station` has. Any thread.
std::size_t CountRawListeners(const utility::ImmutableString& station);

/// Empties every station, so that a test starts clean. Listeners still alive are simply no
/// longer called; removing or destroying them later does nothing. Any thread.
void RemoveAllRawListenersForTesting();

}  // namespace kelcore::messaging
