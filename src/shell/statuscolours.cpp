#include "shell/statuscolours.h"

#include "shell/database.h"
#include "shell/strings.h"
#include "shell/textformat.h"

#include <QSqlQuery>

#include <atomic>

namespace fenlark {

void StatusColours::load(Database &db)
{
    static std::atomic<quint64> loads{0};
    m_version = ++loads;
    m_list.clear();
    m_position.clear();
    QSqlQuery q = db.query(QStringLiteral("select Status, languagecode, Description, Red, Green, Blue from status order by OrderBy"));
    while (q.next()) {
        Status s;
        s.Code = fieldText(q.value(0));
        s.languagecode = q.value(1).toInt();
        s.Description = getString(s.languagecode, fieldText(q.value(2)));
        s.Red = static_cast<qint16>(safeDouble(fieldText(q.value(3))));
        s.Green = static_cast<qint16>(safeDouble(fieldText(q.value(4))));
        s.Blue = static_cast<qint16>(safeDouble(fieldText(q.value(5))));
        m_position.insert(s.Code, static_cast<int>(m_list.size()));
        m_list.push_back(s);
    }
}

const Status *StatusColours::find(const QString &code) const
{
    const auto it = m_position.constFind(code);
    return it == m_position.constEnd() ? nullptr : &m_list[static_cast<std::size_t>(*it)];
}

int StatusColours::indexOf(const QString &code) const
{
    return m_position.value(code, 0);
}

QString StatusColours::codeAt(int index) const
{
    if (index < 0 || index >= static_cast<int>(m_list.size()))
        return {};
    return m_list[static_cast<std::size_t>(index)].Code;
}

void StatusColours::save(Database &db, const std::vector<Status> &statuses)
{
    Transaction transaction(db);
    for (const Status &s : statuses)
        db.execute(QStringLiteral("update status set Red = ?, Green = ?, Blue = ? where Status = ?"),
                   {s.Red, s.Green, s.Blue, s.Code});
    transaction.commit();
}

void StatusColours::restoreDefaults(Database &db)
{
    struct Default {
        const char *code;
        int red, green, blue;
    };
    static const Default defaults[] = {
        {"C", 85, 185, 255}, {"W", 175, 240, 255}, {"P", 255, 220, 255}, {"R", 255, 180, 255},
        {"S", 170, 220, 130}, {"O", 205, 60, 100}, {"U", 200, 200, 200},
    };
    Transaction transaction(db);
    for (const Default &d : defaults)
        db.execute(QStringLiteral("update status set Red = ?, Green = ?, Blue = ? where Status = ?"),
                   {d.red, d.green, d.blue, QString::fromLatin1(d.code)});
    transaction.commit();
}

} // namespace fenlark
