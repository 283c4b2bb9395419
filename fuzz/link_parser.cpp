// A stream of bytes from the instrument, fed to the packet parser.
#include "link/LinkChecks.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    drx9::checkReplyStream({reinterpret_cast<const char*>(data), size});
    return 0;
}
