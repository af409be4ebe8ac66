#pragma once

#include <QString>

namespace fenlark {

// Fenlark's home folder: where the configuration, the default database,
// templates, invoices, logs and upgrade files live. The program's own folder is
// not writable on Linux, so everything that belongs "beside the program" goes here.
class Home {
public:
    // Chooses the folder: the explicit one (from --home) if given, else
    // FENLARK_HOME, else $XDG_DATA_HOME/fenlark (~/.local/share/fenlark).
    static QString resolve(const QString &explicitDir = {});

    // The folder in use by this process; set once at start-up.
    static QString path();
    static void setPath(const QString &dir);

    // A file or folder inside the home folder.
    static QString file(const QString &name);

    // Pulls a "--home DIR" pair out of an argument list, returning DIR (or empty).
    static QString takeHomeArgument(QStringList &args);
};

} // namespace fenlark
