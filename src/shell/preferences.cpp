#include "shell/preferences.h"

#include "shell/database.h"
#include "shell/textformat.h"

#include <QSqlQuery>

namespace fenlark {

QString getPreference(Database &db, const QString &code)
{
    return fieldText(db.scalar(QStringLiteral("select prefvalue from preference where prefcode = ?"), {code}));
}

void setPreference(Database &db, const QString &code, const QString &value)
{
    Transaction transaction(db);
    db.execute(QStringLiteral("delete from preference where prefcode = ?"), {code});
    db.execute(QStringLiteral("insert into preference (prefcode, prefvalue) values(?, ?)"), {code, value});
    transaction.commit();
}

void Preferences::load(Database &db)
{
    m_values.clear();
    QSqlQuery q = db.query(QStringLiteral("select prefcode, prefvalue from preference"));
    while (q.next())
        m_values.insert(fieldText(q.value(0)), fieldText(q.value(1)));
}

void Preferences::saveOptions(Database &db, int defaultGuests, bool printPayRef)
{
    Transaction transaction(db);
    setPreference(db, QStringLiteral("DEFUSER"), QString::number(defaultGuests));
    db.execute(QStringLiteral("delete from preference where prefcode = ?"), {QStringLiteral("PAYREF")});
    if (printPayRef)
        db.execute(QStringLiteral("insert into preference (prefcode, prefvalue) values(?, ?)"),
                   {QStringLiteral("PAYREF"), QStringLiteral("1")});
    transaction.commit();
}

} // namespace fenlark
