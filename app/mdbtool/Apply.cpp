#include "Apply.h"

#include "TextForm.h"

#include <algorithm>
#include <charconv>

namespace drx9::mdbtool {

namespace {

using namespace jet;

using Words = std::vector<std::string>;

Words splitAtTabs(std::string_view line) {
    Words words;
    for (std::size_t start = 0; start <= line.size();) {
        const std::size_t end = std::min(line.find('\t', start), line.size());
        words.push_back(unescaped(line.substr(start, end - start)));
        start = end + 1;
    }
    return words;
}

/// "Col=value", or "Col" for null. A column's name may hold a "=" itself.
Assignment parseAssignment(const Table& table, const std::string& word) {
    const Definition& definition = table.definition();
    if (const auto position = definition.find(word)) {
        return {*position, Null{}};
    }
    for (auto equals = word.find('='); equals != std::string::npos; equals = word.find('=', equals + 1)) {
        if (const auto position = definition.find(word.substr(0, equals))) {
            return {*position, parseValue(definition.columns[*position], word.substr(equals + 1))};
        }
    }
    rejected("there is no column \"" + word.substr(0, word.find('=')) + "\"");
}

std::vector<Assignment> parseAssignments(const Table& table, Words::const_iterator from,
                                         Words::const_iterator to) {
    std::vector<Assignment> values;
    for (; from != to; ++from) {
        Assignment value = parseAssignment(table, *from);
        if (std::any_of(values.begin(), values.end(),
                        [&](const Assignment& each) { return each.first == value.first; })) {
            rejected("the column \"" + table.definition().columns[value.first].name + "\" is given twice");
        }
        values.push_back(std::move(value));
    }
    return values;
}

/// The rows whose key column has the value; all of them are found before the first one is changed.
std::vector<RowId> rowsWith(const Table& table, const Assignment& key) {
    const Filter filter(table, {{table.definition().columns[key.first].name, key.second}});
    std::vector<RowId> rows;
    table.scan([&](RowId id, const RowReader& row) {
        if (filter.matches(Record(table.store(), table.definition(), row.fields()))) {
            rows.push_back(id);
        }
    });
    return rows;
}

void requireWords(const Words& words, std::size_t least, std::size_t most, const char* form) {
    if (words.size() < least || words.size() > most) {
        rejected(std::string("the operation has the form: ") + form);
    }
}

constexpr std::size_t kAny = static_cast<std::size_t>(-1);

void insertRow(Database& database, const Words& words) {
    requireWords(words, 2, kAny, "insert TABLE Col=value ...");
    database.shared().changed(words[1], [&](Table& table) {
        table.insert(parseAssignments(table, words.begin() + 2, words.end()));
    });
}

void updateRows(Database& database, const Words& words) {
    constexpr const char* kForm = "update TABLE KeyCol=value -- Col=value ...";
    requireWords(words, 5, kAny, kForm);
    if (words[3] != "--") {
        rejected(std::string("the operation has the form: ") + kForm);
    }
    database.shared().changed(words[1], [&](Table& table) {
        const auto values = parseAssignments(table, words.begin() + 4, words.end());
        for (const RowId row : rowsWith(table, parseAssignment(table, words[2]))) {
            table.update(row, values);
        }
    });
}

void deleteRows(Database& database, const Words& words) {
    requireWords(words, 3, 3, "delete TABLE KeyCol=value");
    database.shared().changed(words[1], [&](Table& table) {
        for (const RowId row : rowsWith(table, parseAssignment(table, words[2]))) {
            table.erase(row);
        }
    });
}

void dropIndexOf(Database& database, const Words& words) {
    requireWords(words, 3, 3, "drop-index TABLE NAME");
    database.shared().changed(
        words[1], [&](Table& table) { dropIndex(table.store(), table.definition().page(), words[2]); });
}

ColumnSpec parseColumn(const std::string& name, std::string type) {
    std::transform(type.begin(), type.end(), type.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; });
    constexpr std::pair<std::string_view, ColumnType> kTypes[] = {
        {"boolean", ColumnType::Boolean},   {"byte", ColumnType::Byte},
        {"integer", ColumnType::Integer},   {"long", ColumnType::Long},
        {"currency", ColumnType::Currency}, {"single", ColumnType::Single},
        {"double", ColumnType::Double},     {"date", ColumnType::Date},
        {"memo", ColumnType::Memo}};
    ColumnSpec spec;
    spec.name = name;
    if (type.substr(0, 5) == "text(" && type.back() == ')') {
        const char* end = type.data() + type.size() - 1;
        const auto result = std::from_chars(type.data() + 5, end, spec.size);
        spec.type = ColumnType::Text;
        if (result.ec == std::errc() && result.ptr == end) {
            return spec;
        }
    }
    const auto known = std::find_if(std::begin(kTypes), std::end(kTypes),
                                    [&](const auto& each) { return each.first == type; });
    if (known == std::end(kTypes)) {
        rejected("there is no column type \"" + type + "\"");
    }
    spec.type = known->second;
    return spec;
}

void addColumnTo(Database& database, const Words& words) {
    requireWords(words, 4, 4, "add-column TABLE NAME TYPE");
    database.shared().changed(words[1], [&](Table& table) {
        addColumn(table.store(), table.definition().page(), parseColumn(words[2], words[3]));
    });
}

void applyLine(Database& database, const std::string& line) {
    const Words words = splitAtTabs(line);
    constexpr std::pair<std::string_view, void (*)(Database&, const Words&)> kOperations[] = {
        {"insert", insertRow},
        {"update", updateRows},
        {"delete", deleteRows},
        {"drop-index", dropIndexOf},
        {"add-column", addColumnTo}};
    for (const auto& [name, operation] : kOperations) {
        if (words.front() == name) {
            operation(database, words);
            return;
        }
    }
    rejected("there is no operation \"" + words.front() + "\"");
}

} // namespace

std::string applyScript(Database& database, std::istream& script) {
    database.BeginTrans();
    std::size_t number = 0;
    for (std::string line; std::getline(script, line);) {
        ++number;
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        if (line.empty()) {
            continue;
        }
        try {
            applyLine(database, line);
        } catch (const JetError& error) {
            database.Rollback();
            return "line " + std::to_string(number) + ": " + error.reason();
        }
    }
    try {
        database.CommitTrans();
    } catch (const JetError& error) {
        return error.what();
    }
    return {};
}

} // namespace drx9::mdbtool
