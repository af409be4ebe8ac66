#pragma once

#include <QStringList>

namespace fenlark {

class Database;

// The local database's tables, made and brought up to date by code. Each step of
// the schema's history is a numbered migration; PRAGMA user_version records the
// last one applied and the vmversion row carries it as text for the server.
class Schema {
public:
    static int currentVersion();
    // Applies every migration the file lacks, in one transaction.
    static void ensure(Database &db);

    // Tables that are made here and travel to the server, in the order in which
    // "mark everything for sending again" logs them.
    static const QStringList &sharedTables();
    // Tables whose rows arrive only by the setup download.
    static const QStringList &serverTables();
};

} // namespace fenlark
