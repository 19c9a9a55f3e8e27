#include <gtest/gtest.h>

#include <unordered_set>

#include <kelcore/utility/Guid.h>

#include <vantrocommon/Guid.h>

namespace {

using vantrocommon::Guid;

constexpr const char* kText = "6f1c2a3b-4d5e-4f60-8a9b-0c1d2e3f4a5b";

TEST(Guid, ParsesAndFormatsTheCanonicalForm) {
    const Guid id(kText);
    EXPECT_FALSE(id.IsNil());
    EXPECT_EQ(id.AsString(), kText);
    EXPECT_EQ(id.GetBytes()[0], 0x6F);
    EXPECT_EQ(id.GetBytes()[15], 0x5B);
}

TEST(Guid, AcceptsUpperCaseAndBracesAndWritesLowerCase) {
    EXPECT_EQ(Guid("6F1C2A3B-4D5E-4F60-8A9B-0C1D2E3F4A5B").AsString(), kText);
    EXPECT_EQ(Guid(std::string("{") + kText + "}").AsString(), kText);
}

TEST(Guid, AnythingElseIsNilWithoutThrowing) {
    for (const char* text :
         {"", "6f1c2a3b4d5e4f608a9b0c1d2e3f4a5b", "6f1c2a3b-4d5e-4f60-8a9b-0c1d2e3f4a5",
          "6f1c2a3b-4d5e-4f60-8a9b-0c1d2e3f4a5bb", "6f1c2a3b_4d5e-4f60-8a9b-0c1d2e3f4a5b",
          "6f1c2a3b-4d5e-4f60-8a9b-0c1d2e3f4a5g", "{6f1c2a3b-4d5e-4f60-8a9b-0c1d2e3f4a5b",
          " 6f1c2a3b-4d5e-4f60-8a9b-0c1d2e3f4a5b", "+f1c2a3b-4d5e-4f60-8a9b-0c1d2e3f4a5b"}) {
        EXPECT_TRUE(Guid(text).IsNil()) << text;
    }
}

TEST(Guid, TheNilIdReadsAllZeros) {
    EXPECT_TRUE(Guid().IsNil());
    EXPECT_EQ(Guid().AsString(), "00000000-0000-0000-0000-000000000000");
    EXPECT_EQ(Guid("00000000-0000-0000-0000-000000000000"), Guid());
}

TEST(Guid, NewIdsAreRandomVersionFourAndDistinct) {
    std::unordered_set<Guid> seen;
    for (int i = 0; i < 1000; ++i) {
        const Guid id = Guid::CreateUnique();
        EXPECT_FALSE(id.IsNil());
        EXPECT_EQ(id.GetBytes()[6] >> 4, 4);
        EXPECT_EQ(id.GetBytes()[8] & 0xC0, 0x80);
        EXPECT_TRUE(seen.insert(id).second);
    }
}

TEST(Guid, MeetsThePlatformIdThroughText) {
    const kelcore::utility::Guid platform(std::string_view{kText});
    EXPECT_EQ(Guid(platform.AsStdString()).AsString(), kText);
    const Guid ours = Guid::CreateUnique();
    EXPECT_EQ(kelcore::utility::Guid(std::string_view{ours.AsString()}).AsStdString(),
              ours.AsString());
}

TEST(Guid, ComparesAndHashesByValue) {
    const Guid a(kText);
    const Guid b{std::string(kText)};
    EXPECT_EQ(a, b);
    EXPECT_EQ(std::hash<Guid>{}(a), std::hash<Guid>{}(b));
    EXPECT_LT(Guid(), a);
    EXPECT_NE(a, Guid::CreateUnique());
    // Ids differing in one byte at either end still land apart.
    Guid::Bytes low = a.GetBytes();
    low[15] ^= 1;
    Guid::Bytes high = a.GetBytes();
    high[0] ^= 1;
    EXPECT_NE(std::hash<Guid>{}(Guid(low)), std::hash<Guid>{}(a));
    EXPECT_NE(std::hash<Guid>{}(Guid(high)), std::hash<Guid>{}(a));
}

}  // namespace
