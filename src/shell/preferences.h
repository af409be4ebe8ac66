#pragma once

#include <QHash>
#include <QString>

namespace fenlark {

class Database;

// The machine's own settings in the table "preference" (never sent to the server).
QString getPreference(Database &db, const QString &code);
// Replaces the row of that code.
void setPreference(Database &db, const QString &code, const QString &value);

// The preferences held in memory while the desk runs.
class Preferences {
public:
    void load(Database &db);
    // The value of a code, empty text when there is none.
    QString get(const QString &code) const { return m_values.value(code); }

    // What the preferences dialog stores: DEFUSER always, PAYREF "1" only when ticked.
    static void saveOptions(Database &db, int defaultGuests, bool printPayRef);

private:
    QHash<QString, QString> m_values;
};

} // namespace fenlark
