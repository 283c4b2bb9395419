#include "JetTestSupport.h"
#include "jet/SortKey.h"

namespace drx9::jet {
namespace {

const TextCodec kText3(Generation::Jet3, 1252);
const TextCodec kText1251(Generation::Jet3, 1251);
const TextCodec kText936(Generation::Jet3, 936);
const TextCodec kText4(Generation::Jet4, 1252);
const std::string kCompressed = "\xFF\xFE";

std::string hex(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        char pair[4];
        std::snprintf(pair, sizeof pair, "%02X", static_cast<unsigned>(static_cast<unsigned char>(byte)));
        text += (text.empty() ? "" : " ") + std::string(pair);
    }
    return text;
}

TEST(TextCodec, ReadsAndWritesStoredTexts) {
    // Stored bytes, their text, and whether it is written back so (compressed).
    const std::tuple<const TextCodec&, std::string, const char*, bool> cases[] = {
        {kText3, "Ren\xE9 \x80", "René €", true},
        {kText3, "", "", true},
        {kText1251, "\xC0\xE1", "Аб", true},
        {kText936, "a\xC4", "aÄ", false}, // not known: read as 1252, refused on writing
        {kText4, kCompressed + "abc\xE9", "abcé", true},
        {kText4, std::string("a\0b\0", 4), "ab", true},
        {kText4, kCompressed + std::string("ab\0\x3A\x04\x3B\x04\0c", 9), "abклc", false},
        {kText4, std::string("\x3D\xD8\x00\xDE", 4), "😀", true},
        {kText4, std::string("\x3D\xD8x\0", 4), "\xEF\xBF\xBDx", false}, // half a pair
        {kText4, std::string("a\0b", 3), "a", false},                    // half a character
    };
    for (const auto& [codec, stored, utf8, writesBack] : cases) {
        EXPECT_EQ(codec.decode(stored), utf8);
        if (writesBack) {
            EXPECT_EQ(hex(codec.encode(utf8, true)), hex(stored));
        }
    }
    EXPECT_EQ(failure([] { (void)kText3.encode("Ω", false); }),
              "the file's code page 1252 has no character U+03A9");
    EXPECT_NE(failure([] { (void)kText936.encode("Ä", false); }), "");
    EXPECT_EQ(toUtf8(toUtf16("a\xC3(\xF0\x9F\x98")), "a\xEF\xBF\xBD(\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(SortKey, IsWhatTheEngineStores) {
    // A text, whether its order descends, and its key without the start byte.
    const std::tuple<const TextCodec&, const char*, bool, const char*> cases[] = {
        {kText4, "Ab", false, "4A 4C 01 00"},
        {kText4, "aB  ", false, "4A 4C 01 00"},
        {kText4, "Co-op", false, "4D 64 64 66 01 01 01 01 80 0F 06 82 00"},
        {kText4, "O'Hara 7", false, "64 57 4A 69 4A 07 44 01 01 01 01 80 0B 06 80 00"},
        {kText4, "", false, "01 00"},
        {kText4, "   ", false, "01 00"},
        {kText4, "México", false, "60 51 75 59 4D 64 01 02 0E 00"},
        {kText4, "Ab", true, "B5 B3 FE FF 00"},
        {kText4, "æ_", false, "4A 51 2B 03 01 00"},
        {kText3, "Co-op", false, "62 72 1E 72 73 00"},
        {kText3, "René", false, "75 66 70 66 02 24 00"},
        {kText3, "ÀB", false, "60 61 03 00"},
        {kText3, "ab", true, "9F 9E FF"},
    };
    for (const auto& [codec, text, descending, key] : cases) {
        EXPECT_EQ(hex(textSortKey(codec, codec.encode(text, false), descending)), key) << text;
    }
    EXPECT_NE(failure([] {
                  textSortKey(kText4, kText4.encode("aΩ", false), false);
              }).find("U+03A9 has no known sort weight"),
              std::string::npos);
    EXPECT_TRUE(sameText(kText4, kText4.encode("Gold ", false), kText4.encode("gOLD", true)));
    EXPECT_FALSE(sameText(kText4, kText4.encode("Gold", false), kText4.encode("Golde", false)));
    EXPECT_TRUE(sameText(kText4, kText4.encode("Ωa ", false), kText4.encode("ΩA", false)));
}

TEST(IndexKey, OrdersValuesByTheirBytes) {
    const auto whole = [](std::int64_t value) { return Value(value); };
    Guid guid;
    guid.bytes = {0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66,
                  0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF};
    // Values in ascending order, and the last one's key.
    const std::tuple<ColumnType, std::vector<Value>, const char*> cases[] = {
        {ColumnType::Byte, {whole(0), whole(200)}, "7F C8"},
        {ColumnType::Integer, {whole(-32768), whole(-1), whole(0), whole(7)}, "7F 80 07"},
        {ColumnType::Long, {whole(-5), whole(11)}, "7F 80 00 00 0B"},
        {ColumnType::Currency, {Currency{-1}, Currency{1}}, "7F 80 00 00 00 00 00 00 01"},
        {ColumnType::Single, {-2.5F, 0.0F, 1.0F}, "7F BF 80 00 00"},
        {ColumnType::Double, {-1e300, -2.5, 0.0, 1.0}, "7F BF F0 00 00 00 00 00 00"},
        {ColumnType::Date, {DateTime{-1.5}, DateTime{0}}, "7F 80 00 00 00 00 00 00 00"},
        {ColumnType::Guid, {Guid{}, guid}, "7F 00 11 22 33 44 55 66 77 09 88 99 AA BB CC DD EE FF 08"},
        {ColumnType::Binary,
         {Binary{"ab"}, Binary{"abcdefghi"}},
         "7F 61 62 63 64 65 66 67 68 09 69 00 00 00 00 00 00 00 01"},
    };
    for (const auto& [type, values, lastKey] : cases) {
        Column column;
        column.type = type;
        column.length = 100;
        const auto keyOf = [&](const std::optional<Value>& value, bool ascending) {
            IndexKey key;
            addKeyColumn(key, kText4, column, ascending,
                         value ? std::optional(encodeValue(kText4, column, *value)) : std::nullopt);
            return key.bytes;
        };
        for (std::size_t i = 1; i < values.size(); ++i) {
            EXPECT_LT(keyOf(values[i - 1], true), keyOf(values[i], true)) << lastKey;
            if (type != ColumnType::Binary) {
                EXPECT_GT(keyOf(values[i - 1], false), keyOf(values[i], false)) << lastKey;
            }
        }
        EXPECT_EQ(hex(keyOf(values.back(), true)), lastKey);
        EXPECT_EQ(keyOf(std::nullopt, true) + keyOf(std::nullopt, false), std::string("\0\xFF", 2));
    }
}

TEST(Values, AreRefusedOutsideTheirColumn) {
    // Why the value is refused; "" where it is taken, and read back the same.
    const std::tuple<ColumnType, Value, std::string> cases[] = {
        {ColumnType::Byte, std::int64_t{-1}, "out of range"},
        {ColumnType::Integer, std::int64_t{32768}, "out of range"},
        {ColumnType::Long, std::int64_t{-2147483648LL}, ""},
        {ColumnType::Single, 1e39, "out of range"},
        {ColumnType::Text, 5.0, "does not fit the type"},
        {ColumnType::Numeric, Numeric{"-12.50"}, ""},
        {ColumnType::Numeric, Numeric{"79228162514264337593543950336.00"}, "more digits"},
        {ColumnType::Numeric, Numeric{"1.005"}, "more decimals"},
    };
    for (const auto& [type, value, reason] : cases) {
        Column column;
        column.type = type;
        column.length = 10;
        column.precision = 28;
        column.scale = 2;
        std::string bytes;
        const Value& stored = value;
        const auto message = failure([&] { bytes = encodeValue(kText4, column, stored); });
        EXPECT_TRUE(message.empty() == reason.empty() && message.find(reason) != std::string::npos)
            << message;
        EXPECT_TRUE(!message.empty() || decodeValue(kText4, column, bytes) == value);
    }
    EXPECT_EQ(numericDigits(numericBytes("340282366920938463463374607431768211455", 39, 0), 0),
              "340282366920938463463374607431768211455");
}

std::string printed(const Value& value) {
    const auto* const text = std::get_if<std::string>(&value);
    return text != nullptr ? "'" + *text + "'" : std::to_string(std::get<double>(value));
}

TEST(Query, IsReadAsJetReadsIt) {
    // What a query is read as; "" where it is refused.
    const std::pair<const char*, std::string> cases[] = {
        {"SELECT * From Material WHERE Material ='Gold'", "Material: Material='Gold'"},
        {"SELECT * FROM Material WHERE Density=2.7AND ZFactor=1.08",
         "Material: Density=2.700000 ZFactor=1.080000"},
        {"select*from [My Table]where[a b]=-1e3;", "My Table: a b=-1000.000000"},
        {"SELECT * FROM Film WHERE FilmName='O''Hara'", "Film: FilmName='O'Hara'"},
        {"SELECT * FROM Film WHERE FilmName=\"it's\"", "Film: FilmName='it's'"},
        {"SELECT * FROM Film", "Film:"},
        {"DROP INDEX PRIMARYKEY ON FILM", "drop PRIMARYKEY on FILM"},
        {"SELECT * FROM Film WHERE FilmName='O'Hara'", ""},
        {"SELECT * FROM Material WHERE Density=2,7AND ZFactor=1", ""},
        {"SELECT * FROM Film WHERE FilmName='x", ""},
        {"SELECT * FROM Film WHERE FilmNum>1", ""},
        {"DROP TABLE Film", ""},
        {"", ""},
    };
    for (const auto& [text, expected] : cases) {
        std::string parsed;
        const char* const given = text;
        const auto message = failure([&] {
            const Query query = parseQuery(given);
            parsed = query.kind == Query::Kind::DropIndex ? "drop " + query.index + " on " + query.table
                                                          : query.table + ":";
            for (const auto& criterion : query.criteria) {
                parsed += " " + criterion.column + "=" + printed(criterion.value);
            }
        });
        EXPECT_EQ(parsed, expected) << text;
        EXPECT_EQ(message.empty(), !expected.empty()) << message;
    }
}

} // namespace
} // namespace drx9::jet
