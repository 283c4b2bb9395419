// The data of one reply, read as a film and as both system records.
#include "link/LinkChecks.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    drx9::checkReplies({reinterpret_cast<const char*>(data), size});
    return 0;
}
