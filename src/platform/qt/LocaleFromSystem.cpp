#include "platform/qt/LocaleFromSystem.h"

#include <algorithm>

namespace drx9 {

namespace {

char groupFor(char decimal, const QString& separator) {
    if (decimal == '.') {
        return ',';
    }
    const QChar mark = separator.isEmpty() ? QChar('.') : separator.front();
    if (mark.isSpace()) {
        return ' ';
    }
    return mark == QChar('\'') || mark == QChar(0x2019) ? '\'' : '.';
}

/// Turns a run of pattern letters into one that every reader of the file understands.
QString plainField(QChar letter, qsizetype count) {
    if (letter == 'y') {
        return "yyyy";
    }
    return QString(std::min<qsizetype>(count, 2), letter);
}

/// The pattern without quoted words, marks of writing direction, eras and day names.
std::string plainDate(const QString& pattern) {
    QString plain;
    bool quoted = false;
    for (qsizetype i = 0; i < pattern.size();) {
        const QChar c = pattern[i];
        qsizetype run = 1;
        while (i + run < pattern.size() && pattern[i + run] == c) {
            ++run;
        }
        i += run;
        if (c == '\'') {
            quoted = quoted != (run % 2 == 1);
        } else if (!quoted && (c == 'y' || c == 'M' || (c == 'd' && run <= 2))) {
            plain += plainField(c, run);
        } else if (!quoted && c.unicode() < 128 && !c.isLetter()) {
            plain += QString(run, c);
        }
    }
    while (!plain.isEmpty() && !plain.front().isLetter()) {
        plain.remove(0, 1);
    }
    qsizetype end = plain.size();
    while (end > 0 && !plain[end - 1].isLetter()) {
        --end;
    }
    // A point right behind the last field belongs to it.
    plain.truncate(plain.indexOf('.', end) == end ? end + 1 : end);
    return plain.toStdString();
}

} // namespace

NumberLocale numberLocaleOf(const QLocale& locale) {
    NumberLocale result;
    result.decimal = locale.decimalPoint() == "," ? ',' : '.';
    result.group = groupFor(result.decimal, locale.groupSeparator());
    const QString pattern = locale.dateFormat(QLocale::ShortFormat);
    // Asked by its pattern, not its name: the parts of the system's locale can be set one by one.
    if (pattern != QLocale::c().dateFormat(QLocale::ShortFormat)) {
        result.shortDate = plainDate(pattern);
    }
    return result;
}

NumberLocale localeFromSystem() {
    return numberLocaleOf(QLocale::system());
}

} // namespace drx9
