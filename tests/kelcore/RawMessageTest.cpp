#include <string>
#include <typeinfo>

#include <gtest/gtest.h>

#include <kelcore/messaging/MessageID.h>
#include <kelcore/messaging/RawMessage.h>

namespace {

using kelcore::messaging::HashMessageTypeNameToMessageID;
using kelcore::messaging::MessageIDOf;
using kelcore::messaging::RawMessage;

struct ListChanged {
    int parent = 0;
};
struct OtherChanged {
    std::string text;
};

TEST(MessageID, HashIsThe32BitFnv1aOfTheName) {
    static_assert(HashMessageTypeNameToMessageID("") == 0x811c9dc5u);
    EXPECT_EQ(HashMessageTypeNameToMessageID("a"), 0xe40c292cu);
    EXPECT_EQ(HashMessageTypeNameToMessageID("foobar"), 0xbf9cf968u);
}

TEST(MessageID, MessageIDOfHashesTheDecoratedTypeName) {
    EXPECT_EQ(MessageIDOf<ListChanged>(),
              HashMessageTypeNameToMessageID(typeid(ListChanged).name()));
    EXPECT_NE(MessageIDOf<ListChanged>(), MessageIDOf<OtherChanged>());
}

TEST(RawMessage, CarriesTheIdOfItsPayloadType) {
    const ListChanged payload{7};
    const RawMessage message(payload);
    EXPECT_EQ(message.GetMessageID(), MessageIDOf<ListChanged>());
}

TEST(RawMessage, AsGivesThePayloadOfItsOwnType) {
    const ListChanged payload{7};
    const RawMessage message(payload);
    ASSERT_NE(message.As<ListChanged>(), nullptr);
    EXPECT_EQ(message.As<ListChanged>(), &payload);
    EXPECT_EQ(message.As<const ListChanged>()->parent, 7);
}

TEST(RawMessage, AsGivesNullForAnotherType) {
    const ListChanged payload{7};
    const RawMessage message(payload);
    EXPECT_EQ(message.As<OtherChanged>(), nullptr);
    EXPECT_EQ(message.As<int>(), nullptr);
}

}  // namespace
