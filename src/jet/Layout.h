#pragma once

#include "jet/Bytes.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace drx9::jet {

/// The two generations of .mdb files: Access 97, and Access 2000 to 2003.
enum class Generation { Jet3, Jet4 };

enum class PageType : std::uint8_t {
    Header = 0,
    Data = 1,
    Definition = 2,
    IndexNode = 3,
    IndexLeaf = 4,
    MapBits = 5
};

/// Where everything lies: all that tells Jet 3 from Jet 4 but the coding of text and of index keys. Offsets
/// count from the start of the page, of the joined table definition, or of the descriptor they belong to.
struct Layout {
    Generation generation;
    std::size_t pageSize;
    std::uint64_t largestFile;
    std::size_t largestRow; ///< bytes of a whole row

    // Header page; the offsets of what lies under the mask.
    std::size_t maskedSize; ///< bytes from 0x18 on
    std::size_t passwordAt, passwordSize;
    std::size_t sortOrderAt;
    std::size_t buildAt;

    // Data page
    std::size_t slotCountAt, slotsAt;

    // Row: bytes of the column count, and of an entry of the variable table
    std::size_t countWidth, entryWidth;
    bool jumpTable; ///< 1-byte entries need it in rows over 256 bytes

    // Table definition: the fixed head
    std::string_view definitionMark;                        ///< behind the length, if any
    std::size_t rowCountAt, autonumberAt, autonumberStepAt; ///< step: 0 = always 1
    std::size_t tableTypeAt, nextColumnAt, variableColumnsAt, columnsAt, logicalIndexesAt, realIndexesAt;
    std::size_t ownedMapAt, freeMapAt, listsAt;
    std::size_t definitionReserve; ///< bytes kept free behind the definition

    // Column descriptor
    std::size_t columnSize;
    std::size_t columnNumberAt, slotAt, numberAgainAt, languageAt, sortIdAt, codePageAt; ///< 0 = not stored
    std::size_t precisionAt;
    std::size_t flagsAt, extendedFlagsAt, fixedOffsetAt, lengthAt;
    std::string_view columnMark; ///< behind the type
    std::size_t nameLengthWidth;
    std::size_t longestText; ///< bytes

    // Real index: counters and block
    std::size_t countersSize;
    std::size_t realIndexSize;
    std::string_view realIndexMark;
    std::size_t indexColumnsAt, indexMapAt, indexRootAt, indexFlagsAt;
    std::uint8_t indexFlagAlways; ///< set on every index

    // Logical index
    std::size_t logicalIndexSize;
    std::string_view logicalIndexMark;
    std::size_t numberAt, realNumberAt, relationAt, otherIndexAt, otherTableAt, cascadeUpdateAt,
        cascadeDeleteAt, kindAt;

    // Index page
    std::size_t previousAt, nextAt, tailAt, prefixAt, prefixWidth, heightAt, bitmapAt, entriesAt;

    // A fresh usage map record: type, first page, bitmap
    std::size_t mapRecordSize;

    /// Pages that one bitmap page of a large usage map covers.
    [[nodiscard]] constexpr std::size_t pagesPerBitmap() const { return (pageSize - 4) * 8; }
};

using namespace std::string_view_literals;

inline constexpr Layout kJet3 = {
    .generation = Generation::Jet3,
    .pageSize = 2048,
    .largestFile = 1ull << 30,
    .largestRow = 2012,
    .maskedSize = 126,
    .passwordAt = 0x42,
    .passwordSize = 20,
    .sortOrderAt = 0x3A,
    .buildAt = 0x56,
    .slotCountAt = 8,
    .slotsAt = 10,
    .countWidth = 1,
    .entryWidth = 1,
    .jumpTable = true,
    .definitionMark = ""sv,
    .rowCountAt = 12,
    .autonumberAt = 16,
    .autonumberStepAt = 0,
    .tableTypeAt = 20,
    .nextColumnAt = 21,
    .variableColumnsAt = 23,
    .columnsAt = 25,
    .logicalIndexesAt = 27,
    .realIndexesAt = 31,
    .ownedMapAt = 35,
    .freeMapAt = 39,
    .listsAt = 43,
    .definitionReserve = 0,
    .columnSize = 18,
    .columnNumberAt = 1,
    .slotAt = 3,
    .numberAgainAt = 5,
    .languageAt = 9,
    .sortIdAt = 0,
    .codePageAt = 11,
    .precisionAt = 11,
    .flagsAt = 13,
    .extendedFlagsAt = 0,
    .fixedOffsetAt = 14,
    .lengthAt = 16,
    .columnMark = ""sv,
    .nameLengthWidth = 1,
    .longestText = 255,
    .countersSize = 8,
    .realIndexSize = 39,
    .realIndexMark = ""sv,
    .indexColumnsAt = 0,
    .indexMapAt = 30,
    .indexRootAt = 34,
    .indexFlagsAt = 38,
    .indexFlagAlways = 0,
    .logicalIndexSize = 20,
    .logicalIndexMark = ""sv,
    .numberAt = 0,
    .realNumberAt = 4,
    .relationAt = 8,
    .otherIndexAt = 9,
    .otherTableAt = 13,
    .cascadeUpdateAt = 17,
    .cascadeDeleteAt = 18,
    .kindAt = 19,
    .previousAt = 8,
    .nextAt = 12,
    .tailAt = 16,
    .prefixAt = 20,
    .prefixWidth = 1, // its neighbour is the height: read as one number they make every node a prefix of 256
    .heightAt = 21,
    .bitmapAt = 22,
    .entriesAt = 0xF8,
    .mapRecordSize = 133,
};

