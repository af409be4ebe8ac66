#pragma once

#include "ctl/commandline.h"

#include <QDate>

#include <optional>

namespace fenlark::ctl {

// The readers of the options the verbs share. A reader that cannot read its
// option says why on stderr and gives nothing; the verb then exits 1.

// A key: a whole number above 0, refused as "--NAME must be WHAT".
std::optional<qint32> keyOption(const CommandLine &args, const QString &name,
                                const QString &what = QStringLiteral("a key (a whole number above 0)"));
// A key given as a word (a positional word, an item of a list), refused as
// "WHAT must be a positive whole number: TEXT".
std::optional<qint32> keyWord(const QString &text, const QString &what);

// The date a text holds as YYYY-MM-DD and nothing more; an invalid date otherwise.
QDate readDate(const QString &text);
// A date, refused as "--NAME must be a date YYYY-MM-DD".
std::optional<QDate> dateOption(const CommandLine &args, const QString &name);
// A date that may be left out: absent, it is the day given.
std::optional<QDate> dateOption(const CommandLine &args, const QString &name, const QDate &absent);

// --from and --to, read in that order (the first that is not a date is refused).
struct DateSpan {
    QDate from;
    QDate to;
};
std::optional<DateSpan> fromToOptions(const CommandLine &args);

// The word after the verb ("extra add ..."), empty when there is none.
QString subVerb(const CommandLine &args);

} // namespace fenlark::ctl
