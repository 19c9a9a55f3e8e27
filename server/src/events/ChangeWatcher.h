// Polls the store's change journal (written by the API and by admin commands run beside the
// server) and publishes each new entry to the event hub. Owned by the server; its timer runs on
// the server's io_context, one poll at a time.
#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <cstdint>
#include <memory>

#include "events/EventHub.h"
#include "store/Store.h"

namespace vantroserver::events {

class ChangeWatcher : public std::enable_shared_from_this<ChangeWatcher> {
public:
    ChangeWatcher(boost::asio::io_context& context, std::shared_ptr<store::Store> store,
                  std::shared_ptr<EventHub> hub, std::chrono::milliseconds interval);

    /// Starts from the journal's newest entry: only changes made from now on are published.
    void Start();
    /// Any thread; the pending poll is cancelled.
    void Stop();

    /// How the hub asks whether a user sees an event's list.
    static EventHub::Visibility VisibilityOf(std::shared_ptr<store::Store> store);

private:
    void Schedule();
    void Poll();

    boost::asio::steady_timer timer;
    std::shared_ptr<store::Store> store;
    std::shared_ptr<EventHub> hub;
    const std::chrono::milliseconds interval;
    std::int64_t lastSequence = 0;
    bool stopped = false;  // Set and read on the timer's strand.
    std::chrono::steady_clock::time_point lastPrune;
};

}  // namespace vantroserver::events
