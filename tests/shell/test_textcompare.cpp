#include "shell/database.h"
#include "shell/strings.h"
#include "shell/textcompare.h"
#include "support/testdatabase.h"

#include <QtTest>

#include <algorithm>

using namespace fenlark;

class TestTextCompare : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        StringTable::instance().setLanguage(EnglishLanguage);
    }

    void foldCaseFoldsEveryAlphabetAndKeepsWildcards_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("folded");
        const auto u = [](const char *text) { return QString::fromUtf8(text); };
        QTest::newRow("ASCII") << u("McDONALD") << u("mcdonald");
        QTest::newRow("Spanish") << u("ÑÚÑEZ") << u("ñúñez");
        QTest::newRow("decomposed accent is composed") << u("E\u0301MILE") << u("émile");
        QTest::newRow("Greek final sigma") << u("ΣΟΦΊΑΣ Σοφίας") << u("σοφίασ σοφίασ");
        QTest::newRow("Cyrillic") << u("ИВАНОВА") << u("иванова");
        QTest::newRow("wildcards and quotes pass") << u("100%_A'\"") << u("100%_a'\"");
        QTest::newRow("no case at all") << u("王小明") << u("王小明");
    }

    void foldCaseFoldsEveryAlphabetAndKeepsWildcards()
    {
        QFETCH(QString, text);
        QFETCH(QString, folded);
        QCOMPARE(foldCase(text), folded);
        // SQL sees the same function.
        TestDatabase t;
        QCOMPARE(t.db().scalar("select foldcase(?)", {text}).toString(), folded);
    }

    void foldCaseInSqlKeepsNullAndReadsOtherValuesAsText()
    {
        TestDatabase t;
        QVERIFY(t.db().scalar("select foldcase(null)").isNull());
        QCOMPARE(t.db().scalar("select foldcase(12)").toString(), QString("12"));
        QCOMPARE(t.db().scalar("select foldcase('')").toString(), QString(""));
        QCOMPARE(t.db().scalar("select foldcase(x'')").toString(), QString(""));
        QCOMPARE(t.db().scalar("select foldcase(x'4142')").toString(), QString("ab"));
    }

    void namesSortByTheLanguagesAlphabet_data()
    {
        QTest::addColumn<int>("language");
        QTest::addColumn<QStringList>("expected");
        const auto u = [](const char *text) { return QString::fromUtf8(text); };
        QTest::newRow("English") << EnglishLanguage
                                 << QStringList{u("admin"), u("bob"), u("Émile"), u("Eve"), u("Ñandú"), u("Nora"),
                                                u("Room 2"), u("Room 10"), u("Zed")};
        // Spanish keeps "ñ" as a letter of its own, after "n".
        QTest::newRow("Spanish") << SpanishLanguage
                                 << QStringList{u("admin"), u("bob"), u("Émile"), u("Eve"), u("Nora"), u("Ñandú"),
                                                u("Room 2"), u("Room 10"), u("Zed")};
    }

    void namesSortByTheLanguagesAlphabet()
    {
        QFETCH(int, language);
        QFETCH(QStringList, expected);
        StringTable::instance().setLanguage(language);
        QStringList names = {QString::fromUtf8("Zed"), QString::fromUtf8("Room 10"), QString::fromUtf8("Nora"),
                             QString::fromUtf8("bob"), QString::fromUtf8("Eve"), QString::fromUtf8("Ñandú"),
                             QString::fromUtf8("admin"), QString::fromUtf8("Room 2"), QString::fromUtf8("Émile")};
        std::sort(names.begin(), names.end(), NameOrder());
        QCOMPARE(names, expected);
    }
};

QTEST_GUILESS_MAIN(TestTextCompare)
#include "test_textcompare.moc"
