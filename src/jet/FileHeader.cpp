#include "jet/FileHeader.h"
#include "jet/Texts.h"
#include "util/Text.h"

#include <array>
#include <bit>

namespace drx9::jet {

namespace {

constexpr std::size_t kNameAt = 4;
constexpr std::size_t kNameSize = 15;
constexpr std::string_view kName = "Standard Jet DB";
constexpr std::size_t kVersionAt = 0x14;
constexpr std::size_t kMaskedAt = 0x18;
constexpr std::size_t kCodePageAt = 0x3C;
constexpr std::size_t kEncryptionKeyAt = 0x3E;
constexpr std::size_t kCreatedAt = 0x72; ///< Jet 4
/// 2015-11-21, the time that goes with the security ids of a new Jet 4 file.
constexpr std::string_view kCreated = "\x3E\x85\xD3\x3B\x3E\xAB\xE4\x40";
constexpr std::size_t kClearAt = 0x98; ///< Jet 4: engine's version in clear
/// At the header's end; a slot of zero would mean a dead writer.
constexpr std::size_t kCommitTableSize = 512;
constexpr std::array<unsigned char, 4> kMaskKey = {0xC7, 0xDA, 0x39, 0x6B};

/// Lays the header's fixed mask over the bytes; the same again takes it off. The mask is the RC4 stream of a
/// 4-byte key.
void mask(std::span<char> bytes) {
    std::array<unsigned char, 256> state{};
    for (std::size_t i = 0; i < state.size(); ++i) {
        state[i] = static_cast<unsigned char>(i);
    }
    for (std::size_t i = 0, j = 0; i < state.size(); ++i) {
        j = (j + state[i] + kMaskKey[i % kMaskKey.size()]) & 0xFF;
        std::swap(state[i], state[j]);
    }
    std::size_t i = 0;
    std::size_t j = 0;
    for (auto& byte : bytes) {
        i = (i + 1) & 0xFF;
        j = (j + state[i]) & 0xFF;
        std::swap(state[i], state[j]);
        byte = static_cast<char>(byte ^ state[(state[i] + state[j]) & 0xFF]);
    }
}

[[noreturn]] void cannotOpen(const std::string& why) {
    throw JetError(Fault::CannotOpen, why);
}

const Layout& layoutByVersion(const Bytes& header) {
    constexpr std::array<const char*, 5> kLater = {"2007", "2010", "2013", "2016", "2019"};
    const auto version = header.u32(kVersionAt);
    const auto name = header.part(kNameAt, kNameSize);
    if (name == "MSISAM Database") {
        cannotOpen(jetText::kMoney);
    }
    if (name != kName && name != "Standard ACE DB") {
        cannotOpen(jetText::kNoDatabase);
    }
    if (version >= 2 && version < 2 + kLater.size()) {
        cannotOpen(filled(jetText::kLaterVersion, {kLater[version - 2]}));
    }
    if (version > 1 || name != kName) {
        cannotOpen(jetText::kUnknownVersion);
    }
    return version == 0 ? kJet3 : kJet4;
}

/// Jet 4 stores the password under the creation day, repeated; so an empty one shows the same four bytes all
/// along.
bool hasPassword(const Layout& layout, const Bytes& header) {
    std::string day;
    if (layout.generation == Generation::Jet4) {
        const double created = std::bit_cast<double>(header.u64(kCreatedAt));
        const bool sane = created > -1e6 && created < 1e6;
        append(day, 4, sane ? static_cast<std::uint32_t>(static_cast<std::int32_t>(created)) : 0);
    } else {
        day.assign(4, '\0');
    }
    const auto password = header.part(layout.passwordAt, layout.passwordSize);
    for (std::size_t i = 0; i < password.size(); ++i) {
        if (password[i] != day[i % day.size()]) {
            return true;
        }
    }
    return false;
}

} // namespace

FileHeader FileHeader::read(const PageImage& image) {
    const Bytes start(image.view(0, std::min(image.size(), kJet3.pageSize)));
    if (start.size() < kMaskedAt) {
        cannotOpen(jetText::kNoDatabase);
    }
    const Layout& layout = layoutByVersion(start);
    if (image.size() < 3 * layout.pageSize) {
        cannotOpen(jetText::kCutShort);
    }
    std::string plain(image.view(0, layout.pageSize));
    mask(std::span(plain).subspan(kMaskedAt, layout.maskedSize));
    const Bytes header(plain);
    if (header.u32(kEncryptionKeyAt) != 0) {
        cannotOpen(jetText::kEncrypted);
    }
    if (hasPassword(layout, header)) {
        cannotOpen(jetText::kPassword);
    }
    const auto codePage = header.u16(kCodePageAt);
    return {&layout, codePage == 0 ? kUsualCodePage : codePage};
}

void FileHeader::write(const Layout& layout, std::span<char> bytes) {
    const bool jet4 = layout.generation == Generation::Jet4;
    Patch page(bytes);
    page.u32(0, 0x100);
    page.bytes(kNameAt, kName);
    page.u32(kVersionAt, jet4 ? 1 : 0);
    page.bytes(kMaskedAt, std::string_view("\0\1\0\0\1\1\0\0\2\0\0\0\3\0\0\0\4\0\0\0\5\0\0\0", 24));
    page.u16(layout.sortOrderAt, 0x0409);
    page.u16(kCodePageAt, kUsualCodePage);
    page.u32(layout.buildAt, jet4 ? 0x261C : 0x0D64);
    if (jet4) {
        page.bytes(kCreatedAt, kCreated);
        const auto day = static_cast<std::uint32_t>(std::bit_cast<double>(Bytes(kCreated).u64(0)));
        for (std::size_t at = 0; at < layout.passwordSize; at += 4) {
            page.u32(layout.passwordAt + at, day);
        }
        page.bytes(kClearAt, std::string_view("\x54\x06\0\0"
                                              "4.0\0",
                                              8));
    }
    mask(bytes.subspan(kMaskedAt, layout.maskedSize));
    for (std::size_t at = layout.pageSize - kCommitTableSize; at < layout.pageSize; at += 2) {
        page.u16(at, at == layout.pageSize - kCommitTableSize ? 0x0101 : 0x0100);
    }
}

} // namespace drx9::jet
