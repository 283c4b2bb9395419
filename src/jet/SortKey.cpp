#include "jet/SortKey.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>

namespace drx9::jet {

namespace {

constexpr std::size_t kKeyedCharacters = 255; ///< the rest of a text does not count in an index
constexpr std::size_t kAllCharacters = std::string_view::npos;

// ---- Weights of one character ----

/// Up to two weights ("AE" for one letter), each of one or two bytes, with the accent of the first.
struct Weight {
    std::array<std::string_view, 2> parts{};
    std::uint8_t accent = 0; ///< 0 = none
    std::uint8_t hidden = 0; ///< no weight; this code in the hidden section (Jet 4)
    bool known = false;
};

using Weights = std::array<Weight, 256>;

/// A run of characters (code points in Jet 4, code page 1252 bytes in Jet 3), each with `width` bytes of
/// weight.
struct Run {
    std::string_view characters;
    std::string_view weights;
    std::size_t width = 1;
};

/// Letters made of a base letter and an accent: characters and accents side by side.
struct Accented {
    char base;
    std::string_view characters;
    std::string_view accents;
};

/// One character that weighs as two letters.
struct Pair {
    std::string_view characters;
    std::string_view letters;
};

constexpr std::size_t index(char c) {
    return static_cast<unsigned char>(c);
}

constexpr void addRuns(Weights& table, std::initializer_list<Run> runs) {
    for (const auto& run : runs) {
        for (std::size_t i = 0; i < run.characters.size(); ++i) {
            auto& weight = table[index(run.characters[i])];
            weight.parts[0] = run.weights.substr(i * run.width, run.width);
            weight.known = true;
        }
    }
}

constexpr void addLowerCase(Weights& table) {
    for (std::size_t c = 'A'; c <= 'Z'; ++c) {
        table[c + 0x20] = table[c];
    }
}

constexpr void addAccented(Weights& table, std::initializer_list<Accented> letters) {
    for (const auto& letter : letters) {
        for (std::size_t i = 0; i < letter.characters.size(); ++i) {
            auto& weight = table[index(letter.characters[i])];
            weight = table[index(letter.base)];
            weight.accent = static_cast<std::uint8_t>(letter.accents[i % letter.accents.size()]);
        }
    }
}

constexpr void addPairs(Weights& table, std::initializer_list<Pair> pairs) {
    for (const auto& pair : pairs) {
        for (const char c : pair.characters) {
            auto& weight = table[index(c)];
            weight.parts = {table[index(pair.letters[0])].parts[0], table[index(pair.letters[1])].parts[0]};
            weight.known = true;
        }
    }
}

constexpr void addHidden(Weights& table, std::size_t first, std::size_t last, std::size_t code) {
    for (std::size_t c = first; c <= last; ++c) {
        table[c].hidden = static_cast<std::uint8_t>(code + c - first);
        table[c].known = true;
    }
}

constexpr std::string_view kCapitals = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::string_view kDigits = "0123456789";

constexpr Weights jet4Weights() {
    Weights table{};
    addRuns(
        table,
        {{" !\"#$%&()*+,./", "\x07\x09\x0A\x0C\x0E\x10\x12\x14\x16\x18\x2C\x1A\x1C\x1E"},
         {kDigits, "\x36\x38\x3A\x3C\x3E\x40\x42\x44\x46\x48"},
         {":;<=>?@[\\]", "\x20\x22\x2E\x30\x32\x24\x26\x27\x29\x2A"},
         {"^_`{|}~", "\x2B\x02\x2B\x03\x2B\x07\x2B\x09\x2B\x0B\x2B\x0D\x2B\x0F", 2},
         {kCapitals, "\x4A\x4C\x4D\x4F\x51\x53\x55\x57\x59\x5B\x5C\x5E\x60"
                     "\x62\x64\x66\x68\x69\x6B\x6D\x6F\x71\x73\x75\x76\x78"},
         {"\t\n\v\f\r\xA0", "\x08\x03\x08\x04\x08\x05\x08\x06\x08\x07\x08\x02", 2},
         {"\xA1\xA6\xA8\xAF\xB4\xB8\xBF", "\x2B\x10\x2B\x11\x2B\x12\x2B\x13\x2B\x14\x2B\x15\x2B\x16", 2},
         {"\xA2\xA3\xA4\xA5\xA7\xA9\xAC\xAE\xB0\xB5\xB6\xB7",
          "\x34\xA6\x34\xA7\x34\xA8\x34\xA9\x34\xAA\x34\xAB\x34\xAC\x34\xAD\x34\xAE\x34\xAF\x34\xB0\x34\xB1",
          2},
         {"\xB1\xAB\xBB\xD7\xF7", "\x33\x04\x33\x05\x33\x07\x33\x09\x33\x0A", 2},
         {"\xBC\xBD\xBE", "\x37\x12\x37\x16\x37\x1A", 2},
         {"\xB9\xB2\xB3", "\x38\x3A\x3C"}});
    addLowerCase(table);
    addAccented(table, {{'A', "\xAA", "\x03"},
                        {'O', "\xBA", "\x03"},
                        {'A', "\xC0\xC1\xC2\xC3\xC4\xC5\xE0\xE1\xE2\xE3\xE4\xE5", "\x0F\x0E\x12\x19\x13\x1A"},
                        {'C', "\xC7\xE7", "\x1C"},
                        {'E', "\xC8\xC9\xCA\xCB\xE8\xE9\xEA\xEB", "\x0F\x0E\x12\x13"},
                        {'I', "\xCC\xCD\xCE\xCF\xEC\xED\xEE\xEF", "\x0F\x0E\x12\x13"},
                        {'D', "\xD0\xF0", "\x68"},
                        {'N', "\xD1\xF1", "\x19"},
                        {'O', "\xD2\xD3\xD4\xD5\xD6\xF2\xF3\xF4\xF5\xF6", "\x0F\x0E\x12\x19\x13"},
                        {'O', "\xD8\xF8", "\x21"},
                        {'U', "\xD9\xDA\xDB\xDC\xF9\xFA\xFB\xFC", "\x0F\x0E\x12\x13"},
                        {'Y', "\xDD\xFD", "\x0E"},
                        {'Y', "\xFF", "\x13"}});
    addPairs(table, {{"\xC6\xE6", "AE"}, {"\xDE\xFE", "TH"}, {"\xDF", "SS"}});
    addHidden(table, 0x01, 0x08, 0x03);
    addHidden(table, 0x0E, 0x1F, 0x0B);
    addHidden(table, 0x7F, 0x9F, 0x1D);
    addHidden(table, 0x27, 0x27, 0x80);
    addHidden(table, 0x2D, 0x2D, 0x82);
    addHidden(table, 0xAD, 0xAD, 0x83);
    table[0].known = true; // left out of the key altogether
    return table;
}

constexpr std::string_view kJet3Control =
    "\x00\x01\x02\x03\x04\x05\x06\x07\x08\x0A\x0B\x0C\x0D\x0E\x0F\x10\x11\x12\x13\x14"
    "\x15\x16\x17\x18\x19\x1A\x1B\x1C\x1D\x1E\x1F\x7F\x80\x81\x8D\x8E\x8F\x90\x9D\x9E"sv;

constexpr Weights jet3Weights() {
    Weights table{};
    addRuns(table,
            {{" !\"#$%&'()*+,-./", "\x11\x12\x13\x14\x15\x16\x17\x18\x19\x1A\x1B\x1C\x1D\x1E\x1F\x20"},
             {kDigits, "\x56\x57\x58\x59\x5A\x5B\x5C\x5D\x5E\x5F"},
             {":;<=>?@[\\]^_`{|}~", "\x21\x22\x23\x24\x25\x26\x27\x28\x29\x2A\x2B\x2C\x2D\x2E\x2F\x30\x31"},
             {kCapitals, "\x60\x61\x62\x64\x66\x67\x68\x69\x6A\x6B\x6C\x6D\x6F"
                         "\x70\x72\x73\x74\x75\x76\x77\x78\x7A\x7B\x7C\x7D\x7E"},
             {"\xD0\xF0\xD8\xF8\xDE\xFE", "\x65\x65\x81\x81\x7F\x7F"},
             {"\t\xA0\xAD\x96\x97\xAB\xBB\x84\x93\x94", "\x11\x11\x1E\x1E\x1E\x13\x13\x13\x13\x13"},
             {"\x82\x8B\x91\x92\x9B\xB9\xB2\xB3", "\x18\x18\x18\x18\x18\x57\x58\x59"},
             {"\x83\x85\x86\x87\x88\x89\x95\x98\x99", "\x32\x33\x34\x35\x36\x37\x38\x39\x3A"},
             {"\xA1\xA2\xA3\xA4\xA5\xA6\xA7\xA8\xA9\xAA", "\x3B\x3C\x3D\x3E\x3F\x40\x41\x42\x43\x44"},
             {"\xAC\xAE\xAF\xB0\xB1\xB4\xB5\xB6\xB7\xB8", "\x45\x46\x47\x48\x49\x4A\x4B\x4C\x4D\x4E"},
             {"\xBA\xBC\xBD\xBE\xBF\xD7\xF7", "\x4F\x50\x51\x52\x53\x54\x55"}});
    for (const char c : kJet3Control) {
        addRuns(table, {{std::string_view(&c, 1), "\x10"}});
    }
    addLowerCase(table);
    addAccented(table, {{'A', "\xC0\xC1\xC2\xC3\xC4\xC5\xE0\xE1\xE2\xE3\xE4\xE5", "\x03\x04\x05\x07\x06\x08"},
                        {'E', "\xC8\xC9\xCA\xCB\xE8\xE9\xEA\xEB", "\x03\x04\x05\x06"},
                        {'I', "\xCC\xCD\xCE\xCF\xEC\xED\xEE\xEF", "\x03\x04\x05\x06"},
                        {'U', "\xD9\xDA\xDB\xDC\xF9\xFA\xFB\xFC", "\x03\x04\x05\x06"},
                        {'O', "\xD2\xD3\xD4\xD5\xD6\xF2\xF3\xF4\xF5\xF6", "\x03\x04\x05\x07\x06"},
                        {'C', "\xC7\xE7", "\x09"},
                        {'N', "\xD1\xF1", "\x07"},
                        {'Y', "\xDD\xFD", "\x04"},
                        {'Y', "\xFF\x9F", "\x06"},
                        {'S', "\x8A\x9A", "\x0A"}});
    addPairs(table, {{"\xC6\xE6", "AE"}, {"\x8C\x9C", "OE"}, {"\xDF", "SS"}});
    return table;
}

constexpr Weights kJet4Weights = jet4Weights();
constexpr Weights kJet3Weights = jet3Weights();

/// Weights of the letters that can carry an accent in Jet 3, where only these count in the accent section.
constexpr std::string_view kJet3Accentable = "\x60\x62\x66\x6A\x70\x72\x76\x78\x7D";

[[noreturn]] void noWeight(const TextCodec& codec, std::string_view stored, char16_t c) {
    char code[16];
    std::snprintf(code, sizeof code, "U+%04X", static_cast<unsigned>(c));
    throw JetError(Fault::NoSortKey, "the text \"" + codec.decode(stored) + "\": character " + code +
                                         " has no known sort weight");
}

// ---- The two framings ----

constexpr unsigned kPlainAccent = 2;

/// Jet 4: weights, 01, accents up to the last accented weight, 01 01 01 and the hidden characters, 00.
std::string jet4Key(const TextCodec& codec, std::string_view stored, std::size_t most) {
    auto text = codec.decode16(stored);
    text.resize(std::min(text.size(), most));
    while (!text.empty() && text.back() == ' ') {
        text.pop_back();
    }
    std::string weights;
    std::string accents;
    std::string hidden;
    std::size_t count = 0;
    std::size_t accented = 0;
    for (const char16_t c : text) {
        const Weight& weight = c < kJet4Weights.size() ? kJet4Weights[c] : Weight{};
        if (!weight.known) {
            noWeight(codec, stored, c);
        }
        if (weight.hidden != 0) {
            appendBigEndian(hidden, most > kKeyedCharacters ? 8 : 2, 0x8007 + 4 * count);
            append(hidden, 1, 0x06);
            append(hidden, 1, weight.hidden);
        }
        for (const auto part : weight.parts) {
            if (!part.empty()) {
                weights += part;
                ++count;
                append(accents, 1, weight.accent != 0 ? weight.accent : kPlainAccent);
                accented = weight.accent != 0 ? count : accented;
            }
        }
    }
    std::string key = weights + '\1' + accents.substr(0, accented);
    return key + (hidden.empty() ? "" : "\1\1\1" + hidden) + '\0';
}

/// Jet 3: weights, then 00, or half-bytes: 0, the accents up to the last one, 0, filled to a whole byte.
std::string jet3Key(const TextCodec& codec, std::string_view stored, std::size_t most) {
    std::string_view text = stored.substr(0, most);
    text = text.substr(0, text.find_last_not_of(' ') + 1);
    std::string key;
    std::string accents(1, '\0');
    std::size_t used = 1;
    for (const char c : text) {
        const Weight& weight = kJet3Weights[index(c)];
        if (!weight.known || (codec.codePage() != 1252 && index(c) >= 0x80)) {
            noWeight(codec, stored, codec.decode16(std::string_view(&c, 1)).front());
        }
        for (const auto part : weight.parts) {
            key += part;
            if (!part.empty() && kJet3Accentable.find(part) != std::string_view::npos) {
                append(accents, 1, weight.accent != 0 ? weight.accent : kPlainAccent);
                used = weight.accent != 0 ? accents.size() : used;
            }
        }
    }
    if (used == 1) {
        return key + '\0';
    }
    accents.resize(used);
    accents.append(used % 2 == 0 ? 2 : 1, '\0');
    for (std::size_t i = 0; i < accents.size(); i += 2) {
        append(key, 1, index(accents[i]) << 4 | index(accents[i + 1]));
    }
    return key;
}

void invert(std::string& bytes) {
    for (auto& byte : bytes) {
        byte = static_cast<char>(~byte);
    }
}

std::string withoutCase(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    for (auto& c : text) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 0x20) : c;
    }
    return text;
}

/// The key of the first `most` characters.
std::string keyOf(const TextCodec& codec, std::string_view stored, std::size_t most) {
    return codec.generation() == Generation::Jet4 ? jet4Key(codec, stored, most)
                                                  : jet3Key(codec, stored, most);
}

std::optional<std::string> keyIfKnown(const TextCodec& codec, std::string_view stored) {
    try {
        return keyOf(codec, stored, kAllCharacters);
    } catch (const JetError&) {
        return std::nullopt;
    }
}

} // namespace

std::string textSortKey(const TextCodec& codec, std::string_view stored, bool descending) {
    std::string key = keyOf(codec, stored, kKeyedCharacters);
    if (descending) {
        invert(key);
        key += codec.generation() == Generation::Jet4 ? std::string(1, '\0') : std::string();
    }
    return key;
}

bool sameText(const TextCodec& codec, std::string_view a, std::string_view b) {
    const auto keyA = keyIfKnown(codec, a);
    const auto keyB = keyIfKnown(codec, b);
    if (keyA && keyB) {
        return *keyA == *keyB;
    }
    return withoutCase(codec.decode(a)) == withoutCase(codec.decode(b));
}

} // namespace drx9::jet
