// Message ids: a stable 32-bit hash of a message type's decorated name (typeid(T).name()),
// the same in every process and build made with the same compiler ABI. Any thread.
//
//   if (message.GetMessageID() == kelcore::messaging::MessageIDOf<ConnectionChangedMessage>()) {
//       ...
//   }
#pragma once

#include <cstdint>
#include <string_view>
#include <typeinfo>

namespace kelcore::messaging {

using MessageID = std::uint32_t;

/// The 32-bit FNV-1a hash of `typeName`. Any thread.
// Hand-written because the id must not change between builds or library versions, which
// std::hash and boost::hash do not promise, and must be 32 bits wide.
constexpr MessageID HashMessageTypeNameToMessageID(std::string_view typeName) noexcept {
    MessageID hash = 2166136261u;
    for (const char c : typeName) {
        hash ^= static_cast<unsigned char>(c);
        hash *= 16777619u;
    }
    return hash;
}

/// The id of message type `T`, hashed from its decorated name on the first call and kept.
/// Any thread.
template <typename T>
MessageID MessageIDOf() noexcept {
    static const MessageID id = HashMessageTypeNameToMessageID(typeid(T).name());
    return id;
}

}  // namespace kelcore::messaging
