#include "films/ErrorsTable.h"

#include "films/FilmText.h"
#include "films/Texts.h"
#include "util/Text.h"

#include <algorithm>
#include <chrono>

namespace drx9 {

namespace {

std::string lines(const std::vector<std::string>& parts) {
    std::string text;
    for (const std::string& part : parts) {
        text += (text.empty() ? "" : "\r\n") + part;
    }
    return text;
}

jet::DateTime daysOf(const LocalTime& time) {
    using namespace std::chrono;
    const year_month_day date{year{time.year}, month{static_cast<unsigned>(time.month)},
                              day{static_cast<unsigned>(time.day)}};
    const auto days = (sys_days{date} - sys_days{year{1899} / 12 / 30}).count();
    return {static_cast<double>(days) + secondsSinceMidnight(time) / 86400.0};
}

} // namespace

std::string ErrorsTable::open(jet::DBEngine& engine, const std::string& path) {
    close();
    try {
        database_ = engine.OpenDatabase(path);
        if (const std::string reason = database_->ReadOnlyReason(); !reason.empty()) {
            jet::rejected(reason);
        }
        const auto& columns = database_->TableDefs(table_).Fields();
        if (std::none_of(columns.begin(), columns.end(),
                         [](const jet::Field& column) { return equalNoCase(column.Name, "ErrorString"); })) {
            jet::rejected("the table has no column \"ErrorString\"");
        }
        records_ = database_->OpenRecordset(table_);
    } catch (const jet::JetError& error) {
        close();
        return filled(filmText::kErrorsNotOpen, {error.what()});
    }
    return {};
}

void ErrorsTable::close() {
    records_.reset();
    database_.reset();
}

std::string ErrorsTable::write(const ErrorReport& report) {
    if (!records_) {
        return filled(filmText::kErrorsNoRecordset, {table_});
    }
    records_->AddNew();
    for (const jet::Field& column : database_->TableDefs(table_).Fields()) {
        statements_.run([&] { set(column, report); });
    }
    records_->Update();
    return {};
}

void ErrorsTable::set(const jet::Field& column, const ErrorReport& report) {
    const auto is = [&](const char* name) { return equalNoCase(column.Name, name); };
    const auto text = [&](const std::string& value) {
        return column.Type == jet::ColumnType::Text ? firstCharacters(value, column.Size) : value;
    };
    if (is("ErrorDate")) {
        records_->SetValue(column.Name, daysOf(report.ErrorDate));
    } else if (is("ErrorString")) {
        records_->SetValue(column.Name, text(report.ErrorString));
    } else if (is("ErrorNumber")) {
        records_->SetValue(column.Name, std::int64_t{report.ErrorNumber});
    } else if (is("ErrorLine")) {
        records_->SetValue(column.Name, std::int64_t{report.ErrorLine});
    } else if (is("ErrorProc")) {
        records_->SetValue(column.Name, text(report.ErrorProc));
    } else if (is("CallStack")) {
        records_->SetValue(column.Name, text(lines(report.CallStack)));
    } else if (is("AdditionalInfo")) {
        records_->SetValue(column.Name, text(lines(report.AdditionalInfo)));
    }
}

void ErrorsTable::clear() {
    if (!records_) {
        return;
    }
    records_->Requery();
    for (records_->MoveFirst(); !records_->Eof(); records_->MoveNext()) {
        records_->Delete();
    }
}

} // namespace drx9
