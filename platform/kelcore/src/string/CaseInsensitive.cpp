#include <kelcore/string/CaseInsensitive.h>

#include <locale.h>
#include <wctype.h>

namespace kelcore::string {
namespace {

// The C.UTF-8 character tables, independent of the host's global locale; (locale_t)0 when the
// system lacks them, in which case only ASCII letters fold.
locale_t UnicodeCTypeLocale() {
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t{});
    return locale;
}

// Upper then lower maps case variants such as final sigma and long s onto one letter, which
// lower-casing alone does not.
char32_t FoldCase(char32_t c) {
    if (c < 0x80) {
        return (c >= U'A' && c <= U'Z') ? c + (U'a' - U'A') : c;
    }
    const locale_t locale = UnicodeCTypeLocale();
    if (locale == locale_t{}) {
        return c;
    }
    return static_cast<char32_t>(towlower_l(towupper_l(static_cast<wint_t>(c), locale), locale));
}

bool IsDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

char32_t NextCodePoint(string_view text, std::size_t& index) {
    const char16_t unit = text[index++];
    if (unit >= 0xD800 && unit <= 0xDBFF && index < text.size() && text[index] >= 0xDC00 &&
        text[index] <= 0xDFFF) {
        const char16_t low = text[index++];
        return 0x10000 + ((static_cast<char32_t>(unit) - 0xD800) << 10) + (low - 0xDC00);
    }
    return unit;
}

std::size_t SkipWhile(string_view text, std::size_t index, bool (*keep)(char16_t)) {
    while (index < text.size() && keep(text[index])) {
        ++index;
    }
    return index;
}

}  // namespace

bool CaseInsensitive::NaturalStringLessThan(string_view a, string_view b) noexcept {
    std::size_t i = 0;
    std::size_t j = 0;
    // Decided by the first pair of equal-valued digit runs that differ in leading zeros, but
    // only when the names are otherwise equal.
    int leadingZerosOrder = 0;
    while (i < a.size() && j < b.size()) {
        // Shared prefixes are common among names; equal units outside digit runs and surrogate
        // pairs fold alike, so they need no folding.
        if (a[i] == b[j] && !IsDigit(a[i]) && (a[i] < 0xD800 || a[i] > 0xDFFF)) {
            ++i;
            ++j;
            continue;
        }
        if (IsDigit(a[i]) && IsDigit(b[j])) {
            const std::size_t aSignificant = SkipWhile(a, i, [](char16_t u) { return u == u'0'; });
            const std::size_t bSignificant = SkipWhile(b, j, [](char16_t u) { return u == u'0'; });
            const std::size_t aEnd = SkipWhile(a, aSignificant, IsDigit);
            const std::size_t bEnd = SkipWhile(b, bSignificant, IsDigit);
            // Without leading zeros, the longer run is the larger number.
            if (aEnd - aSignificant != bEnd - bSignificant) {
                return aEnd - aSignificant < bEnd - bSignificant;
            }
            const int digits = a.substr(aSignificant, aEnd - aSignificant)
                                   .compare(b.substr(bSignificant, bEnd - bSignificant));
            if (digits != 0) {
                return digits < 0;
            }
            if (leadingZerosOrder == 0 && aEnd - i != bEnd - j) {
                leadingZerosOrder = aEnd - i < bEnd - j ? -1 : 1;
            }
            i = aEnd;
            j = bEnd;
            continue;
        }
        // A digit against anything else compares as that digit: no letter folds into 0-9, so
        // every number sits between '/' and ':' whatever its value.
        const char32_t aFolded = FoldCase(NextCodePoint(a, i));
        const char32_t bFolded = FoldCase(NextCodePoint(b, j));
        if (aFolded != bFolded) {
            return aFolded < bFolded;
        }
    }
    if (i < a.size() || j < b.size()) {
        return i == a.size();
    }
    if (leadingZerosOrder != 0) {
        return leadingZerosOrder < 0;
    }
    return a < b;
}

}  // namespace kelcore::string
