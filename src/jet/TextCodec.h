#pragma once

#include "jet/Layout.h"
#include "util/Utf.h"

#include <string>
#include <string_view>

namespace drx9::jet {

/// How a file stores text: Jet 3 one byte a character in the header's code page, Jet 4 UTF-16, possibly
/// compressed.
class TextCodec {
public:
    TextCodec() = default;
    TextCodec(Generation generation, unsigned codePage)
        : generation_(generation)
        , codePage_(codePage) {}

    [[nodiscard]] Generation generation() const { return generation_; }
    [[nodiscard]] unsigned codePage() const { return codePage_; }

    /// A stored value as UTF-16. A code page that is not known reads as 1252, so that no byte is lost.
    [[nodiscard]] std::u16string decode16(std::string_view stored) const;
    /// A stored value as UTF-8.
    [[nodiscard]] std::string decode(std::string_view stored) const;
    /// What to store for a text; `compress` where the column allows it. Throws JetError(Rejected) for a
    /// character that the code page lacks.
    [[nodiscard]] std::string encode(std::string_view utf8, bool compress) const;
    /// Names inside table definitions: the same, but never compressed.
    [[nodiscard]] std::string decodeName(std::string_view stored) const;
    [[nodiscard]] std::string encodeName(std::string_view utf8) const { return encode(utf8, false); }

private:
    [[nodiscard]] char16_t characterOf(unsigned char byte) const;
    [[nodiscard]] std::string encodeBytes(std::u16string_view text) const;

    Generation generation_ = Generation::Jet4;
    unsigned codePage_ = 1252;
};

/// Two names are one name to the engine when they differ in case only.
bool sameName(std::string_view a, std::string_view b);
/// The order in which index names are kept: without regard to case.
bool nameLess(std::string_view a, std::string_view b);

} // namespace drx9::jet
