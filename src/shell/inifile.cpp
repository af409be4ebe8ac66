#include "shell/inifile.h"

#include <QFile>
#include <QFileInfo>
#include <QDir>
#include <QSaveFile>
#include <QStringList>

namespace fenlark {

namespace {

QStringList readLines(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QString text = QString::fromUtf8(file.readAll());
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    QStringList lines = text.split(QLatin1Char('\n'));
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

bool isSectionLine(const QString &line, QString *name = nullptr)
{
    const QString t = line.trimmed();
    if (!t.startsWith(QLatin1Char('[')))
        return false;
    const int close = t.indexOf(QLatin1Char(']'));
    if (close < 0)
        return false;
    if (name)
        *name = t.mid(1, close - 1).trimmed();
    return true;
}

// The key of a "key=value" line, or empty when the line holds none.
QString keyOf(const QString &line)
{
    const QString t = line.trimmed();
    if (t.startsWith(QLatin1Char(';')) || t.startsWith(QLatin1Char('#')))
        return {};
    const int eq = line.indexOf(QLatin1Char('='));
    if (eq <= 0)
        return {};
    return line.left(eq).trimmed();
}

QString valueOf(const QString &line)
{
    QString v = line.mid(line.indexOf(QLatin1Char('=')) + 1).trimmed();
    if (v.size() >= 2) {
        const QChar first = v.front();
        if ((first == QLatin1Char('"') || first == QLatin1Char('\'')) && v.back() == first)
            v = v.mid(1, v.size() - 2);
    }
    return v;
}

} // namespace

IniFile::IniFile(QString path)
    : m_path(std::move(path))
{
}

QStringList IniFile::damagedLines() const
{
    QStringList damaged;
    const QStringList lines = readLines(m_path);
    for (int i = 0; i < lines.size(); ++i) {
        const QString t = lines.at(i).trimmed();
        if (t.isEmpty() || t.startsWith(QLatin1Char(';')) || t.startsWith(QLatin1Char('#')) || isSectionLine(t)
            || !keyOf(t).isEmpty())
            continue;
        damaged << QStringLiteral("line %1: %2").arg(i + 1).arg(t.left(80));
    }
    return damaged;
}

QString IniFile::read(const QString &section, const QString &key, const QString &defaultValue) const
{
    bool inSection = false;
    for (const QString &line : readLines(m_path)) {
        QString name;
        if (isSectionLine(line, &name)) {
            inSection = name.compare(section, Qt::CaseInsensitive) == 0;
            continue;
        }
        if (inSection && keyOf(line).compare(key, Qt::CaseInsensitive) == 0 && !keyOf(line).isEmpty())
            return valueOf(line);
    }
    return defaultValue;
}

bool IniFile::write(const QString &section, const QString &key, const QString &value) const
{
    QStringList lines = readLines(m_path);
    const QString entry = key + QLatin1Char('=') + value;

    int sectionStart = -1;
    int sectionEnd = lines.size();
    for (int i = 0; i < lines.size(); ++i) {
        QString name;
        if (isSectionLine(lines.at(i), &name)) {
            if (sectionStart >= 0) {
                sectionEnd = i;
                break;
            }
            if (name.compare(section, Qt::CaseInsensitive) == 0)
                sectionStart = i;
        }
    }

    if (sectionStart < 0) {
        lines.append(QLatin1Char('[') + section + QLatin1Char(']'));
        lines.append(entry);
    } else {
        bool replaced = false;
        int lastEntry = sectionStart;
        for (int i = sectionStart + 1; i < sectionEnd; ++i) {
            const QString k = keyOf(lines.at(i));
            if (k.isEmpty())
                continue;
            lastEntry = i;
            if (k.compare(key, Qt::CaseInsensitive) == 0) {
                lines[i] = entry;
                replaced = true;
                break;
            }
        }
        if (!replaced)
            lines.insert(lastEntry + 1, entry);
    }

    const QString dir = QFileInfo(m_path).absolutePath();
    QDir().mkpath(dir);
    const bool isNew = !QFileInfo::exists(m_path);
    QSaveFile out(m_path);
    if (!out.open(QIODevice::WriteOnly))
        return false;
    out.write(lines.join(QLatin1Char('\n')).toUtf8());
    out.write("\n");
    if (!out.commit())
        return false;
    // It holds the paths of the property's data: its owner's alone.
    if (isNew)
        QFile::setPermissions(m_path, QFile::ReadOwner | QFile::WriteOwner);
    return true;
}

} // namespace fenlark
