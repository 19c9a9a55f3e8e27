#include <string>
#include <string_view>
#include <thread>
#include <unordered_map>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/utility/ImmutableString.h>

namespace {

using kelcore::utility::ImmutableString;

class ImmutableStringTest : public ::testing::Test {
protected:
    void TearDown() override { ImmutableString::ForgetInternedStringsForTesting(); }
};

TEST_F(ImmutableStringTest, DefaultIsEmpty) {
    const ImmutableString text;
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(text.size(), 0u);
    EXPECT_STREQ(text.c_str(), "");
    EXPECT_EQ(text.AsStdString(), "");
}

TEST_F(ImmutableStringTest, EmptyOrNullTextEqualsTheDefault) {
    const char* null = nullptr;
    EXPECT_EQ(ImmutableString(""), ImmutableString());
    EXPECT_EQ(ImmutableString(null), ImmutableString());
    EXPECT_EQ(ImmutableString::Intern(""), ImmutableString());
    EXPECT_TRUE(ImmutableString(std::string()).empty());
}

TEST_F(ImmutableStringTest, EqualTextsAreEqualWhetherInternedOrNot) {
    const ImmutableString interned = ImmutableString::Intern("kelnet.ConnectionMonitor");
    const ImmutableString copied(std::string("kelnet.ConnectionMonitor"));
    EXPECT_EQ(interned, copied);
    EXPECT_EQ(copied, "kelnet.ConnectionMonitor");
    EXPECT_NE(interned, ImmutableString("kelnet.ConnectionMonitoR"));
    EXPECT_NE(interned, ImmutableString());
}

TEST_F(ImmutableStringTest, InterningEqualTextsSharesOneBuffer) {
    const std::string first = "Folder";
    const std::string second = "Folder";
    EXPECT_EQ(ImmutableString::Intern(first).c_str(), ImmutableString::Intern(second).c_str());
    EXPECT_NE(ImmutableString(first).c_str(), ImmutableString(second).c_str());
}

TEST_F(ImmutableStringTest, CopiesShareTheBuffer) {
    const ImmutableString original("station");
    const ImmutableString copy = original;
    EXPECT_EQ(copy.c_str(), original.c_str());
    EXPECT_EQ(copy, original);
}

TEST_F(ImmutableStringTest, KeepsUtf8AndEmbeddedNulBytes) {
    const std::string_view text("Caf\xC3\xA9\0tail", 10);
    const ImmutableString stored(text);
    EXPECT_EQ(stored.size(), 10u);
    EXPECT_EQ(stored.AsStringView(), text);
    EXPECT_STREQ(stored.c_str(), "Caf\xC3\xA9");
}

TEST_F(ImmutableStringTest, EqualStringsHashEquallyAndServeAsMapKeys) {
    std::unordered_map<ImmutableString, int> counts;
    counts[ImmutableString("a")] += 1;
    counts[ImmutableString::Intern("a")] += 1;
    counts[ImmutableString("b")] += 1;
    EXPECT_EQ(std::hash<ImmutableString>{}(ImmutableString("a")),
              std::hash<ImmutableString>{}(ImmutableString::Intern("a")));
    EXPECT_EQ(counts.size(), 2u);
    EXPECT_EQ(counts[ImmutableString("a")], 2);
}

TEST_F(ImmutableStringTest, OrdersByTheBytesOfTheText) {
    EXPECT_LT(ImmutableString(), ImmutableString("a"));
    EXPECT_LT(ImmutableString("a"), ImmutableString("ab"));
    EXPECT_LT(ImmutableString("B"), ImmutableString("a"));
    EXPECT_EQ(ImmutableString("x") <=> ImmutableString::Intern("x"), std::strong_ordering::equal);
}

TEST_F(ImmutableStringTest, InterningFromManyThreadsGivesOneBuffer) {
    constexpr int kThreads = 8;
    std::vector<const char*> buffers(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&buffers, t] {
            for (int i = 0; i < 200; ++i) {
                ImmutableString::Intern("text " + std::to_string(i));
            }
            buffers[t] = ImmutableString::Intern("shared").c_str();
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    const ImmutableString shared = ImmutableString::Intern("shared");
    for (const char* buffer : buffers) {
        EXPECT_EQ(buffer, shared.c_str());
    }
}

TEST_F(ImmutableStringTest, ForgettingInternedTextsKeepsHandedOutStringsValid) {
    const ImmutableString kept = ImmutableString::Intern("kept");
    ImmutableString::ForgetInternedStringsForTesting();
    EXPECT_EQ(kept.AsStdString(), "kept");
    EXPECT_EQ(ImmutableString::Intern("kept"), kept);
    EXPECT_NE(ImmutableString::Intern("kept").c_str(), kept.c_str());
}

}  // namespace
