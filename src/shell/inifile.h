#pragma once

#include <QString>
#include <QStringList>

namespace fenlark {

// A reader and writer of the classic private-profile format ("[Section]" lines
// and "key=value" lines). Unlike QSettings it stores values verbatim: backslashes,
// braces, commas and quotes survive a round trip, and lines it does not touch
// (comments, other sections, other keys) stay as they were.
// Every call reads the file afresh: nothing is cached, so a change made by hand
// is seen at the next read.
class IniFile {
public:
    explicit IniFile(QString path);

    const QString &path() const { return m_path; }

    // The value of key in section, or defaultValue when the file, the section
    // or the key is missing. Keys and sections match case-insensitively; blanks
    // around the value and one pair of matching surrounding quotes are removed.
    QString read(const QString &section, const QString &key, const QString &defaultValue) const;

    // Writes key=value into section, making the file and the section as needed.
    // Returns false when the file cannot be written.
    bool write(const QString &section, const QString &key, const QString &value) const;

    // The lines that are neither blank, a comment, a section nor key=value, as
    // "line N: text": reading passes over them; start-up reports them.
    QStringList damagedLines() const;

private:
    QString m_path;
};

} // namespace fenlark
