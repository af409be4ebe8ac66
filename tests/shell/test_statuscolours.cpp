#include "shell/preferences.h"
#include "shell/statuscolours.h"
#include "shell/strings.h"
#include "support/testdatabase.h"

#include <QtTest>

using namespace fenlark;

class TestStatusColours : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void loadsSevenStatusesInOrderWithTranslatedNames()
    {
        TestDatabase t;
        StringTable::instance().setLanguage(SpanishLanguage);
        StatusColours colours;
        colours.load(t.db());
        StringTable::instance().setLanguage(EnglishLanguage);
        QStringList codes;
        for (const Status &s : colours.list())
            codes << s.Code;
        QCOMPARE(codes, (QStringList{"C", "O", "P", "R", "S", "U", "W"}));
        QCOMPARE(colours.list()[0].Description, QString("Confirmada"));
        QCOMPARE(colours.indexOf("S"), 4);
        QCOMPARE(colours.codeAt(2), QString("P"));
        QCOMPARE(colours.codeAt(7), QString());
        const Status *c = colours.find("C");
        QVERIFY(c);
        QCOMPARE(int(c->Red), 85);
        QCOMPARE(int(c->Green), 185);
        QCOMPARE(int(c->Blue), 255);
    }

    void unknownCodeSelectsTheFirstAndFindsNothing()
    {
        TestDatabase t;
        StatusColours colours;
        colours.load(t.db());
        QCOMPARE(colours.indexOf("X"), 0);
        QVERIFY(!colours.find("X"));
        QVERIFY(!colours.find("I"));
    }

    void saveWritesEveryStatusAndRestorePutsDefaultsBack()
    {
        TestDatabase t;
        StatusColours colours;
        colours.load(t.db());
        std::vector<Status> changed = colours.list();
        for (Status &s : changed) {
            s.Red = 1;
            s.Green = 2;
            s.Blue = 3;
        }
        StatusColours::save(t.db(), changed);
        colours.load(t.db());
        for (const Status &s : colours.list())
            QCOMPARE(QList<int>({s.Red, s.Green, s.Blue}), QList<int>({1, 2, 3}));
        StatusColours::restoreDefaults(t.db());
        colours.load(t.db());
        const Status *o = colours.find("O");
        QCOMPARE(QList<int>({o->Red, o->Green, o->Blue}), QList<int>({205, 60, 100}));
        const Status *w = colours.find("W");
        QCOMPARE(QList<int>({w->Red, w->Green, w->Blue}), QList<int>({175, 240, 255}));
        QCOMPARE(t.db().scalar("select count(*) from dblog").toInt(), 0);
    }

    void colourColumnsHoldingTextAreReadAsNumbers()
    {
        TestDatabase t;
        t.db().execute("update status set Red = ' 12 ', Green = 'x' where Status = 'C'");
        StatusColours colours;
        colours.load(t.db());
        QCOMPARE(int(colours.find("C")->Red), 12);
        QCOMPARE(int(colours.find("C")->Green), 0);
    }

    void preferenceRowsAreReplacedNotDuplicated()
    {
        TestDatabase t;
        QCOMPARE(getPreference(t.db(), "REPORT1"), QString());
        setPreference(t.db(), "REPORT1", "P");
        setPreference(t.db(), "REPORT1", "L");
        QCOMPARE(getPreference(t.db(), "REPORT1"), QString("L"));
        QCOMPARE(t.db().scalar("select count(*) from preference where prefcode = 'REPORT1'").toInt(), 1);
        setPreference(t.db(), "Q'\"", "v'\"");
        QCOMPARE(getPreference(t.db(), "Q'\""), QString("v'\""));
    }

    void optionsStoreDefaultGuestsAndPayRefOnlyWhenTicked()
    {
        TestDatabase t;
        Preferences::saveOptions(t.db(), 1, true);
        Preferences prefs;
        prefs.load(t.db());
        QCOMPARE(prefs.get("DEFUSER"), QString("1"));
        QCOMPARE(prefs.get("PAYREF"), QString("1"));
        Preferences::saveOptions(t.db(), 2, false);
        prefs.load(t.db());
        QCOMPARE(prefs.get("DEFUSER"), QString("2"));
        QCOMPARE(prefs.get("PAYREF"), QString());
        QCOMPARE(t.db().scalar("select count(*) from preference").toInt(), 1);
        QCOMPARE(t.db().scalar("select count(*) from dblog").toInt(), 0);
    }
};

QTEST_GUILESS_MAIN(TestStatusColours)
#include "test_statuscolours.moc"
