#pragma once

#include <QCollator>
#include <QString>

class QSqlDatabase;

namespace fenlark {

// Text as name searches compare it: composed and case-folded in every alphabet,
// so "ÑÚÑEZ", "ñúñez" and a decomposed "Ñúñez" are one text. "%" and "_" pass
// unchanged, so a folded pattern keeps its wildcards.
QString foldCase(const QString &text);

// Makes foldcase(text) callable in SQL on this open SQLite connection; the
// triggers that keep the folded search keys call it on every write. False when
// the connection is not an open SQLite one or SQLite refuses the function.
bool registerFoldCase(const QSqlDatabase &db);

// Names in the order people expect in a list: by the alphabet of the language
// in use, capitals beside small letters, numbers by value ("admin", "bob",
// "Zed"; "Room 2" before "Room 10").
class NameOrder {
public:
    NameOrder();
    bool operator()(const QString &a, const QString &b) const;

private:
    QCollator m_collator;
};

} // namespace fenlark
