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

// Exact takes YYYY-MM-DD and nothing more; Iso reads as Qt reads an ISO date,
// which lets text follow the day.
enum class DateReading { Exact, Iso };
// The date a text holds; an invalid date when it holds none.
QDate readDate(const QString &text, DateReading reading);
// A date, refused as "--NAME must be a date YYYY-MM-DD".
std::optional<QDate> dateOption(const CommandLine &args, const QString &name, DateReading reading = DateReading::Exact);
// A date that may be left out: absent, it is the day given.
std::optional<QDate> dateOption(const CommandLine &args, const QString &name, const QDate &absent);

// --from and --to, read in that order (the first that is not a date is refused).
struct DateSpan {
    QDate from;
    QDate to;
};
std::optional<DateSpan> fromToOptions(const CommandLine &args, DateReading reading = DateReading::Exact);

// The word after the verb ("extra add ..."), empty when there is none.
QString subVerb(const CommandLine &args);

} // namespace fenlark::ctl
