// A message as a listener receives it: its id and a type-erased view of the payload, which
// the listener reads back with As<T>(). A RawMessage only views the payload; it is valid for
// the duration of the receive call and must not be kept. Any thread.
//
//   void ReceiveRawMessage(const RawMessage& message) override {
//       if (const auto* changed = message.As<ConnectionChangedMessage>()) { Use(*changed); }
//   }
#pragma once

#include <memory>
#include <type_traits>
#include <typeinfo>

#include <kelcore/messaging/MessageID.h>

namespace kelcore::messaging {

class RawMessage {
public:
    /// Views `payload`, which must outlive this message. Any thread.
    template <typename T>
    explicit RawMessage(const T& payload) noexcept
        : id(MessageIDOf<T>()), type(&typeid(T)), payload(std::addressof(payload)) {}
    template <typename T>
    RawMessage(const T&&) = delete;

    RawMessage(const RawMessage&) = delete;
    RawMessage& operator=(const RawMessage&) = delete;

    /// The id of the payload's type, as MessageIDOf gives it. Any thread.
    MessageID GetMessageID() const noexcept { return id; }

    /// The payload if it is a `T`; null when the id differs or, on a hash collision, when the
    /// types do. Any thread.
    template <typename T>
    const T* As() const noexcept {
        using Payload = std::remove_cvref_t<T>;
        if (id != MessageIDOf<Payload>() || *type != typeid(Payload)) {
            return nullptr;
        }
        return static_cast<const Payload*>(payload);
    }

private:
    MessageID id;
    const std::type_info* type;
    const void* payload;
};

}  // namespace kelcore::messaging
