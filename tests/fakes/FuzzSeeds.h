#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace drx9 {

inline std::string bytesOf(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// Gives each seed of a fuzz target to the check: among them is every input that once did harm.
template<class Check>
void replaySeeds(const char* target, Check check) {
    int seeds = 0;
    for (const auto& entry :
         std::filesystem::directory_iterator(DRX9_SOURCE_DIR "/fuzz/corpus/" + std::string(target))) {
        SCOPED_TRACE(entry.path().string());
        check(bytesOf(entry.path()));
        ++seeds;
    }
    EXPECT_GT(seeds, 0) << target;
}

} // namespace drx9
