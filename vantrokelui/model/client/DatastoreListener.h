// What every node of the client back end has in common: it listens to the datastore's station
// for the messages that announce changed lists, from its first successful fill until it dies.
// Subscribe joins the station once; a later fill finds `stationId` set and does nothing.
//
// Owned as a base of a node (held by shared pointer); stations only observe it. Subscribe runs
// on the datastore's executor, messages arrive on the thread that sends them (the datastore's
// executor too), and the node may die on any thread. A concrete node calls LeaveStation first
// thing in its own destructor: that waits for a receive in progress on another thread, so no
// message reaches a node whose members are going. This class's destructor does the same again
// as a safety net.
//
//   void VantroClientFolder::AddChildren(...) { ...; SetFetchChildrenState(Fetched); Subscribe(); }
//   VantroClientFolder::~VantroClientFolder() { LeaveStation(); }
#pragma once

#include <mutex>

#include <kelcore/messaging/Listener.h>
#include <kelcore/messaging/RawMessage.h>
#include <kelcore/utility/ImmutableString.h>

namespace vantrokelui::model::VantroClientIntegration {

class DatastoreListener : public kelcore::messaging::Listener {
public:
    DatastoreListener() = default;
    /// Leaves the station if it joined one (see LeaveStation).
    ~DatastoreListener() override;

    /// Does nothing here; each node reacts to its own message. The sending thread.
    void ReceiveRawMessage(const kelcore::messaging::RawMessage& message) override;

    /// Joins the datastore's station unless it has already: takes GetStationID into
    /// `stationId` and adds this listener there. Does nothing when `stationId` is set. Any
    /// thread.
    void Subscribe();

    /// The station joined; empty until Subscribe. Any thread.
    kelcore::utility::ImmutableString GetStationID() const;

protected:
    /// Removes this listener from its station and empties `stationId`; does nothing when it
    /// never joined. When it returns, no receive runs on another thread nor will start. Any
    /// thread, normally the destructor of the concrete node.
    void LeaveStation();

private:
    // Two fills may end at once on a pooled executor, and the node may die on another thread.
    mutable std::mutex stationMutex;
    kelcore::utility::ImmutableString stationId;
};

}  // namespace vantrokelui::model::VantroClientIntegration
