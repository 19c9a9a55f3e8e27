#include <vantrokelui/model/client/DatastoreListener.h>

#include <utility>

#include <kelcore/messaging/Messaging.h>
#include <vantrokelui/model/client/detail/ClientDatastore.h>

namespace vantrokelui::model::VantroClientIntegration {

DatastoreListener::~DatastoreListener() {
    LeaveStation();
}

void DatastoreListener::ReceiveRawMessage(const kelcore::messaging::RawMessage&) {}

void DatastoreListener::Subscribe() {
    const std::lock_guard lock(stationMutex);
    if (!stationId.empty()) {
        return;
    }
    stationId = detail::Datastore()->GetStationID();
    // Adding calls no listener, so holding the mutex here cannot deadlock against a receive.
    kelcore::messaging::AddRawListener(stationId, this);
}

kelcore::utility::ImmutableString DatastoreListener::GetStationID() const {
    const std::lock_guard lock(stationMutex);
    return stationId;
}

void DatastoreListener::LeaveStation() {
    kelcore::utility::ImmutableString station;
    {
        const std::lock_guard lock(stationMutex);
        station = std::exchange(stationId, kelcore::utility::ImmutableString());
    }
    // Outside the mutex: removal waits for receives running on other threads.
    if (!station.empty()) {
        kelcore::messaging::RemoveRawListener(station, this);
    }
}

}  // namespace vantrokelui::model::VantroClientIntegration
