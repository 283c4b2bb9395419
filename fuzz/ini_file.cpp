// Any bytes as Monitor.ini: nothing crashes, a change is read back, everything else stays as it was.
#include "monitor/IniChecks.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    drx9::checkIniFile({reinterpret_cast<const char*>(data), size});
    return 0;
}
