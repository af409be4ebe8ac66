#include "shell/errorlog.h"
#include "shell/home.h"
#include "shell/strings.h"

#include <QDirIterator>
#include <QtTest>

using namespace fenlark;

namespace {

// The string ids the program's code asks for with an English text: the first
// argument of getString, Refusal and the messages, and the title id that
// follows its text. Read from the sources, so a new text cannot ship in one
// language only.
QMap<int, QString> idsAskedForIn(const QString &folder)
{
    // name( id , QStringLiteral("text" "text") [, titleId, QStringLiteral(]
    static const QString literal = QStringLiteral("\"(?:[^\"\\\\]|\\\\.)*\"");
    static const QRegularExpression call(QStringLiteral("(?:getString|Refusal|critical|inform|warning|ask|then)\\(\\s*(\\d+)\\s*,"
                                                        "\\s*QStringLiteral\\(((?:\\s*%1\\s*)+)\\)"
                                                        "(?:\\s*,\\s*(\\d+)\\s*,\\s*QStringLiteral\\()?")
                                             .arg(literal));
    QMap<int, QString> ids;
    QDirIterator files(folder, {QStringLiteral("*.cpp"), QStringLiteral("*.h")}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QString text = QString::fromUtf8(file.readAll());
        for (const QRegularExpressionMatch &m : call.globalMatch(text)) {
            for (int group : {1, 3}) {
                const int id = m.captured(group).toInt();
                if (id > 0)
                    ids.insert(id, QFileInfo(file.fileName()).fileName());
            }
        }
    }
    return ids;
}

} // namespace

class TestStrings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void bothLanguagesHoldTheSameIds()
    {
        const auto en = StringTable::load(EnglishLanguage);
        const auto es = StringTable::load(SpanishLanguage);
        QVERIFY(en.size() > 150);
        QSet<int> enIds(en.keyBegin(), en.keyEnd());
        QSet<int> esIds(es.keyBegin(), es.keyEnd());
        QCOMPARE(enIds - esIds, QSet<int>());
        QCOMPARE(esIds - enIds, QSet<int>());
        for (auto it = es.cbegin(); it != es.cend(); ++it)
            QVERIFY2(!it.value().isEmpty(), qPrintable(QString::number(it.key())));
    }

    void everyIdTheCodeAsksForIsInEveryLanguage()
    {
        const QMap<int, QString> asked = idsAskedForIn(QStringLiteral(FENLARK_SOURCE_DIR "/src"));
        QVERIFY(asked.size() > 300);
        for (int language : {EnglishLanguage, SpanishLanguage}) {
            const auto table = StringTable::load(language);
            QStringList missing;
            for (auto it = asked.cbegin(); it != asked.cend(); ++it)
                if (!table.contains(it.key()))
                    missing << QStringLiteral("%1 (%2)").arg(it.key()).arg(it.value());
            QVERIFY2(missing.isEmpty(), qPrintable(StringTable::languageName(language) + QStringLiteral(": ") + missing.join(", ")));
        }
    }

    void tablesKeepBlanksAmpersandsAndPlaceholders()
    {
        const auto en = StringTable::load(EnglishLanguage);
        const auto es = StringTable::load(SpanishLanguage);
        QCOMPARE(en.value(2318), QString(" You have not synchronised. Are you sure you want to exit?"));
        QCOMPARE(en.value(1698), QString("Event note for: "));
        QCOMPARE(en.value(1320), QString("&View/Cancel  Booking"));
        for (auto it = en.cbegin(); it != en.cend(); ++it) {
            const QString other = es.value(it.key());
            QVERIFY2(it.value().contains("%1") == other.contains("%1"), qPrintable(QString::number(it.key())));
            QVERIFY2(it.value().startsWith(' ') == other.startsWith(' '), qPrintable(QString::number(it.key())));
            QVERIFY2(it.value().endsWith(' ') == other.endsWith(' '), qPrintable(QString::number(it.key())));
        }
    }

    void lookupFollowsTheLanguageAndFallsBackToTheDefault()
    {
        StringTable &table = StringTable::instance();
        table.setLanguage(SpanishLanguage);
        QCOMPARE(getString(1691, "There are no rooms free for these dates."), QString("No hay habitaciones libres para estas fechas."));
        QCOMPARE(getString(99999, "Caller's own text"), QString("Caller's own text"));
        table.setLanguage(EnglishLanguage);
        QCOMPARE(getString(1691, "x"), QString("There are no rooms free for these dates."));
        QCOMPARE(getString(99999, "Alojamiento:"), QString("Alojamiento:"));
        table.setLanguage(1040);
        QCOMPARE(table.language(), EnglishLanguage);
    }

    void aMissingTextIsLoggedOncePerLanguage()
    {
        QTemporaryDir home;
        Home::setPath(home.path());
        const auto loggedLines = [] {
            QFile log(ErrorLog::path());
            return log.open(QIODevice::ReadOnly) ? log.readAll().count("id 99998") : 0;
        };
        StringTable &table = StringTable::instance();
        table.setLanguage(SpanishLanguage);
        for (int i = 0; i < 3; ++i)
            QCOMPARE(getString(99998, "Built-in"), QString("Built-in"));
        QCOMPARE(loggedLines(), 1);
        table.setLanguage(EnglishLanguage);
        getString(99998, "Built-in");
        getString(99998, "Built-in");
        QCOMPARE(loggedLines(), 2);
    }

};

QTEST_GUILESS_MAIN(TestStrings)
#include "test_strings.moc"
