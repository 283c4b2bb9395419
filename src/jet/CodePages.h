#pragma once

#include <string_view>

namespace drx9::jet {

/// The 128 characters of the bytes 0x80 to 0xFF in a single-byte Windows code page (1250 to 1258); empty for
/// any other.
std::u16string_view upperHalf(unsigned codePage);

} // namespace drx9::jet
