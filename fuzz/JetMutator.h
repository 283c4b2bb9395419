#pragma once

// Mutations for database files, for the targets that include this: most of them keep the pages whole, as a
// change of length moves all that lies behind it and is refused at the first page.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most,
                                               unsigned seed) {
    constexpr std::size_t kVersionAt = 0x14;
    constexpr std::size_t kWindow = 64;
    std::minstd_rand random(seed);
    const auto below = [&random](std::size_t limit) { return std::size_t{random()} % limit; };
    const std::size_t pageSize = size > kVersionAt && data[kVersionAt] == 0 ? 2048 : 4096;
    const std::size_t pages = size / pageSize;
    const std::size_t kind = below(16);
    if (pages < 2 || kind == 0) {
        return LLVMFuzzerMutate(data, size, most);
    }
    std::uint8_t* page = data + below(pages) * pageSize;
    if (kind == 1) {
        std::memmove(page, data + below(pages) * pageSize, pageSize);
        return size;
    }
    if (kind == 2 && (pages + 1) * pageSize <= most) {
        std::copy_n(page, pageSize, data + pages * pageSize);
        return (pages + 1) * pageSize;
    }
    // The start of a page holds its counts and pointers: every other time there.
    const std::size_t at = below(2) == 0 ? below(kWindow) : below(pageSize - kWindow);
    const std::size_t length = 1 + below(kWindow);
    LLVMFuzzerMutate(page + at, length, length);
    return size;
}
