#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace drx9 {

/// Assembles reply packets byte by byte. Survives any byte stream: memory is bounded (a packet holds at most
/// 224 bytes, the text 512), and a sync character restarts the packet wherever it falls.
class FrameParser {
public:
    static constexpr std::size_t kTextLimit = 512;

    /// One complete packet.
    struct Reply {
        bool crcOk = false;
        char statusLetter = 0; ///< meaningful when crcOk
        std::string data;      ///< between the status letter and the check characters; meaningful when crcOk
    };

    /// Takes one received byte; tells the packet that it completes. Zero bytes are ignored entirely. After a
    /// complete packet any further byte before the next sync overwrites the last slot and is checked again
    /// (kept).
    std::optional<Reply> push(std::uint8_t byte);

    /// 0 waiting for sync, 1 waiting for the length byte, 2 and more: next slot to fill.
    [[nodiscard]] std::int32_t Index() const { return index_; }
    /// Every non-zero byte since the last sync, the sync included.
    [[nodiscard]] const std::string& Text() const { return text_; }
    [[nodiscard]] const std::vector<std::uint8_t>& Bytes() const { return bytes_; }

private:
    void takeLength(std::uint8_t length);
    [[nodiscard]] Reply complete() const;

    std::int32_t index_ = 0;
    std::string text_;
    std::vector<std::uint8_t> bytes_;
};

} // namespace drx9
