#pragma once

#include "jet/Table.h"

#include <string>
#include <vector>

namespace drx9::jet {

/// `column` = `value`; Null asks for rows without a value.
struct Criterion {
    std::string column;
    Value value; ///< from a query text: a std::string or a double
};

/// A query text taken apart:
///   SELECT * FROM table [WHERE column = literal {AND column = literal}]
///   DROP INDEX name ON table
/// as Jet reads them: keywords and names without case, names perhaps in [brackets], texts in single or double
/// quotes with the quote doubled inside, numbers with "." and no blank needed behind them ("2.7AND"), a ";"
/// at the end.
struct Query {
    enum class Kind { Select, DropIndex };

    Kind kind = Kind::Select;
    std::string table;
    std::string index; ///< DropIndex
    std::vector<Criterion> criteria;
};

/// Throws JetError(Rejected) for any other text.
Query parseQuery(std::string_view text);
/// True when the text begins like a query rather than being a table's name.
bool looksLikeQuery(std::string_view text);

/// Criteria made ready for one table. Throws JetError(Rejected) for unknown columns and literals of the wrong
/// kind.
class Filter {
public:
    Filter(const Table& table, const std::vector<Criterion>& criteria);

    /// Numbers are compared as numbers, texts as the engine compares them: by sort weights, without case and
    /// trailing blanks. A null equals nothing.
    [[nodiscard]] bool matches(const Record& record) const;

private:
    struct Term {
        std::size_t position;
        Value value;
        std::string stored; ///< a text as the file stores it
        bool encodable = true;
    };
    [[nodiscard]] bool holds(const Term& term, const Record& record) const;

    const TextCodec& text_;
    std::vector<Term> terms_;
};

} // namespace drx9::jet
