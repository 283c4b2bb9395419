#pragma once

#include "jet/Database.h"

#include <istream>
#include <string>

namespace drx9::mdbtool {

/// Carries out the operations of a script, one a line, fields separated by tabs:
///   insert TABLE Col=value ...
///   update TABLE KeyCol=value -- Col=value ...
///   delete TABLE KeyCol=value
///   drop-index TABLE NAME
///   add-column TABLE NAME TYPE
/// All of them are one commit. Values are escaped as the tables print them; "Col=" is an empty text, "Col" a
/// null.
///
/// Returns an empty text, or "line N: reason" with nothing changed; or why the commit failed, beginning with
/// the file's name.
std::string applyScript(jet::Database& database, std::istream& script);

} // namespace drx9::mdbtool
