#include "store/Validation.h"

#include <cstdint>
#include <string>

#include "store/StoreError.h"

namespace vantroserver::store {

bool IsValidUtf8(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size()) {
        const auto lead = static_cast<unsigned char>(text[i]);
        std::size_t length = 0;
        std::uint32_t codePoint = 0;
        if (lead < 0x80) {
            ++i;
            continue;
        }
        if ((lead & 0xe0) == 0xc0) {
            length = 2;
            codePoint = lead & 0x1fu;
        } else if ((lead & 0xf0) == 0xe0) {
            length = 3;
            codePoint = lead & 0x0fu;
        } else if ((lead & 0xf8) == 0xf0) {
            length = 4;
            codePoint = lead & 0x07u;
        } else {
            return false;
        }
        if (i + length > text.size()) {
            return false;
        }
        for (std::size_t k = 1; k < length; ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            if ((next & 0xc0) != 0x80) {
                return false;
            }
            codePoint = (codePoint << 6) | (next & 0x3fu);
        }
        const bool overlong = (length == 2 && codePoint < 0x80) ||
                              (length == 3 && codePoint < 0x800) ||
                              (length == 4 && codePoint < 0x10000);
        if (overlong || codePoint > 0x10ffff || (codePoint >= 0xd800 && codePoint <= 0xdfff)) {
            return false;
        }
        i += length;
    }
    return true;
}

void ValidateName(std::string_view what, std::string_view name, std::size_t maxLength,
                  bool allowSlash) {
    const std::string subject(what);
    if (name.empty()) {
        throw StoreError(StoreError::Kind::Invalid, subject + " must not be empty");
    }
    if (name.size() > maxLength) {
        throw StoreError(StoreError::Kind::Invalid,
                         subject + " is longer than " + std::to_string(maxLength) + " bytes");
    }
    if (!IsValidUtf8(name)) {
        throw StoreError(StoreError::Kind::Invalid, subject + " is not valid UTF-8");
    }
    for (const char c : name) {
        const auto b = static_cast<unsigned char>(c);
        if (b < 0x20 || b == 0x7f) {
            throw StoreError(StoreError::Kind::Invalid,
                             subject + " must not contain control characters");
        }
        if (!allowSlash && c == '/') {
            throw StoreError(StoreError::Kind::Invalid, subject + " must not contain '/'");
        }
    }
    if (name.front() == ' ' || name.back() == ' ') {
        throw StoreError(StoreError::Kind::Invalid,
                         subject + " must not begin or end with a space");
    }
}

}  // namespace vantroserver::store
