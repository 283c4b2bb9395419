#include "jet/IndexKey.h"

#include "jet/SortKey.h"

namespace drx9::jet {

namespace {

constexpr char kNullAscending = '\x00';
constexpr char kNullDescending = '\xFF';
constexpr char kValueAscending = '\x7F';
constexpr char kValueDescending = '\x80';
constexpr char kMoreBlocks = '\x09';
constexpr std::size_t kBlock = 8;

[[noreturn]] void noKey(const std::string& what) {
    throw JetError(Fault::NoSortKey, what);
}

/// The value's bytes, most significant first.
std::string reversed(std::string_view stored, std::size_t width) {
    const auto bytes = Bytes(stored).part(0, width);
    return {bytes.rbegin(), bytes.rend()};
}

void invert(std::string& bytes) {
    for (auto& byte : bytes) {
        byte = static_cast<char>(~byte);
    }
}

void flipTopBit(std::string& bytes) {
    bytes[0] = static_cast<char>(bytes[0] ^ '\x80');
}

std::string signedKey(std::string_view stored, std::size_t width) {
    std::string key = reversed(stored, width);
    flipTopBit(key);
    return key;
}

std::string floatingKey(std::string_view stored, std::size_t width) {
    std::string key = reversed(stored, width);
    const bool negativeZero = key[0] == '\x80' && key.find_first_not_of('\0', 1) == std::string::npos;
    if ((key[0] & '\x80') == 0 || negativeZero) {
        key[0] = static_cast<char>(key[0] | '\x80');
    } else {
        invert(key);
    }
    return key;
}

/// Blocks of eight bytes, each followed by 09, the last by its count of real bytes.
std::string blockKey(std::string_view bytes) {
    std::string key;
    for (std::size_t at = 0; at < bytes.size(); at += kBlock) {
        std::string block(bytes.substr(at, kBlock));
        const bool last = at + kBlock >= bytes.size();
        const char end = last ? static_cast<char>(block.size()) : kMoreBlocks;
        block.resize(kBlock, '\0');
        key += block + end;
    }
    return key;
}

/// In printed order: a dword and two words turned, eight bytes as they are.
std::string guidKey(std::string_view stored, bool ascending) {
    const Bytes bytes(stored);
    std::string key = blockKey(reversed(bytes.part(0, 4), 4) + reversed(bytes.part(4, 2), 2) +
                               reversed(bytes.part(6, 2), 2) + std::string(bytes.part(8, 8)));
    if (!ascending) {
        invert(key);
        key[kBlock] = kMoreBlocks; // the one byte that a descending key leaves alone
    }
    return key;
}

std::string binaryKey(std::string_view stored, bool ascending) {
    if (!ascending || stored.empty()) {
        noKey("an empty or descending binary value");
    }
    return blockKey(stored);
}

/// Value bytes behind the start byte, already inverted for a descending column.
std::string valueKey(const TextCodec& text, const Column& column, bool ascending, std::string_view stored) {
    std::string key;
    switch (column.type) {
    case ColumnType::Byte:
        key = reversed(stored, 1);
        break;
    case ColumnType::Integer:
        key = signedKey(stored, 2);
        break;
    case ColumnType::Long:
        key = signedKey(stored, 4);
        break;
    case ColumnType::Currency:
        key = signedKey(stored, 8);
        break;
    case ColumnType::Single:
        key = floatingKey(stored, 4);
        break;
    case ColumnType::Double:
    case ColumnType::Date:
        key = floatingKey(stored, 8);
        break;
    case ColumnType::Boolean:
        // Jet 4 is reported both with and without the start byte.
        if (text.generation() == Generation::Jet4) {
            noKey("a yes/no value");
        }
        key = std::string(1, stored == std::string_view("\0", 1) ? '\xFF' : '\0');
        break;
    case ColumnType::Text:
    case ColumnType::Memo:
        if (!column.generalOrder) {
            noKey("a text in the sort order of the column \"" + column.name + "\"");
        }
        return textSortKey(text, stored, !ascending);
    case ColumnType::Guid:
        return guidKey(stored, ascending);
    case ColumnType::Binary:
        return binaryKey(stored, ascending);
    default:
        noKey("a value of the type of the column \"" + column.name + "\"");
    }
    if (!ascending) {
        invert(key);
    }
    return key;
}

} // namespace

void addKeyColumn(IndexKey& key, const TextCodec& text, const Column& column, bool ascending,
                  const std::optional<std::string>& stored) {
    if (!stored) {
        key.bytes += ascending ? kNullAscending : kNullDescending;
        key.hasNull = true;
        return;
    }
    key.bytes += ascending ? kValueAscending : kValueDescending;
    key.bytes += valueKey(text, column, ascending, *stored);
    key.allNull = false;
}

} // namespace drx9::jet
