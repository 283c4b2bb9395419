#pragma once

#include "util/NumberLocale.h"

#include <QLocale>

namespace drx9 {

/// How this user's system writes numbers and dates.
NumberLocale localeFromSystem();

/// The same for a given locale. "C" counts as en_US; where "." separates decimals "," groups; a separator
/// that is no single plain character becomes the plain one nearest to it; the date keeps only day, month and
/// year, always with four digits of the year.
NumberLocale numberLocaleOf(const QLocale& locale);

} // namespace drx9
