#pragma once

#include <QHash>
#include <QString>

#include <vector>

namespace fenlark {

class Database;

// One booking status with its name and calendar colour. The code is the
// column "Status" (a member cannot share the class's name).
class Status {
public:
    QString Code;
    QString Description;
    qint32 languagecode = 0;
    qint16 Red = 0;
    qint16 Green = 0;
    qint16 Blue = 0;
};

// The status colours in their order ("C", "O", "P", "R", "S", "U", "W"),
// with the code's position for lookups.
class StatusColours {
public:
    void load(Database &db);

    const std::vector<Status> &list() const { return m_list; }
    // The status of a code; nullptr for a code that is not known.
    const Status *find(const QString &code) const;
    // The 0-based list position of a code; 0 (the first) for an unknown code.
    int indexOf(const QString &code) const;
    // The code at a list position; empty when out of range.
    QString codeAt(int index) const;

    // Which load this is: every load, of any list, has a number of its own.
    quint64 version() const { return m_version; }

    // Writes the three values of each status in the list.
    static void save(Database &db, const std::vector<Status> &statuses);
    // Puts back the shipped colours of the seven statuses.
    static void restoreDefaults(Database &db);

private:
    std::vector<Status> m_list;
    QHash<QString, int> m_position;
    quint64 m_version = 0;
};

} // namespace fenlark
