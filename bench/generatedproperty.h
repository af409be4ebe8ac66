#pragma once

// The property the benchmarks measure on: 40 rooms and ten years of bookings,
// generated once per benchmark program into a temporary home folder.
#include "shell/database.h"
#include "shell/home.h"
#include "desk/propertygenerator.h"

#include <QTemporaryDir>

namespace fenlark::bench {

inline PropertyGenerator::Options generatedOptions()
{
    return PropertyGenerator::forYears(40, 10, 1);
}

inline QTemporaryDir &workDir()
{
    static QTemporaryDir dir;
    return dir;
}

// The path of the generated database; the home folder is set to its folder.
inline QString generatedProperty()
{
    static const QString path = [] {
        Home::setPath(workDir().path());
        const QString p = workDir().filePath(QStringLiteral("generated.db"));
        auto db = Database::open(p);
        PropertyGenerator(generatedOptions()).generate(*db);
        return p;
    }();
    Home::setPath(workDir().path());
    return path;
}

} // namespace fenlark::bench