inline constexpr Layout kJet4 = {
    .generation = Generation::Jet4,
    .pageSize = 4096,
    .largestFile = 2ull << 30,
    .largestRow = 4060,
    .maskedSize = 128,
    .passwordAt = 0x42,
    .passwordSize = 40,
    .sortOrderAt = 0x6E,
    .buildAt = 0x6A,
    .slotCountAt = 12,
    .slotsAt = 14,
    .countWidth = 2,
    .entryWidth = 2,
    .jumpTable = false,
    .definitionMark = "\x59\x06\0\0"sv,
    .rowCountAt = 16,
    .autonumberAt = 20,
    .autonumberStepAt = 24,
    .tableTypeAt = 40,
    .nextColumnAt = 41,
    .variableColumnsAt = 43,
    .columnsAt = 45,
    .logicalIndexesAt = 47,
    .realIndexesAt = 51,
    .ownedMapAt = 55,
    .freeMapAt = 59,
    .listsAt = 63,
    .definitionReserve = 8,
    .columnSize = 25,
    .columnNumberAt = 5,
    .slotAt = 7,
    .numberAgainAt = 9,
    .languageAt = 11,
    .sortIdAt = 13,
    .codePageAt = 0,
    .precisionAt = 11,
    .flagsAt = 15,
    .extendedFlagsAt = 16,
    .fixedOffsetAt = 21,
    .lengthAt = 23,
    .columnMark = "\x59\x06\0\0"sv,
    .nameLengthWidth = 2,
    .longestText = 510,
    .countersSize = 12,
    .realIndexSize = 52,
    .realIndexMark = "\x83\x07\0\0"sv,
    .indexColumnsAt = 4,
    .indexMapAt = 34,
    .indexRootAt = 38,
    .indexFlagsAt = 46,
    .indexFlagAlways = 0x80,
    .logicalIndexSize = 28,
    .logicalIndexMark = "\x59\x06\0\0"sv,
    .numberAt = 4,
    .realNumberAt = 8,
    .relationAt = 12,
    .otherIndexAt = 13,
    .otherTableAt = 17,
    .cascadeUpdateAt = 21,
    .cascadeDeleteAt = 22,
    .kindAt = 23,
    .previousAt = 12,
    .nextAt = 16,
    .tailAt = 20,
    .prefixAt = 24,
    .prefixWidth = 2,
    .heightAt = 26,
    .bitmapAt = 27,
    .entriesAt = 0x1E0,
    .mapRecordSize = 69,
};

constexpr const Layout& layoutOf(Generation generation) {
    return generation == Generation::Jet3 ? kJet3 : kJet4;
}

// The same in both generations.
inline constexpr std::size_t kNextPageAt = 4;         ///< definition page: the chain
inline constexpr std::size_t kOwnerAt = 4;            ///< data and index pages
inline constexpr std::size_t kFreeBytesAt = 2;        ///< data and index pages, Jet 4 definitions
inline constexpr std::size_t kDefinitionLengthAt = 8; ///< joined definition
inline constexpr std::size_t kContinuationAt = 8;     ///< later definition pages: where the text goes on
inline constexpr std::size_t kMapBitsAt = 4;          ///< bitmap page
inline constexpr PageNo kGlobalMapPage = 1;
inline constexpr PageNo kCatalogPage = 2;
inline constexpr std::size_t kMostSlots = 255;    ///< row numbers are one byte
inline constexpr std::size_t kMostColumns = 255;  ///< ever made in one table
inline constexpr std::size_t kMostIndexes = 64;   ///< the format's own limit is 32
inline constexpr std::size_t kIndexColumns = 10;  ///< slots in a real index's block
inline constexpr std::size_t kRowPointerSize = 4; ///< at the end of an index entry
inline constexpr std::size_t kLongestEntry = 510; ///< index entry; beyond it the format stores checksums
inline constexpr std::size_t kSlotOffsetMask = 0x1FFF;

} // namespace drx9::jet
