#pragma once

#include <QString>

class QObject;

namespace fenlark {

// The demo's own synchronisation server: fenlark-server, found beside the running
// program, started in the background on a free loopback port with the property of
// the demo database, its data kept in <home>/demo-server.db. On success the home's
// vmconfig.ini points Server at it and the "host:port" is returned; the process
// ends with parent (which must not be null). On failure the result is empty and error says why. programDir
// names another folder to find fenlark-server in.
QString startDemoServer(const QString &deskDatabasePath, QObject *parent, QString *error = nullptr,
                        const QString &programDir = {});

// Where the demo server keeps its data (for "fenlark-server add-booking --db ...").
QString demoServerDatabase();

} // namespace fenlark
