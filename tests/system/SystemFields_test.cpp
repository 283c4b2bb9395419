// What the system parameters window computes: positions, scales, fallbacks, the frequency rule, what a save
// stores.
#include "system/SystemFields.h"
#include "system/SystemState.h"

#include "link/Commands.h"
#include "system/Texts.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace drx9 {
namespace {

constexpr int kRateFilter = 7; // behind the parameters' indices, as a field of the tables below
constexpr int kCrystal6 = 8;

SpinnerField& field(SystemFields& fields, int which) {
    return which == kRateFilter ? fields.rateFilter()
           : which == kCrystal6 ? fields.tooling(6)
                                : fields.parameter(which);
}

/// Every number of the record at once.
SystemParameters recordOf(double value) {
    return {value, 0,     0,     1,     value, {value, value, value, value, value, value}, value, value,
            value, value, value, value, 0};
}

TEST(SystemFields, ShowTheRecordsValues) {
    struct Case {
        int field;
        double stored;
        int position, multiplier;
        const char* text;
        bool exact;
    };
    const std::vector<Case> cases{
        {0, 0.29, 29, 100, ".29", true},   // 28.999999999999996 in double precision
        {0, 0.125, 12, 100, ".12", false}, // half to even
        {0, 0, 25, 100, ".25", false},        {1, 0, 50, 10, "5", false},
        {2, 6000, 60, 10, "6", false},        {3, 10000, 0, 1, "0", false},
        {4, -0.5, 10, 1, "10", false},        {5, 9.9997, 1000, 100, "10", false},
        {5, -3, 0, 1000, "0", false},         {6, 99.994, 9999, 100, "99.99", false},
        {kRateFilter, 100, 4, 1, "4", false}, {kCrystal6, 0, 100, 1, "100", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "field " << c.field << ", " << c.stored);
        SystemFields fields;
        fields.fill(recordOf(c.stored));
        const SpinnerField& shown = field(fields, c.field);
        EXPECT_EQ(shown.position(), c.position);
        EXPECT_EQ(shown.multiplier(), c.multiplier);
        EXPECT_EQ(shown.text({}), c.text);
        EXPECT_EQ(shown.isExact(), c.exact);
        EXPECT_FALSE(shown.touched());
    }
}

TEST(SystemFields, TakeTypedNumbers) {
    struct Case {
        int field;
        const char* typed;
        const char* text; ///< null when it is not taken
    };
    for (const Case& c : std::vector<Case>{{0, "1.5", "1,5"},
                                           {0, " ,257", ",26"},
                                           {0, "0", nullptr},
                                           {0, "", nullptr},
                                           {0, "1.000,5", nullptr},
                                           {1, "5,04", "5"},
                                           {6, "9,9996", "10"},
                                           {6, "100", nullptr},
                                           {kCrystal6, "1000", nullptr}}) {
        SystemFields fields;
        fields.fill(recordOf(5.0004));
        SpinnerField& shown = field(fields, c.field);
        NumberLocale comma;
        comma.decimal = ',';
        const std::string before = shown.text(comma);
        EXPECT_EQ(shown.type(c.typed), c.text != nullptr) << c.field << " " << c.typed;
        EXPECT_EQ(shown.touched(), c.text != nullptr) << c.field << " " << c.typed;
        EXPECT_EQ(shown.text(comma), c.text != nullptr ? c.text : before) << c.field << " " << c.typed;
    }
    SystemFields fields;
    fields.fill(recordOf(5.0004));
    EXPECT_TRUE(fields.parameter(0).type("5"));
    EXPECT_EQ(fields.parameter(0).value(), 5) << "what was shown already counts when it is typed";
}

TEST(SystemFields, FrequenciesAreNeverEqual) {
    struct Case {
        double least, most;
        int index;
        const char* typed;
        bool told;
        const char* text; ///< of the moved one
    };
    for (const Case& c : std::vector<Case>{{5, 5.1, 1, "5.2", false, "5.2"}, // may cross
                                           {5, 0.1, 1, ".1", true, ".2"},    // nothing below
                                           {99.9, 5, 2, "99.9", true, "99.8"},
                                           {5, 6, 0, "5", false, "5"}}) {
        SystemFields fields;
        SystemParameters record = recordOf(1);
        record.FreqMin = c.least;
        record.FreqMax = c.most;
        fields.fill(record);
        fields.parameter(c.index).type(c.typed);
        EXPECT_EQ(fields.keepFrequenciesApart(c.index), c.told) << c.least << " " << c.most << " " << c.typed;
        EXPECT_EQ(fields.parameter(c.index).text({}), c.text) << c.least << " " << c.most << " " << c.typed;
    }
}

// Values that no spinner can show go back digit for digit; the record's order on the wire is the
// instrument's.
TEST(SystemFields, StoreOnlyWhatWasTouched) {
    const SystemParameters record{0.2537, 2,     0, 1,   4.5, {94.25, 2, 3, 4, 5, 1000}, 5.05, 6,
                                  0,      20000, 1, 250, 0};
    SystemFields fields;
    fields.fill(record);
    fields.parameter(0).step(0);
    fields.mode(SystemMode::Simulate).choose(true); // as it is shown
    EXPECT_FALSE(fields.touched());
    SystemParameters stored;
    fields.store(stored);
    EXPECT_EQ(systemPayloadB(stored), systemPayloadB(record));
    EXPECT_EQ(systemPayloadC(stored), systemPayloadC(record));

    fields.parameter(SystemFields::kMaxThickness).step(-1);
    fields.parameter(SystemFields::kMinRate).type("7");
    fields.tooling(1).type("95");
    fields.rateFilter().step(1);
    fields.mode(SystemMode::Simulate).choose(false);
    fields.mode(SystemMode::Etch).choose(true);
    EXPECT_TRUE(fields.touched());
    fields.store(stored);
    EXPECT_EQ(systemPayloadB(stored), "B .2537  0  0  1  5  95  2  3  4  5  1000 ");
    EXPECT_EQ(systemPayloadC(stored), "C 5.05  6  7  20000  1  99.98  1 ");
}

TEST(SystemTexts, TheBottomLineTellsTheGravest) {
    SystemState state{true, "Filter takes 0 to 99", "First record not accepted", false, true, "14:03:22"};
    EXPECT_EQ(stateLine(state).text, systemText::kSending);
    state.sending = false;
    EXPECT_EQ(stateLine(state).text, "First record not accepted. Filter takes 0 to 99");
    EXPECT_EQ(stateLine(state).tone, Tone::Alarm);
}

} // namespace
} // namespace drx9
