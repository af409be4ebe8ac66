#pragma once

// The resident memory of this process, and its peak since the last resetPeak().
#include <QFile>

#include <malloc.h>

namespace fenlark::bench {

// "VmRSS" now, "VmHWM" the peak; in MiB.
inline double residentMiB(const char *field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(field))
            return line.mid(line.indexOf(':') + 1).trimmed().split(' ').value(0).toDouble() / 1024.0;
    }
    return 0;
}

// Gives freed memory back to the system, then starts the peak again from what is
// resident now.
inline void resetPeak()
{
    malloc_trim(0);
    QFile refs(QStringLiteral("/proc/self/clear_refs"));
    if (refs.open(QIODevice::WriteOnly))
        refs.write("5");
}

} // namespace fenlark::bench
