#include "events/ChangeWatcher.h"

#include <boost/asio/dispatch.hpp>
#include <boost/asio/strand.hpp>
#include <iostream>

namespace vantroserver::events {

namespace {

// Published entries are pruned from the journal at most this often, so polling stays a read.
constexpr std::chrono::seconds kPruneInterval{30};

std::optional<store::ChangeKind> KindNamed(std::string_view name) {
    for (const auto kind : {store::ChangeKind::AccountList, store::ChangeKind::TeamList,
                            store::ChangeKind::ProjectList, store::ChangeKind::AssetList}) {
        if (store::ChangeKindName(kind) == name) {
            return kind;
        }
    }
    return std::nullopt;
}

}  // namespace

ChangeWatcher::ChangeWatcher(boost::asio::io_context& context, std::shared_ptr<store::Store> store,
                             std::shared_ptr<EventHub> hub, std::chrono::milliseconds interval)
    : timer(boost::asio::make_strand(context)),
      store(std::move(store)),
      hub(std::move(hub)),
      interval(interval),
      lastPrune(std::chrono::steady_clock::now()) {}

EventHub::Visibility ChangeWatcher::VisibilityOf(std::shared_ptr<store::Store> store) {
    return [store = std::move(store)](const std::string& userId, const Event& event) {
        const auto kind = KindNamed(event.type);
        return kind && store->Access().CanSeeChange(userId, {0, *kind, event.parentId});
    };
}

void ChangeWatcher::Start() {
    lastSequence = store->Changes().LatestSequence();
    Schedule();
}

void ChangeWatcher::Stop() {
    boost::asio::dispatch(timer.get_executor(), [self = shared_from_this()] {
        self->stopped = true;
        self->timer.cancel();
    });
}

void ChangeWatcher::Schedule() {
    timer.expires_after(interval);
    timer.async_wait([weak = weak_from_this()](boost::system::error_code error) {
        auto self = weak.lock();
        if (!error && self) {
            self->Poll();
        }
    });
}

void ChangeWatcher::Poll() {
    try {
        for (;;) {
            const auto changes = store->Changes().After(lastSequence);
            for (const auto& change : changes) {
                hub->Publish({std::string(store::ChangeKindName(change.kind)), change.parentId});
                lastSequence = change.sequence;
            }
            if (changes.empty()) {
                break;
            }
        }
        const auto now = std::chrono::steady_clock::now();
        if (now - lastPrune >= kPruneInterval) {
            lastPrune = now;
            store->Changes().PruneThrough(lastSequence);
        }
    } catch (const std::exception& error) {
        // A busy or briefly locked database: try again on the next tick.
        std::cerr << "vantro-server: reading the change journal failed: " << error.what()
                  << std::endl;
    }
    if (!stopped) {
        Schedule();
    }
}

}  // namespace vantroserver::events
