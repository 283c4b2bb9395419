#pragma once

#include "jet/Value.h"

#include <string>
#include <string_view>

namespace drx9::mdbtool {

/// Appends a value as the tables print it: numbers in the shortest form that reads back to the same value,
/// dates YYYY-MM-DD HH:MM:SS, bytes in hexadecimal, texts with backslash, tab, CR and LF escaped, null as
/// nothing.
void appendValue(std::string& out, const jet::Value& value);

/// Appends a text with its backslashes, tabs, CR and LF escaped.
void appendEscaped(std::string& out, std::string_view text);
/// Throws JetError(Rejected) for an escape that is not one of these.
std::string unescaped(std::string_view text);

/// A value for the column out of its printed form (already unescaped). Throws JetError(Rejected) when it is
/// none.
jet::Value parseValue(const jet::Column& column, const std::string& text);

/// Days since 1899-12-30 of a time given in seconds since 1970-01-01, both local or both UTC.
jet::DateTime dateOf(std::int64_t secondsSince1970);

} // namespace drx9::mdbtool
