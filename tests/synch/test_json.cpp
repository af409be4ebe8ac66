#include "synch/json.h"
#include "synch/stringbuilder.h"

#include "support/testdatabase.h"

#include <QRandomGenerator>
#include <QSqlQuery>
#include <QtTest>

using namespace fenlark;

class TestJson : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Input text, then the value written back (or "<nothing>"), then a fragment the
    // error text must hold (empty: no errors at all).
    void parsesForgivingInput_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("written");
        QTest::addColumn<QString>("error");

        QTest::newRow("empty braces") << "{}" << "{}" << "";
        QTest::newRow("empty brackets") << "[]" << "[]" << "";
        QTest::newRow("padded in parentheses") << "  ( {\"a\":1} )  " << "{\"a\":1}" << "";
        QTest::newRow("line comment first") << "// hello\n{\"a\":1}" << "{\"a\":1}" << "";
        QTest::newRow("block comment") << "/* x\n y */{a:/*c*/2}" << "{\"a\":2}" << "";
        QTest::newRow("bare number") << "42" << "<nothing>" << "Invalid JSON";
        QTest::newRow("empty text") << "" << "<nothing>" << "Invalid JSON";
        QTest::newRow("single quoted key") << "{'a':1}" << "{\"a\":1}" << "";
        QTest::newRow("bare key") << "{a:1}" << "{\"a\":1}" << "";
        QTest::newRow("blank inside key vanishes") << "{\"a b\":1}" << "{\"ab\":1}" << "";
        QTest::newRow("colon inside quoted key") << "{\"a:b\":1}" << "{\"a:b\":1}" << "";
        QTest::newRow("duplicate key keeps first") << "{\"a\":1,\"a\":2,\"b\":3}" << "{\"a\":1}" << "already associated";
        QTest::newRow("int overflow ends object") << "{\"x\":1,\"a\":2147483648,\"b\":1}" << "{\"x\":1}" << "Overflow";
        // Written bare, a whole double past 32 bits would read back as an overflow.
        QTest::newRow("same number as double") << "{\"a\":2147483648.0}" << "{\"a\":2147483648.0}" << "";
        QTest::newRow("negative zero") << "[-0.0]" << "[0]" << "";
        QTest::newRow("negative int") << "{\"a\":-2147483648}" << "{\"a\":-2147483648}" << "";
        QTest::newRow("missing value") << "{\"a\":,\"b\":1}" << "{}" << "Type mismatch";
        QTest::newRow("exponent is double") << "{\"a\":1e3}" << "{\"a\":1000}" << "";
        // A number is one finite number in range, or a failure that ends the object.
        QTest::newRow("double past range") << "{\"x\":1,\"a\":1e999,\"b\":1}" << "{\"x\":1}" << "Invalid number 1e999";
        QTest::newRow("negative double past range") << "{\"x\":1,\"a\":-1e999}" << "{\"x\":1}" << "Invalid number";
        QTest::newRow("two points") << "{\"x\":1,\"a\":1.5.5e3}" << "{\"x\":1}" << "Invalid number 1.5.5e3";
        QTest::newRow("exponent without digits") << "{\"x\":1,\"a\":1e,\"b\":2}" << "{\"x\":1}" << "Invalid number";
        QTest::newRow("NaN") << "{\"x\":1,\"a\":NaN}" << "{\"x\":1}" << "Type mismatch";
        QTest::newRow("Infinity") << "[1,Infinity]" << "[1]" << "Type mismatch";
        QTest::newRow("minus Infinity") << "[1,-Infinity]" << "[1]" << "Type mismatch";
        QTest::newRow("int overflow below") << "[1,-2147483649]" << "[1]" << "Overflow";
        QTest::newRow("twenty digits") << "[1,99999999999999999999]" << "[1]" << "Overflow";
        QTest::newRow("signs inside") << "[1,1-2]" << "[1]" << "Type mismatch";
        QTest::newRow("tiny double") << "{\"a\":1.5E-7}" << "{\"a\":1.5E-07}" << "";
        QTest::newRow("single quoted string") << "{a:'it\"s'}" << "{\"a\":\"it\\\"s\"}" << "";
        QTest::newRow("unicode escape") << "{a:\"caf\\u00e9\"}" << "{\"a\":\"caf\\u00E9\"}" << "";
        QTest::newRow("unknown escape drops backslash") << "{a:\"\\q\\x\"}" << "{\"a\":\"qx\"}" << "";
        QTest::newRow("escapes") << "{a:\"\\t\\n\\r\\b\\f\\/\\\\\"}" << "{\"a\":\"\\t\\n\\r\\b\\f\\/\\\\\"}" << "";
        QTest::newRow("literals") << "[true,false,null]" << "[true,false,null]" << "";
        QTest::newRow("nested") << "{a:[1,{b:[]}],c:{}}" << "{\"a\":[1,{\"b\":[]}],\"c\":{}}" << "";
        QTest::newRow("text after close ignored") << "{a:1} trailing {" << "{\"a\":1}" << "";
        QTest::newRow("bad boolean") << "{a:tru,b:1}" << "{\"a\":false,\"tru,b\":1}" << "Invalid Boolean";
        // Truncated texts: each returns what it had and reports, never loops.
        QTest::newRow("truncated object") << "{\"a\":1,\"b\":" << "{\"a\":1,\"b\":null}" << "end of text";
        QTest::newRow("truncated number") << "{\"a\":12" << "{\"a\":null}" << "end of text";
        QTest::newRow("truncated string") << "{\"a\":\"abc" << "{\"a\":\"abc\"}" << "end of text";
        QTest::newRow("truncated array") << "[1,2," << "[1,2]" << "end of text";
        QTest::newRow("truncated escape") << "{\"a\":\"x\\u00" << "{\"a\":\"x\\u0000\"}" << "end of text";
        QTest::newRow("array of garbage") << "[tx]" << "[false]" << "Unreadable value";
        QTest::newRow("open brace only") << "{" << "{}" << "end of text";
    }

    void parsesForgivingInput()
    {
        QFETCH(QString, input);
        QFETCH(QString, written);
        QFETCH(QString, error);
        QString errors;
        const JsonValue value = json::parse(input, &errors);
        QCOMPARE(value.isNothing() ? QStringLiteral("<nothing>") : json::toString(value), written);
        if (error.isEmpty())
            QVERIFY2(errors.isEmpty(), qPrintable(errors));
        if (!error.isEmpty())
            QVERIFY2(errors.contains(error), qPrintable(errors));
    }

    void keepsIntegerAndDoubleApart()
    {
        const JsonValue v = json::parse(QStringLiteral("{i:7,d:7.0,s:'7'}"));
        QCOMPARE(v[QStringLiteral("i")].kind(), JsonValue::Integer);
        QCOMPARE(v[QStringLiteral("d")].kind(), JsonValue::Double);
        QCOMPARE(v[QStringLiteral("s")].kind(), JsonValue::Text);
        QCOMPARE(v[QStringLiteral("i")].toInt(), 7);
    }

    void refusesHostileNesting()
    {
        const QString deep = QString(100000, QLatin1Char('['));
        QString errors;
        const JsonValue v = json::parse(deep, &errors);
        QVERIFY(v.isArray());
        QVERIFY(errors.contains(QLatin1String("too deep")));
    }

    void refusesMoreValuesThanItsLimitWhole()
    {
        QString errors;
        QVERIFY(json::parse(QStringLiteral("[1,[2,3],{\"a\":4}]"), &errors, 6).isArray());
        QVERIFY(errors.isEmpty());
        QVERIFY(json::parse(QStringLiteral("[1,[2,3],{\"a\":4},5]"), &errors, 6).isNothing());
        QVERIFY(errors.contains(QLatin1String("More than 6 values")));
    }

    // Every error quotes a short excerpt, never the rest of the text, and the error
    // text stops growing: a hostile text cannot make it the largest thing in memory.
    void errorTextStaysBounded()
    {
        const QString text = QStringLiteral("{a:t") + QStringLiteral(",b:t").repeated(20000) + QStringLiteral("}");
        QString errors;
        json::parse(text, &errors);
        QVERIFY(errors.contains(QLatin1String("Invalid Boolean")));
        QVERIFY(errors.size() <= json::MaxErrorText);
    }

    void survivesEveryTruncation()
    {
        const QString text = QStringLiteral(
            "{\"success\":true,\"data\":{\"logupdates\":[{\"tablename\":\"guest\",\"logtype\":\"U\",\"tableid\":12,"
            "\"values\":{\"GuestID\":12,\"BBBookingID\":{\"table\":\"booking\",\"tableid\":9},\"note\":\"a\\u00e9\\\"b\","
            "\"dailyrates\":[{\"caldate\":\"2026-01-02\",\"roomrate\":10.5}]}}],\"requests\":[]}}");
        for (int cut = 0; cut <= text.size(); ++cut) {
            const JsonValue v = json::parse(text.left(cut));
            if (cut == 0)
                QVERIFY(v.isNothing());
        }
    }

    void survivesRandomGarbage()
    {
        const QString alphabet = QStringLiteral("{}[]()\"':,/*\\ \n\tabefnlrstu0123456789.+-eE\u00e9");
        QRandomGenerator random(7);
        for (int round = 0; round < 3000; ++round) {
            QString text;
            const int length = random.bounded(60);
            for (int i = 0; i < length; ++i)
                text += alphabet[random.bounded(alphabet.size())];
            const JsonValue v = json::parse(text);
            json::toString(v);
        }
    }

    void writesDatesAsTheWireWantsThem_data()
    {
        QTest::addColumn<QDateTime>("value");
        QTest::addColumn<QString>("written");
        QTest::newRow("midnight is a date") << QDateTime(QDate(2026, 3, 9), QTime(0, 0)) << "\"2026-03-09\"";
        QTest::newRow("with time") << QDateTime(QDate(2026, 3, 9), QTime(17, 5, 3)) << "\"2026-03-09 17:05:03\"";
        QTest::newRow("day one") << QDateTime(QDate(1899, 12, 31), QTime(0, 0)) << "\"1899-12-31\"";
    }

    void writesDatesAsTheWireWantsThem()
    {
        QFETCH(QDateTime, value);
        QFETCH(QString, written);
        QCOMPARE(json::toString(JsonValue(value)), written);
    }

    void writesPureAsciiInInsertionOrder()
    {
        auto object = std::make_shared<JsonObject>();
        object->add(QStringLiteral("z"), JsonValue(QStringLiteral("\u00e9\u4e2d\U0001F600")));
        object->add(QStringLiteral("a"), JsonValue(1.5));
        object->add(QStringLiteral("m"), JsonValue::null());
        object->add(QStringLiteral("k"), JsonValue(QStringLiteral("a/b\x01")));
        QCOMPARE(json::toString(JsonValue(object)),
                 QStringLiteral("{\"z\":\"\\u00E9\\u4E2D\\uD83D\\uDE00\",\"a\":1.5,\"m\":null,\"k\":\"a\\/b\\u0001\"}"));
    }

    void roundTripsThroughWriterAndParser()
    {
        const QString text = QStringLiteral("{\"a\":[1,-2,3.25,\"x\\\"y\",null,true],\"b\":{\"c\":\"\\u00E9\\/\"}}");
        QCOMPARE(json::toString(json::parse(text)), text);
    }

    // A damaged text keeps what was read before the damage; written out, that
    // is JSON again, a value left unread written as null.
    void whatADamagedTextLeavesWritesAsJson()
    {
        const QString text = QStringLiteral("{\"a\":1,logupdates:[{tableid:3,values:{Qty:");
        QString errors;
        const JsonValue value = json::parse(text, &errors);
        QVERIFY(!errors.isEmpty());
        const QString written = json::toString(value);
        QString again;
        QCOMPARE(json::toString(json::parse(written, &again)), written);
        QVERIFY2(again.isEmpty(), qPrintable(written + " | " + again));
    }

    void recordsetGivesObjectOrArray()
    {
        TestDatabase t;
        t.db().execute(QStringLiteral("insert into event (EventIndex, FromDate, ToDate, EventNote) values (1, '2026-01-01', '2026-01-03', 'Fair')"));
        QSqlQuery one = t.db().query(QStringLiteral("select * from event"));
        const JsonValue single = json::recordsetToValue(one, false);
        QVERIFY(single.isObject());
        QCOMPARE(single.object()->keys().first(), QStringLiteral("BBEventID"));
        QCOMPARE(single[QStringLiteral("EventNote")].toText(), QStringLiteral("Fair"));
        QCOMPARE(single[QStringLiteral("EventID")].kind(), JsonValue::Integer);

        QSqlQuery none = t.db().query(QStringLiteral("select * from event where 1 = 0"));
        const JsonValue empty = json::recordsetToValue(none, false);
        QVERIFY(empty.isObject() && empty.object()->isEmpty());

        t.db().execute(QStringLiteral("insert into event (EventIndex, FromDate) values (2, null)"));
        QSqlQuery two = t.db().query(QStringLiteral("select * from event"));
        const JsonValue rows = json::recordsetToValue(two, false);
        QVERIFY(rows.isArray());
        QCOMPARE(rows.array()->size(), 2);
    }

    void stringBuilderRefusesEditsOutsideItsText()
    {
        StringBuilder b;
        b.setChunkSize(8);
        b.append(QStringLiteral("abcdefghijklmnopqrstuvwx"));
        QVERIFY(b.insert(0, u"_"));
        QVERIFY(!b.insert(100, u"_"));
        QCOMPARE(b.find(u"c"), 4);
        QVERIFY(!b.remove(20, 10));
        QCOMPARE(b.toString(), QStringLiteral("_abcdefghijklmnopqrstuvwx"));
    }
};

QTEST_GUILESS_MAIN(TestJson)
#include "test_json.moc"
