#pragma once

#include <QString>

namespace fenlark {

// The embedded demo: a home folder of its own whose database holds the demo
// property, so a new user sees a working diary without any server.
class Demo {
public:
    // The demo's home: the given folder, else "demo" inside the usual home folder.
    static QString homeFolder(const QString &explicitHome);
    // Makes sure the configured database of the current home holds the demo
    // property, creating it on first use. Returns false (with the reason on the
    // error log) when the database cannot be made.
    static bool prepare();
};

} // namespace fenlark
