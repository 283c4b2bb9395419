#include "jet/Query.h"

#include "jet/SortKey.h"

#include <algorithm>
#include <charconv>

namespace drx9::jet {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isNameStart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

/// Reads a query text token by token.
class Parser {
public:
    explicit Parser(std::string_view text)
        : text_(text) {}

    Query parse() {
        Query query;
        if (keyword("SELECT")) {
            expect('*');
            require("FROM");
            query.table = name();
            if (keyword("WHERE")) {
                do {
                    query.criteria.push_back(criterion());
                } while (keyword("AND"));
            }
        } else {
            query.kind = Query::Kind::DropIndex;
            require("DROP");
            require("INDEX");
            query.index = name();
            require("ON");
            query.table = name();
        }
        accept(';');
        skipBlanks();
        if (at_ < text_.size()) {
            fail();
        }
        return query;
    }

    /// Takes a word when it is this keyword.
    bool keyword(std::string_view word) {
        skipBlanks();
        const std::size_t end = wordEnd();
        if (!sameName(text_.substr(at_, end - at_), word)) {
            return false;
        }
        at_ = end;
        return true;
    }

private:
    [[noreturn]] void fail() const {
        std::string rest(text_.substr(std::min(at_, text_.size())));
        rejected(rest.empty() ? "the query \"" + std::string(text_) + "\" ends too early"
                              : "the query cannot be understood at \"" + rest + "\"");
    }

    void skipBlanks() {
        while (at_ < text_.size() && isBlank(text_[at_])) {
            ++at_;
        }
    }

    [[nodiscard]] std::size_t wordEnd() const {
        std::size_t end = at_;
        while (end < text_.size() && (isNameStart(text_[end]) || (end > at_ && isDigit(text_[end])))) {
            ++end;
        }
        return end;
    }

    bool accept(char c) {
        skipBlanks();
        if (at_ >= text_.size() || text_[at_] != c) {
            return false;
        }
        ++at_;
        return true;
    }

    void expect(char c) {
        if (!accept(c)) {
            fail();
        }
    }

    void require(std::string_view word) {
        if (!keyword(word)) {
            fail();
        }
    }

    std::string name() {
        skipBlanks();
        std::string result;
        if (accept('[')) {
            const auto end = std::min(text_.find(']', at_), text_.size());
            result = text_.substr(at_, end - at_);
            at_ = end;
            expect(']');
        } else {
            const std::size_t end = wordEnd();
            result = text_.substr(at_, end - at_);
            at_ = end;
        }
        if (result.empty()) {
            fail();
        }
        return result;
    }

    Criterion criterion() {
        Criterion result;
        result.column = name();
        expect('=');
        skipBlanks();
        if (at_ < text_.size() && (text_[at_] == '\'' || text_[at_] == '"')) {
            result.value = quoted(text_[at_]);
        } else {
            result.value = number();
        }
        return result;
    }

    /// A text; the quote that ends it is doubled inside.
    std::string quoted(char quote) {
        std::string value;
        for (++at_; at_ < text_.size(); ++at_) {
            if (text_[at_] == quote) {
                ++at_;
                if (at_ >= text_.size() || text_[at_] != quote) {
                    return value;
                }
            }
            value.push_back(text_[at_]);
        }
        fail();
    }

    double number() {
        const bool negative = accept('-');
        skipBlanks();
        double value = 0;
        const bool starts = at_ < text_.size() && (isDigit(text_[at_]) || text_[at_] == '.');
        const auto result = std::from_chars(text_.data() + at_, text_.data() + text_.size(), value);
        if (!starts || result.ec != std::errc()) {
            fail();
        }
        at_ = static_cast<std::size_t>(result.ptr - text_.data());
        return negative ? -value : value;
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

} // namespace

Query parseQuery(std::string_view text) {
    return Parser(text).parse();
}

bool looksLikeQuery(std::string_view text) {
    return Parser(text).keyword("SELECT") && text.find('*') != std::string_view::npos;
}

Filter::Filter(const Table& table, const std::vector<Criterion>& criteria)
    : text_(table.store().text()) {
    for (const auto& criterion : criteria) {
        Term term{table.definition().position(criterion.column), criterion.value, {}, true};
        const Column& column = table.definition().columns[term.position];
        const auto* text = std::get_if<std::string>(&term.value);
        const bool comparable = isNull(term.value) || (text != nullptr) == column.isText();
        if (!comparable) {
            rejected("the value for the column \"" + column.name + "\" is of another type");
        }
        if (text != nullptr) {
            try {
                term.stored = text_.encode(*text, false);
            } catch (const JetError&) {
                term.encodable = false; // no text of this file can equal it
            }
        }
        terms_.push_back(std::move(term));
    }
}

bool Filter::matches(const Record& record) const {
    return std::all_of(terms_.begin(), terms_.end(), [&](const Term& term) { return holds(term, record); });
}

bool Filter::holds(const Term& term, const Record& record) const {
    if (isNull(term.value) || !record.fields()[term.position]) {
        return isNull(term.value) && !record.fields()[term.position];
    }
    if (std::holds_alternative<std::string>(term.value)) {
        const auto stored = record.stored(term.position);
        return term.encodable && sameText(text_, *stored, term.stored);
    }
    const Value stored = record.value(term.position);
    if (const auto* single = std::get_if<float>(&stored)) {
        // In the column's own precision: a row is found again by the number that was stored in it.
        const auto number = asNumber(term.value);
        return number && *single == static_cast<float>(*number);
    }
    return sameValue(stored, term.value);
}

} // namespace drx9::jet
