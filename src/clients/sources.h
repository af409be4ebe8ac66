#pragma once

#include <QString>
#include <QStringList>

namespace fenlark {

class Database;

// The marketing sources already used on bookings, each once, in the order of
// names. A source of blanks counts: only an empty or missing one is left out.
// With a prefix only the sources that start with it, in any case, are listed;
// a '%' or '_' typed in it still matches any text or any one character.
QStringList bookingSources(Database &db, const QString &prefix = {});

// The agent commission of the newest booking with exactly that source; 0 when
// no booking has it.
double newestAgentComm(Database &db, const QString &source);

} // namespace fenlark
