// Listens on the datastore's station and keeps every change message it receives, as (kind,
// parent id) pairs, so a test can pump the main thread until one has come. Added in the
// constructor, removed in the destructor; lives on the test's (main) thread, where the
// datastore sends its messages.
#pragma once

#include <algorithm>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <kelcore/messaging/Listener.h>
#include <kelcore/messaging/Messaging.h>
#include <vantroclient/VantroDatastore.h>

namespace vantroclienttest {

class MessageRecorder final : public kelcore::messaging::Listener {
public:
    struct Message {
        std::string kind;  ///< "accounts", "teams", "projects" or "assets"
        kelcore::utility::Guid parent;
        friend bool operator==(const Message&, const Message&) = default;
    };

    explicit MessageRecorder(kelcore::utility::ImmutableString station)
        : station(std::move(station)) {
        kelcore::messaging::AddRawListener(this->station, this);
    }
    ~MessageRecorder() override { kelcore::messaging::RemoveRawListener(station, this); }

    void ReceiveRawMessage(const kelcore::messaging::RawMessage& message) override {
        using Datastore = vantro::VantroDatastore;
        std::lock_guard lock(mutex);
        if (const auto* accounts = message.As<Datastore::AccountListChanged>()) {
            messages.push_back({"accounts", accounts->parentID});
        } else if (const auto* teams = message.As<Datastore::TeamListChanged>()) {
            messages.push_back({"teams", teams->parentID});
        } else if (const auto* projects = message.As<Datastore::ProjectListChanged>()) {
            messages.push_back({"projects", projects->parentID});
        } else if (const auto* assets = message.As<Datastore::AssetListChanged>()) {
            messages.push_back({"assets", assets->parentID});
        }
    }

    std::vector<Message> Messages() const {
        std::lock_guard lock(mutex);
        return messages;
    }
    bool Has(const std::string& kind, const kelcore::utility::Guid& parent) const {
        std::lock_guard lock(mutex);
        return std::find(messages.begin(), messages.end(), Message{kind, parent}) != messages.end();
    }
    std::size_t Count(const std::string& kind, const kelcore::utility::Guid& parent) const {
        std::lock_guard lock(mutex);
        return static_cast<std::size_t>(
            std::count(messages.begin(), messages.end(), Message{kind, parent}));
    }
    void Clear() {
        std::lock_guard lock(mutex);
        messages.clear();
    }

private:
    const kelcore::utility::ImmutableString station;
    mutable std::mutex mutex;
    std::vector<Message> messages;
};

}  // namespace vantroclienttest
