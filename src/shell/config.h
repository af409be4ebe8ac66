#pragma once

#include <QString>

namespace fenlark {

// vmconfig.ini in the home folder, section "Param". Read afresh on every call.
constexpr int ConfigValueLimit = 255;

QString configPath();
// The value of key (cut at 255 characters), or defaultValue when missing.
QString readConfig(const QString &key, const QString &defaultValue);
bool writeConfig(const QString &key, const QString &value);

// A path read from vmconfig.ini. The program writes the paths inside the home
// folder relative to it, so a home folder copied or moved elsewhere keeps
// working on its own files: a relative path is inside the home folder.
QString fromHome(const QString &path);

// Keys with a rule beyond a plain default.
namespace config {
// Folder of the templates, with a trailing "/" (default: the home folder).
QString templateDir();
// Folder of synch.err (default: the home folder).
QString logDir();
// The synchronisation's batch limit; 300 when missing or not a number.
int logLimit();
// The server's host, "host[:port]" or "https://host[:port]".
QString server();
QString proxy();
// The default server: the reference server on this machine.
QString defaultServer();
// Invoice folder of a database: InvoiceDir for 0, InvoiceDir<n> for n (a relative
// path is inside the home folder); when empty the home folder's "invoices<n>" is
// made and written back as a relative path.
QString invoiceDir(int dbNumber);
} // namespace config

} // namespace fenlark
