#include "shell/strings.h"

#include "shell/errorlog.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLibraryInfo>
#include <QMutexLocker>
#include <QSet>
#include <QTranslator>

namespace fenlark {

namespace {

QString unescape(QStringView text)
{
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c == QLatin1Char('\\') && i + 1 < text.size()) {
            const QChar n = text[++i];
            if (n == QLatin1Char('n'))
                out += QLatin1Char('\n');
            else if (n == QLatin1Char('t'))
                out += QLatin1Char('\t');
            else if (n == QLatin1Char('r'))
                out += QLatin1Char('\r');
            else
                out += n;
        } else {
            out += c;
        }
    }
    return out;
}

} // namespace

StringTable &StringTable::instance()
{
    static StringTable table;
    return table;
}

StringTable::StringTable()
{
    m_texts = load(EnglishLanguage);
}

QString StringTable::folderOf(int languageId)
{
    return languageId == SpanishLanguage ? QStringLiteral("es") : QStringLiteral("en");
}

QString StringTable::languageName(int languageId)
{
    switch (languageId) {
    case EnglishLanguage:
        return QStringLiteral("English (United States)");
    case SpanishLanguage:
        return QStringLiteral("Spanish (International)");
    default:
        return QStringLiteral("Invalid Language Index");
    }
}

QHash<int, QString> StringTable::load(int languageId)
{
    QHash<int, QString> texts;
    const QDir dir(QStringLiteral(":/strings/") + folderOf(languageId));
    const QStringList files = dir.entryList({QStringLiteral("*.tsv")}, QDir::Files, QDir::Name);
    for (const QString &name : files) {
        QFile file(dir.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QString content = QString::fromUtf8(file.readAll());
        for (QStringView line : QStringView(content).split(QLatin1Char('\n'))) {
            if (line.endsWith(QLatin1Char('\r')))
                line.chop(1);
            if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
                continue;
            const qsizetype tab = line.indexOf(QLatin1Char('\t'));
            bool ok = false;
            const int id = tab > 0 ? line.left(tab).toInt(&ok) : 0;
            if (!ok) {
                // The ids of that line show their built-in English instead.
                ErrorLog::write(QStringLiteral("A line of the %1 texts in %2 is not an id and a text: %3")
                                    .arg(folderOf(languageId), name, line.left(80).toString()));
                continue;
            }
            texts.insert(id, unescape(line.mid(tab + 1)));
        }
    }
    return texts;
}

void StringTable::setLanguage(int languageId)
{
    if (languageId != EnglishLanguage && languageId != SpanishLanguage)
        languageId = EnglishLanguage;
    if (languageId == m_language && !m_texts.isEmpty())
        return;
    m_language = languageId;
    m_texts = load(languageId);
    // Qt's own texts (Yes, No, Cancel, the calendar popup) and every date and
    // number it shows follow the language too.
    QLocale::setDefault(locale());
    if (QCoreApplication::instance()) {
        static QTranslator qtTexts;
        QCoreApplication::removeTranslator(&qtTexts);
        if (languageId != EnglishLanguage
            && qtTexts.load(locale(), QStringLiteral("qtbase"), QStringLiteral("_"),
                            QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
            QCoreApplication::installTranslator(&qtTexts);
    }
}

QLocale StringTable::locale() const
{
    return m_language == SpanishLanguage ? QLocale(QLocale::Spanish, QLocale::Spain)
                                         : QLocale(QLocale::English, QLocale::UnitedStates);
}

QString StringTable::get(int id, const QString &defaultText) const
{
    const auto it = m_texts.constFind(id);
    if (it != m_texts.constEnd())
        return it.value();
    // Said once per id and language, so a screen drawn every second does not fill the log.
    static QMutex reportedMutex;
    static QSet<std::pair<int, int>> reported;
    QMutexLocker lock(&reportedMutex);
    if (!reported.contains({m_language, id})) {
        reported.insert({m_language, id});
        ErrorLog::write(QStringLiteral("The %1 texts have no id %2: its built-in English is shown.").arg(folderOf(m_language)).arg(id));
    }
    return defaultText;
}

QLocale deskLocale()
{
    return StringTable::instance().locale();
}

} // namespace fenlark
