#include "JetTestSupport.h"
#include "jet/SortKey.h"

namespace drx9::jet {
namespace {

const TextCodec kText3(Generation::Jet3, 1252);
const TextCodec kText4(Generation::Jet4, 1252);

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
    struct Case {
        const TextCodec& codec;
        std::string stored;
        const char* utf8;
        bool writesBack; ///< stored is also what is written, compressed
    };
    const Case cases[] = {
        {kText3, "Ren\xE9 \x80", "René €", true},
        {kText3, "", "", true},
        {TextCodec(Generation::Jet3, 1251), "\xC0\xE1", "Аб", true},
        {TextCodec(Generation::Jet3, 936), "a\xC4", "aÄ",
         false}, // not known: read as 1252, refused on writing
        {kText4,
         "\xFF\xFE"
         "abc\xE9",
         "abcé", true},
        {kText4, std::string("a\0b\0", 4), "ab", true},
        {kText4,
         std::string("\xFF\xFE"
                     "ab\0\x3A\x04\x3B\x04\0c",
                     11),
         "abклc", false},
        {kText4, std::string("\x3D\xD8\x00\xDE", 4), "😀", true},
        {kText4, std::string("\x3D\xD8x\0", 4), "\xEF\xBF\xBDx", false}, // half a pair
        {kText4, std::string("a\0b", 3), "a", false},                    // half a character
    };
    for (const auto& each : cases) {
        EXPECT_EQ(each.codec.decode(each.stored), each.utf8);
        if (each.writesBack) {
            EXPECT_EQ(hex(each.codec.encode(each.utf8, true)), hex(each.stored));
        }
    }
    EXPECT_EQ(failure([] { (void)kText3.encode("Ω", false); }),
              "the file's code page 1252 has no character U+03A9");
    EXPECT_NE(failure([] { (void)TextCodec(Generation::Jet3, 936).encode("Ä", false); }), "");
    EXPECT_EQ(toUtf8(toUtf16("a\xC3(\xF0\x9F\x98")), "a\xEF\xBF\xBD(\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(SortKey, IsWhatTheEngineStores) {
    struct Case {
        const TextCodec& codec;
        const char* text;
        bool descending;
        const char* key; ///< without the start byte
    };
    const Case cases[] = {
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
    for (const auto& each : cases) {
        EXPECT_EQ(hex(textSortKey(each.codec, each.codec.encode(each.text, false), each.descending)),
                  each.key)
            << each.text;
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
    struct Case {
        ColumnType type;
        std::vector<Value> ascending;
        const char* lastKey;
    };
    const auto whole = [](std::int64_t value) { return Value(value); };
    Guid guid;
    guid.bytes = {0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66,
                  0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF};
    const Case cases[] = {
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
    for (const auto& each : cases) {
        Column column;
        column.type = each.type;
        column.length = 100;
        const auto keyOf = [&](const std::optional<Value>& value, bool ascending) {
            IndexKey key;
            addKeyColumn(key, kText4, column, ascending,
                         value ? std::optional(encodeValue(kText4, column, *value)) : std::nullopt);
            return key.bytes;
        };
        for (std::size_t i = 1; i < each.ascending.size(); ++i) {
            EXPECT_LT(keyOf(each.ascending[i - 1], true), keyOf(each.ascending[i], true)) << each.lastKey;
            if (each.type != ColumnType::Binary) {
                EXPECT_GT(keyOf(each.ascending[i - 1], false), keyOf(each.ascending[i], false))
                    << each.lastKey;
            }
        }
        EXPECT_EQ(hex(keyOf(each.ascending.back(), true)), each.lastKey);
        EXPECT_EQ(keyOf(std::nullopt, true) + keyOf(std::nullopt, false), std::string("\0\xFF", 2));
    }
}

TEST(Values, AreRefusedOutsideTheirColumn) {
    struct Case {
        ColumnType type;
        Value value;
        const char* failure; ///< "" = taken, and read back the same
    };
    const Case cases[] = {
        {ColumnType::Byte, std::int64_t{255}, ""},
        {ColumnType::Byte, std::int64_t{-1}, "out of range"},
        {ColumnType::Integer, std::int64_t{32768}, "out of range"},
        {ColumnType::Integer, 1e99, "out of range"},
        {ColumnType::Integer, std::string("1"), "does not fit the type"},
        {ColumnType::Long, std::int64_t{-2147483648LL}, ""},
        {ColumnType::Single, 1e39, "out of range"},
        {ColumnType::Text, std::string("123456"), "longer than the column"},
        {ColumnType::Text, std::string("12345"), ""},
        {ColumnType::Text, 5.0, "does not fit the type"},
        {ColumnType::Date, DateTime{-1.25}, ""},
        {ColumnType::Currency, Currency{-12345678901234LL}, ""},
        {ColumnType::Numeric, Numeric{"-12.50"}, ""},
        {ColumnType::Numeric, Numeric{"79228162514264337593543950336.00"}, "more digits"},
        {ColumnType::Numeric, Numeric{"1.005"}, "more decimals"},
    };
    for (const auto& each : cases) {
        Column column;
        column.type = each.type;
        column.length = 10;
        column.precision = 28;
        column.scale = 2;
        std::string bytes;
        const auto message = failure([&] { bytes = encodeValue(kText4, column, each.value); });
        EXPECT_TRUE(*each.failure == '\0' ? message.empty() : message.find(each.failure) != std::string::npos)
            << message;
        if (message.empty()) {
            EXPECT_EQ(decodeValue(kText4, column, bytes), each.value);
        }
    }
    EXPECT_EQ(numericDigits(numericBytes("340282366920938463463374607431768211455", 39, 0), 0),
              "340282366920938463463374607431768211455");
}

std::string printed(const Value& value) {
    const auto* const text = std::get_if<std::string>(&value);
    return text != nullptr ? "'" + *text + "'" : std::to_string(std::get<double>(value));
}

TEST(Query, IsReadAsJetReadsIt) {
    struct Case {
        const char* text;
        const char* parsed; ///< "" = refused
    };
    const Case cases[] = {
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
        {"SELECT * FROM Film WHERE FilmNum=", ""},
        {"SELECT FilmNum FROM Film", ""},
        {"SELECT * FROM Film WHERE FilmNum>1", ""},
        {"SELECT * FROM Film ORDER BY FilmNum", ""},
        {"DROP TABLE Film", ""},
        {"DELETE FROM Film", ""},
        {"", ""},
    };
    for (const auto& each : cases) {
        std::string parsed;
        const auto message = failure([&] {
            const Query query = parseQuery(each.text);
            parsed = query.kind == Query::Kind::DropIndex ? "drop " + query.index + " on " + query.table
                                                          : query.table + ":";
            for (const auto& criterion : query.criteria) {
                parsed += " " + criterion.column + "=" + printed(criterion.value);
            }
        });
        EXPECT_EQ(parsed, each.parsed) << each.text;
        EXPECT_EQ(message.empty(), *each.parsed != '\0') << message;
    }
}

} // namespace
} // namespace drx9::jet
