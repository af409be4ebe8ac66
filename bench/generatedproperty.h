#pragma once

// The property the benchmarks measure on, at one of two sizes chosen by the
// environment variable FENLARK_BENCH_SIZE:
//   small (the default)  40 rooms and ten years of bookings
//   large                200 rooms and twenty years of bookings
// Generating the large one takes minutes, so the generated file is kept in the
// temporary folder (one per size, schema version and day, since the bookings end
// a year from today) and every benchmark program starts from its own copy of it.
#include "shell/database.h"
#include "shell/databasefiles.h"
#include "shell/home.h"
#include "shell/schema.h"
#include "desk/propertygenerator.h"

#include <QCoreApplication>
#include <QDate>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

namespace fenlark::bench {

struct PropertySize {
    const char *name;
    int rooms;
    int years;
};

inline const PropertySize &propertySize()
{
    static const PropertySize size = [] {
        const QByteArray asked = qgetenv("FENLARK_BENCH_SIZE");
        if (asked.isEmpty() || asked == "small")
            return PropertySize{"small", 40, 10};
        if (asked == "large")
            return PropertySize{"large", 200, 20};
        std::fprintf(stderr, "FENLARK_BENCH_SIZE must be small or large, not %s\n", asked.constData());
        std::exit(2);
    }();
    return size;
}

inline PropertyGenerator::Options generatedOptions()
{
    return PropertyGenerator::forYears(propertySize().rooms, propertySize().years, 1);
}

inline QTemporaryDir &workDir()
{
    static QTemporaryDir dir;
    return dir;
}

// The generated property kept for every benchmark program of this size and day;
// made when missing. Written under a passing name and renamed, so that programs
// run side by side never see half a file.
inline QString cachedProperty()
{
    const QString folder = QDir::temp().filePath(QStringLiteral("fenlark-bench"));
    QDir().mkpath(folder);
    const QString path = QDir(folder).filePath(QStringLiteral("%1-%2x%3-v%4-%5.db")
                                                   .arg(QString::fromLatin1(propertySize().name))
                                                   .arg(propertySize().rooms)
                                                   .arg(propertySize().years)
                                                   .arg(Schema::currentVersion())
                                                   .arg(QDate::currentDate().toString(QStringLiteral("yyyyMMdd"))));
    if (QFile::exists(path))
        return path;
    std::fprintf(stderr, "generating the %s property (%d rooms, %d years) into %s\n", propertySize().name,
                 propertySize().rooms, propertySize().years, qPrintable(path));
    const QString partial = workDir().filePath(QStringLiteral("generating.db"));
    {
        auto db = Database::open(partial);
        PropertyGenerator(generatedOptions()).generate(*db);
    }
    // Another program may have finished first; either file is the same property.
    const QString part = path + QStringLiteral(".%1").arg(QCoreApplication::applicationPid());
    if (!QFile::exists(path) && !QFile::copy(partial, part))
        return partial;
    QFile::rename(part, path);
    QFile::remove(part);
    QFile::remove(partial);
    return QFile::exists(path) ? path : partial;
}

// Backups of the large property take a gigabyte once rotated four times, more
// than a shared machine's disk may hold: benchmarks that back up start each
// iteration from an empty backup folder, so every figure is that of a first
// backup (the snapshot and one copy), at both sizes alike.
inline void clearBackups()
{
    QDir(getBackupDir()).removeRecursively();
}

// The path of this program's copy of the generated database; the home folder is
// set to its folder.
inline QString generatedProperty()
{
    static const QString path = [] {
        Home::setPath(workDir().path());
        const QString p = workDir().filePath(QStringLiteral("generated.db"));
        const QString cached = cachedProperty();
        if (cached != p && !QFile::copy(cached, p)) {
            std::fprintf(stderr, "cannot copy %s to %s\n", qPrintable(cached), qPrintable(p));
            std::exit(2);
        }
        QFile(p).setPermissions(QFile::ReadOwner | QFile::WriteOwner);
        return p;
    }();
    Home::setPath(workDir().path());
    return path;
}

} // namespace fenlark::bench
