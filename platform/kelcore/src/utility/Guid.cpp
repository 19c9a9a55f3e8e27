#include <kelcore/utility/Guid.h>

#include <array>
#include <charconv>
#include <ostream>

#include <boost/container_hash/hash.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid.hpp>
#include <boost/uuid/uuid_io.hpp>

namespace kelcore::utility {
namespace {

constexpr std::size_t kCanonicalLength = 36;

// Boost's string_generator also takes text without dashes and reports errors by throwing;
// stored Guids must be exactly canonical and a bad one must quietly read as nil.
bool ParseCanonical(std::string_view text, std::uint64_t& high, std::uint64_t& low) {
    if (text.size() == kCanonicalLength + 2 && text.front() == '{' && text.back() == '}') {
        text = text.substr(1, kCanonicalLength);
    }
    if (text.size() != kCanonicalLength) {
        return false;
    }
    // Offset and length of each hex group; a dash follows every group but the last.
    constexpr std::array<std::pair<std::size_t, std::size_t>, 5> kGroups = {
        {{0, 8}, {9, 4}, {14, 4}, {19, 4}, {24, 12}}};
    std::uint64_t value[5] = {};
    for (std::size_t g = 0; g < kGroups.size(); ++g) {
        const auto [offset, length] = kGroups[g];
        if (g + 1 < kGroups.size() && text[offset + length] != '-') {
            return false;
        }
        // from_chars takes neither sign nor "0x" for an unsigned base-16 number, so consuming
        // the whole group means it was hex digits only.
        const char* first = text.data() + offset;
        const auto [end, error] = std::from_chars(first, first + length, value[g], 16);
        if (error != std::errc{} || end != first + length) {
            return false;
        }
    }
    high = value[0] << 32 | value[1] << 16 | value[2];
    low = value[3] << 48 | value[4];
    return true;
}

boost::uuids::uuid ToUuid(std::uint64_t high, std::uint64_t low) {
    boost::uuids::uuid uuid{};
    for (int i = 0; i < 8; ++i) {
        uuid.data[i] = static_cast<std::uint8_t>(high >> (56 - 8 * i));
        uuid.data[8 + i] = static_cast<std::uint8_t>(low >> (56 - 8 * i));
    }
    return uuid;
}

}  // namespace

Guid::Guid(std::string_view text) noexcept {
    if (!ParseCanonical(text, high, low)) {
        high = low = 0;
    }
}

Guid::Guid(string::string_view text) noexcept {
    // Canonical text is ASCII; anything else cannot parse, so narrowing unit by unit is exact.
    std::array<char, kCanonicalLength + 2> narrow{};
    if (text.size() > narrow.size()) {
        return;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] >= 0x80) {
            return;
        }
        narrow[i] = static_cast<char>(text[i]);
    }
    if (!ParseCanonical(std::string_view(narrow.data(), text.size()), high, low)) {
        high = low = 0;
    }
}

Guid Guid::CreateUnique() {
    // The generator reads the kernel's entropy and is not thread-safe: one per thread.
    thread_local boost::uuids::random_generator generator;
    const boost::uuids::uuid uuid = generator();
    std::uint64_t high = 0;
    std::uint64_t low = 0;
    for (int i = 0; i < 8; ++i) {
        high = high << 8 | uuid.data[i];
        low = low << 8 | uuid.data[8 + i];
    }
    return Guid(high, low);
}

std::string Guid::AsStdString() const {
    return boost::uuids::to_string(ToUuid(high, low));
}

string::string Guid::AsString() const {
    const std::string text = AsStdString();
    return string::string(text.begin(), text.end());
}

std::ostream& operator<<(std::ostream& out, const Guid& guid) {
    return out << guid.AsStdString();
}

}  // namespace kelcore::utility

std::size_t std::hash<kelcore::utility::Guid>::operator()(
    const kelcore::utility::Guid& guid) const noexcept {
    std::size_t seed = 0;
    boost::hash_combine(seed, guid.High());
    boost::hash_combine(seed, guid.Low());
    return seed;
}
