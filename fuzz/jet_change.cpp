#include "JetMutator.h"
#include "jet/DatabaseChecks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    drx9::fuzz::changeAndCheck({reinterpret_cast<const char*>(data), size});
    return 0;
}
