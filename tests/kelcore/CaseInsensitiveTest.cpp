#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <kelcore/string/CaseInsensitive.h>

namespace {

using kelcore::string::CaseInsensitive;
using kelcore::string::string_view;

bool Less(string_view a, string_view b) {
    return CaseInsensitive::NaturalStringLessThan(a, b);
}

TEST(CaseInsensitive, SmallerNumberComesFirstWhateverTheCase) {
    EXPECT_TRUE(Less(u"Clip 2", u"clip 10"));
    EXPECT_FALSE(Less(u"clip 10", u"Clip 2"));
    EXPECT_TRUE(Less(u"clip 2", u"Clip 10"));
}

TEST(CaseInsensitive, LettersCompareWithoutCase) {
    EXPECT_TRUE(Less(u"apple", u"Banana"));
    EXPECT_TRUE(Less(u"Apple", u"banana"));
    EXPECT_FALSE(Less(u"banana", u"Apple"));
}

TEST(CaseInsensitive, DigitRunsLongerThanAnyIntegerCompareByValue) {
    EXPECT_TRUE(Less(u"take 99999999999999999999999999998", u"take 99999999999999999999999999999"));
    EXPECT_TRUE(Less(u"take 9", u"take 10000000000000000000000000000000000000000"));
    EXPECT_FALSE(Less(u"take 18446744073709551617", u"take 18446744073709551616"));
}

TEST(CaseInsensitive, LeadingZerosDoNotChangeTheValue) {
    EXPECT_TRUE(Less(u"shot 0009", u"shot 10"));
    EXPECT_TRUE(Less(u"shot 9", u"shot 0010"));
}

TEST(CaseInsensitive, FewerLeadingZerosBreakATie) {
    EXPECT_TRUE(Less(u"shot 7", u"shot 007"));
    EXPECT_FALSE(Less(u"shot 007", u"shot 7"));
    // The value of a later run outranks the zeros of an earlier one.
    EXPECT_TRUE(Less(u"a 01 b 2", u"a 1 b 3"));
}

TEST(CaseInsensitive, CaseBreaksATieByCodeUnits) {
    EXPECT_TRUE(Less(u"Clip", u"clip"));
    EXPECT_FALSE(Less(u"clip", u"Clip"));
    EXPECT_FALSE(Less(u"clip", u"clip"));
}

TEST(CaseInsensitive, APrefixComesFirst) {
    EXPECT_TRUE(Less(u"", u"a"));
    EXPECT_TRUE(Less(u"clip", u"clip 1"));
    EXPECT_TRUE(Less(u"clip 1", u"clip 1a"));
    EXPECT_FALSE(Less(u"a", u""));
}

TEST(CaseInsensitive, NumbersSortBetweenSlashAndColon) {
    EXPECT_TRUE(Less(u"a 5", u"a x"));
    EXPECT_TRUE(Less(u"a 123", u"a :"));
    EXPECT_TRUE(Less(u"a .", u"a 0"));
    EXPECT_TRUE(Less(u"a_b", u"a_c"));
}

TEST(CaseInsensitive, NonAsciiLettersFoldCase) {
    EXPECT_TRUE(Less(u"Ärger 2", u"ärger 10"));
    EXPECT_TRUE(Less(u"ärger 2", u"Ärger 10"));
    EXPECT_TRUE(Less(u"ΑΛΦΑ 2", u"αλφα 10"));
    EXPECT_TRUE(Less(u"ОМЕГА 2", u"омега 10"));
    // Final sigma and sigma are one letter.
    EXPECT_TRUE(Less(u"λόγος 2", u"ΛΌΓΟΣ 10"));
}

TEST(CaseInsensitive, SurrogatePairsFoldAsOneCharacter) {
    // Deseret capital and small long I, each outside the BMP.
    EXPECT_TRUE(Less(u"\U00010400 2", u"\U00010428 10"));
    EXPECT_TRUE(Less(u"\U00010428 2", u"\U00010400 10"));
}

TEST(CaseInsensitive, CharactersOutsideTheBmpSortAfterTheWholeBmp) {
    // By code units the high surrogate 0xD800 would come before U+FF41.
    EXPECT_TRUE(Less(u"\uFF41", u"\U00010000"));
    EXPECT_FALSE(Less(u"\U00010000", u"\uFF41"));
}

TEST(CaseInsensitive, UnpairedSurrogatesAreOrderedWithoutFault) {
    const char16_t lone[] = {0xD800, u'a', 0};
    const char16_t trailing[] = {u'a', 0xDC00, 0};
    EXPECT_TRUE(Less(trailing, lone));
    EXPECT_FALSE(Less(lone, lone));
}

// A generated name: word (in one of three casings), a blank, a number (with leading zeros)
// and a tail. The nested loops below produce the names already in their expected order.
struct Word {
    std::u16string lower, capital, upper;
};

// Listed in folded code point order. Each pair of cases has the upper case at the lower code
// units, so ALL CAPS < Capitalised < lower case when everything else ties.
const std::vector<Word> kWords = {
    {u"alpha", u"Alpha", u"ALPHA"},
    {u"alphabet", u"Alphabet", u"ALPHABET"},
    {u"clip", u"Clip", u"CLIP"},
    {u"clips", u"Clips", u"CLIPS"},
    {u"zeta", u"Zeta", u"ZETA"},
    {u"ärger", u"Ärger", u"ÄRGER"},
    {u"émile", u"Émile", u"ÉMILE"},
    {u"öl", u"Öl", u"ÖL"},
    {u"αλφα", u"Αλφα", u"ΑΛΦΑ"},
    {u"омега", u"Омега", u"ОМЕГА"},
    {u"\U00010428\U0001042F", u"\U00010400\U0001042F", u"\U00010400\U00010407"},
};

// Ascending values, written without leading zeros.
const std::vector<std::u16string> kNumbers = {
    u"0",
    u"1",
    u"2",
    u"9",
    u"10",
    u"11",
    u"99",
    u"100",
    u"4294967295",
    u"4294967296",
    u"18446744073709551615",
    u"18446744073709551616",
    u"123456789012345678901234567890",
    u"923456789012345678901234567890",
};

// Ascending: end of name < ' ' < '.' < '_' < 'b'.
const std::vector<std::u16string> kTails = {
    u"", u" final", u" final 2", u" final 10", u".mov", u"_take3", u"_take12", u"b",
};

std::vector<std::u16string> NamesInExpectedOrder() {
    std::vector<std::u16string> names;
    for (const auto& word : kWords) {
        for (const auto& number : kNumbers) {
            for (const auto& tail : kTails) {
                for (int zeros = 0; zeros < 3; ++zeros) {
                    for (const auto* casing : {&word.upper, &word.capital, &word.lower}) {
                        names.push_back(*casing + u" " + std::u16string(zeros, u'0') + number +
                                        tail);
                    }
                }
            }
        }
    }
    return names;
}

TEST(CaseInsensitive, SortsTenThousandShuffledNamesIntoTheConstructedOrder) {
    const auto all = NamesInExpectedOrder();
    ASSERT_GE(all.size(), 10000u);
    std::mt19937 random(20240611);
    std::vector<std::u16string> expected;
    std::sample(all.begin(), all.end(), std::back_inserter(expected), 10000, random);

    auto names = expected;
    std::shuffle(names.begin(), names.end(), random);
    std::sort(names.begin(), names.end(), [](const auto& a, const auto& b) { return Less(a, b); });

    ASSERT_EQ(names.size(), expected.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        ASSERT_TRUE(names[i] == expected[i]) << "first difference at position " << i;
    }
}

std::u16string RandomName(std::mt19937& random) {
    static const std::vector<std::u16string> pieces = {
        u"a", u"A",          u"b",          u"B", u"0", u"00",     u"1",          u"01",
        u"2", u"10",         u" ",          u".", u"ä", u"Ä",      u"σ",          u"ς",
        u"Σ", u"\U00010400", u"\U00010428", u"9", u"_", u"\uFF41", u"\U00010000",
    };
    std::uniform_int_distribution<std::size_t> length(0, 5);
    std::uniform_int_distribution<std::size_t> piece(0, pieces.size() - 1);
    std::u16string name;
    for (std::size_t n = length(random); n > 0; --n) {
        name += pieces[piece(random)];
    }
    return name;
}

TEST(CaseInsensitive, IsAStrictWeakOrderingWhereOnlyIdenticalNamesTie) {
    std::mt19937 random(7);
    for (int round = 0; round < 20000; ++round) {
        const auto a = RandomName(random);
        const auto b = RandomName(random);
        const auto c = RandomName(random);
        ASSERT_FALSE(Less(a, a));
        ASSERT_FALSE(Less(a, b) && Less(b, a));
        if (Less(a, b) && Less(b, c)) {
            ASSERT_TRUE(Less(a, c));
        }
        // Total: two names that differ are always ordered one way.
        ASSERT_EQ(a == b, !Less(a, b) && !Less(b, a));
    }
}

}  // namespace
