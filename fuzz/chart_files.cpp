// Any bytes as a chart's configuration and data files.
#include "graphs/ChartFileChecks.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    drx9::checkChartFiles({reinterpret_cast<const char*>(data), size});
    return 0;
}
