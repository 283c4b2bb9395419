#pragma once

#include "jet/JetError.h"

#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>

namespace drx9::jet {

using PageNo = std::uint32_t;

/// Bounds-checked reading of a file's bytes: little-endian, and big-endian for index entries. A read outside
/// the bytes throws JetError(Damaged), nothing else happens. Does not own the bytes.
class Bytes {
public:
    Bytes() = default;
    explicit Bytes(std::string_view bytes)
        : bytes_(bytes) {}

    [[nodiscard]] std::size_t size() const { return bytes_.size(); }
    [[nodiscard]] std::string_view all() const { return bytes_; }
    [[nodiscard]] std::string_view part(std::size_t at, std::size_t length) const {
        if (at > bytes_.size() || length > bytes_.size() - at) {
            damaged("a value reaches beyond its page");
        }
        return bytes_.substr(at, length);
    }

    /// Little-endian number of 1 to 4 bytes.
    [[nodiscard]] std::uint32_t number(std::size_t at, std::size_t width) const {
        const auto bytes = part(at, width);
        std::uint32_t value = 0;
        for (std::size_t i = width; i-- > 0;) {
            value = value << 8 | static_cast<unsigned char>(bytes[i]);
        }
        return value;
    }
    [[nodiscard]] std::uint8_t u8(std::size_t at) const { return static_cast<std::uint8_t>(number(at, 1)); }
    [[nodiscard]] std::uint16_t u16(std::size_t at) const {
        return static_cast<std::uint16_t>(number(at, 2));
    }
    [[nodiscard]] std::uint32_t u32(std::size_t at) const { return number(at, 4); }
    [[nodiscard]] std::uint64_t u64(std::size_t at) const {
        return u32(at) | static_cast<std::uint64_t>(u32(at + 4)) << 32;
    }
    /// Big-endian number of 1 to 4 bytes.
    [[nodiscard]] std::uint32_t bigEndian(std::size_t at, std::size_t width) const {
        std::uint32_t value = 0;
        for (const char byte : part(at, width)) {
            value = value << 8 | static_cast<unsigned char>(byte);
        }
        return value;
    }

private:
    std::string_view bytes_;
};

/// Bounds-checked little-endian writing over bytes that somebody else owns. A view: its const says nothing of
/// the bytes.
class Patch {
public:
    explicit Patch(std::span<char> bytes)
        : bytes_(bytes) {}

    [[nodiscard]] std::span<char> part(std::size_t at, std::size_t length) const {
        if (at > bytes_.size() || length > bytes_.size() - at) {
            damaged("a value reaches beyond its page");
        }
        return bytes_.subspan(at, length);
    }
    void number(std::size_t at, std::size_t width, std::uint32_t value) const {
        const auto place = part(at, width);
        for (auto& byte : place) {
            byte = static_cast<char>(value & 0xFF);
            value >>= 8;
        }
    }
    void u8(std::size_t at, std::uint32_t value) const { number(at, 1, value); }
    void u16(std::size_t at, std::uint32_t value) const { number(at, 2, value); }
    void u32(std::size_t at, std::uint32_t value) const { number(at, 4, value); }
    void bytes(std::size_t at, std::string_view value) const {
        const auto place = part(at, value.size());
        if (!value.empty()) {
            std::memcpy(place.data(), value.data(), value.size());
        }
    }
    void fill(std::size_t at, std::size_t length, char byte) const {
        for (auto& each : part(at, length)) {
            each = byte;
        }
    }

private:
    std::span<char> bytes_;
};

/// Appends a little-endian number of `width` bytes.
inline void append(std::string& bytes, std::size_t width, std::uint64_t value) {
    for (std::size_t i = 0; i < width; ++i) {
        bytes.push_back(static_cast<char>(value >> (8 * i) & 0xFF));
    }
}

/// Appends a big-endian number of `width` bytes.
inline void appendBigEndian(std::string& bytes, std::size_t width, std::uint64_t value) {
    for (std::size_t i = width; i-- > 0;) {
        bytes.push_back(static_cast<char>(value >> (8 * i) & 0xFF));
    }
}

} // namespace drx9::jet
