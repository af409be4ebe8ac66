// The configuration reader and writer on any file: reading never fails, and a
// value written is read back as written while the file's other lines stay.

#include "fuzzsupport.h"
#include "shell/inifile.h"

#include <QFile>

#include <cstdlib>

using namespace fenlark;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString path = fuzzsupport::scratch().filePath(QStringLiteral("vmconfig.ini"));
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            std::abort();
        file.write(fuzzsupport::bytes(data, size));
    }
    const IniFile ini(path);
    for (const char *key : {"Database", "Language", "Server", "BackupDir", "Database1"})
        ini.read(QStringLiteral("Settings"), QString::fromLatin1(key), QStringLiteral("default"));
    const QString value = QStringLiteral("C:\\\\veldmoor\\\\{data}, \"quoted\"");
    if (!ini.write(QStringLiteral("Settings"), QStringLiteral("FuzzKey"), value))
        std::abort();
    if (ini.read(QStringLiteral("Settings"), QStringLiteral("FuzzKey"), QString()) != value)
        std::abort();
    return 0;
}
