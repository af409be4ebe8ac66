#pragma once

#include <QHash>
#include <QLocale>
#include <QString>

namespace fenlark {

// Language ids as the configuration stores them.
constexpr int EnglishLanguage = 1033;
constexpr int SpanishLanguage = 3082;

// The translated-string lookup. Every visible text of the program is read through
// getString(id, default): the table of the current language answers, and the
// caller's default shows when the table has no entry for the id.
// Tables ship as resources, one tab-separated file per subsystem and language
// (":/strings/en/shell.tsv", ":/strings/es/shell.tsv", ...): "id<TAB>text", with
// "\n", "\t" and "\\" as escapes. Blanks and "&" are kept as written.
class StringTable {
public:
    static StringTable &instance();

    int language() const { return m_language; }
    // The locale of the language in use: its alphabet orders names and its
    // calendar names days and months.
    QLocale locale() const;
    // Loads the tables of that language; an unknown id falls back to English.
    void setLanguage(int languageId);

    // The text for id, or defaultText when the current table has none.
    QString get(int id, const QString &defaultText) const;
    bool contains(int id) const { return m_texts.contains(id); }

    // The ids present in a language's tables (used to keep the languages in step).
    static QHash<int, QString> load(int languageId);
    static QString folderOf(int languageId);
    static QString languageName(int languageId);

private:
    StringTable();
    int m_language = EnglishLanguage;
    QHash<int, QString> m_texts;
};

// The locale of the chosen language, for dates and numbers shown to people.
QLocale deskLocale();

inline QString getString(int id, const QString &defaultText)
{
    return StringTable::instance().get(id, defaultText);
}

} // namespace fenlark
