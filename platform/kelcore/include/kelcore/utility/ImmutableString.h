// An immutable UTF-8 text that is cheap to copy, compare and hash: copies share one buffer and
// its precomputed hash. Used for messaging station ids and constant type tags. A plain value,
// any thread. The default is the empty string. Interned strings share one buffer per distinct
// text for the life of the process, so equal interned strings compare by pointer.
//
//   const ImmutableString station = ImmutableString::Intern("kelnet.ConnectionMonitor");
//   std::unordered_map<ImmutableString, int> counts;   // hashes without rescanning the text
//   counts[station] += 1;
#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

namespace kelcore::utility {

namespace detail {
// Visible so that copies, hashing and comparison inline into callers in other libraries.
struct ImmutableStringRep {
    explicit ImmutableStringRep(std::string_view text)
        : text(text), hash(std::hash<std::string_view>{}(text)) {}

    const std::string text;
    const std::size_t hash;
};
}  // namespace detail

class ImmutableString {
public:
    /// The empty string. Any thread.
    ImmutableString() noexcept = default;
    /// A private copy of `text`; empty text gives the empty string. Any thread.
    ImmutableString(std::string_view text);
    /// As the string_view constructor; null gives the empty string. Any thread.
    ImmutableString(const char* text);
    /// As the string_view constructor. Any thread.
    ImmutableString(const std::string& text);

    /// The process-wide shared copy of `text`, made on first use. Any thread.
    static ImmutableString Intern(std::string_view text);
    /// Forgets the interned texts so that a test starts clean; strings already handed out
    /// keep their buffers. Any thread.
    static void ForgetInternedStringsForTesting();

    /// True for the empty string. Any thread.
    bool empty() const noexcept { return rep == nullptr; }
    /// Length in bytes. Any thread.
    std::size_t size() const noexcept { return rep ? rep->text.size() : 0; }
    /// The text, NUL-terminated; "" when empty. Valid while any copy of this string lives.
    /// Any thread.
    const char* c_str() const noexcept { return AsStdString().c_str(); }
    /// The text as a std::string; a shared empty one when empty. Any thread.
    const std::string& AsStdString() const noexcept { return rep ? rep->text : EmptyStdString(); }
    /// The text as a view. Any thread.
    std::string_view AsStringView() const noexcept { return AsStdString(); }
    /// The hash of the text, computed once at construction. Any thread.
    std::size_t Hash() const noexcept {
        return rep ? rep->hash : std::hash<std::string_view>{}(std::string_view());
    }

    /// Equal when the texts are; shared buffers answer without reading the text. Any thread.
    friend bool operator==(const ImmutableString& a, const ImmutableString& b) noexcept {
        if (a.rep == b.rep) {
            return true;
        }
        if (!a.rep || !b.rep || a.rep->hash != b.rep->hash) {
            return false;
        }
        return a.rep->text == b.rep->text;
    }
    /// Orders by the bytes of the text. Any thread.
    friend std::strong_ordering operator<=>(const ImmutableString& a,
                                            const ImmutableString& b) noexcept;

private:
    static const std::string& EmptyStdString() noexcept;

    explicit ImmutableString(std::shared_ptr<const detail::ImmutableStringRep> rep) noexcept
        : rep(std::move(rep)) {}

    std::shared_ptr<const detail::ImmutableStringRep> rep;
};

/// Prints the text.
std::ostream& operator<<(std::ostream& out, const ImmutableString& text);

}  // namespace kelcore::utility

template <>
struct std::hash<kelcore::utility::ImmutableString> {
    std::size_t operator()(const kelcore::utility::ImmutableString& text) const noexcept {
        return text.Hash();
    }
};
