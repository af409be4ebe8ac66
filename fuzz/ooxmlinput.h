#pragma once

// The input of a template fuzz target: the first byte picks which part of a
// shipped template the rest replaces (the XML is where the readers do their
// work; a zip of random bytes would seldom get past the unpacking), or, past
// the last part, the rest is the whole file.

#include "fuzzsupport.h"
#include "reports/ooxmlpackage.h"

#include <QFile>

#include <cstdlib>

namespace fuzzsupport {

inline QString packageFromInput(const QString &templateName, const QStringList &parts, const uint8_t *data, size_t size)
{
    const QString path = scratch().filePath(QStringLiteral("input") + templateName.mid(templateName.lastIndexOf(QLatin1Char('.'))));
    QFile::remove(path);
    if (size == 0)
        return path;
    const int choice = data[0] % (parts.size() + 1);
    const QByteArray rest = bytes(data + 1, size - 1);
    if (choice == parts.size()) {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            std::abort();
        file.write(rest);
        return path;
    }
    fenlark::Result<fenlark::OoxmlPackage> package =
        fenlark::OoxmlPackage::open(QStringLiteral(FENLARK_SOURCE_DIR "/resources/templates/en/") + templateName);
    if (!package)
        std::abort();
    package->setBytes(parts.at(choice), rest);
    if (!package->save(path))
        std::abort();
    return path;
}

} // namespace fuzzsupport
