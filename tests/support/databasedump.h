#pragma once

#include <QSqlDatabase>
#include <QString>

// Every row of every table, each value as SQLite quotes it, tables by name and rows
// in their order: two databases with the same dump hold the same data, byte for byte.
QString dumpDatabase(const QSqlDatabase &db);
// The same through a connection of its own to the file.
QString dumpDatabaseFile(const QString &path);
