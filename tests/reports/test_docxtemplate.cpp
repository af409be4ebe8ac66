#include "ooxmlfixtures.h"
#include "reports/docxtemplate.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace fenlark;
using namespace fixtures;

namespace {

QString paragraph(const QString &inner)
{
    return QStringLiteral("<w:p><w:pPr><w:jc w:val=\"center\"/></w:pPr>") + inner + QStringLiteral("</w:p>");
}

QString run(const QString &text, const QString &format = {})
{
    return QStringLiteral("<w:r>") + (format.isEmpty() ? QString() : QStringLiteral("<w:rPr>") + format + QStringLiteral("</w:rPr>"))
        + QStringLiteral("<w:t xml:space=\"preserve\">") + text + QStringLiteral("</w:t></w:r>");
}

QString start(int id, const QString &name)
{
    return QStringLiteral("<w:bookmarkStart w:id=\"%1\" w:name=\"%2\"/>").arg(id).arg(name);
}

QString end(int id)
{
    return QStringLiteral("<w:bookmarkEnd w:id=\"%1\"/>").arg(id);
}

} // namespace

class TestDocxTemplate : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;

    QString out(const QString &name) const { return m_dir->filePath(name); }

    // Fills a template made of these parts and gives the saved document's path.
    QString fill(OoxmlPackage package, const QHash<QString, QString> &values, const QString &name = "template.docx")
    {
        const QString path = out(name);
        save(package, path);
        auto doc = DocxTemplate::open(path);
        if (!doc)
            qFatal("%s", qPrintable(doc.refusal().text()));
        const Outcome filled = doc->fillBookmarks(values);
        if (!filled)
            qFatal("%s", qPrintable(filled.refusal().text()));
        const QString result = out("letter.docx");
        if (!doc->save(result).ok())
            qFatal("not saved");
        return result;
    }

private Q_SLOTS:
    void init() { m_dir = std::make_unique<QTemporaryDir>(); }

    void bookmarkOverSeveralRunsTakesTheFirstRunsFormat()
    {
        const QString body = paragraph(run("Dear ") + start(0, "MadeBy") + run("Old", "<w:b/><w:color w:val=\"FF0000\"/>")
                                       + run(" name", "<w:i/>") + end(0) + run(","));
        const QString saved = fill(documentPackage(body), {{"MadeBy", "Ms Jo Ñúñez"}});
        const QByteArray xml = partOf(saved, "word/document.xml");
        QCOMPARE(documentText(xml), QString("Dear Ms Jo Ñúñez,"));
        const auto doc = parsed(xml);
        const pugi::xpath_node filled = doc.select_node("//w:r[w:t='Ms Jo Ñúñez']");
        QVERIFY(filled);
        QVERIFY(filled.node().child("w:rPr").child("w:b"));
        QVERIFY(!filled.node().child("w:rPr").child("w:i"));
        QCOMPARE(QString(filled.node().child("w:rPr").child("w:color").attribute("w:val").value()), QString("FF0000"));
        QVERIFY(doc.select_node("//w:bookmarkStart[@w:name='MadeBy']"));
    }

    void collapsedBookmarkTakesTheFormatOfTheTextBeforeIt()
    {
        const QString body = paragraph(run("Arrival: ", "<w:u w:val=\"single\"/>") + start(3, "Arrival") + end(3));
        const QString saved = fill(documentPackage(body), {{"Arrival", "Fri 03 July 2026"}});
        const auto doc = parsed(partOf(saved, "word/document.xml"));
        QCOMPARE(documentText(partOf(saved, "word/document.xml")), QString("Arrival: Fri 03 July 2026"));
        QVERIFY(doc.select_node("//w:r[w:t='Fri 03 July 2026']/w:rPr/w:u"));
    }

    void lineEndsBecomeBreaksTabsStayTabsAndMarkupIsEscaped()
    {
        const QString body = paragraph(start(1, "Rooms") + run("x") + end(1));
        const QString value = QStringLiteral("Double x 2 Adults @ R100.00\r\nTwin & \"Co\" <b>\tR5\nTotal - R1.00\x01");
        const QString saved = fill(documentPackage(body), {{"rooms", value}});
        QCOMPARE(documentText(partOf(saved, "word/document.xml")),
                 QString("Double x 2 Adults @ R100.00\nTwin & \"Co\" <b>\tR5\nTotal - R1.00"));
    }

    void headersAndFootersAreFilledToo()
    {
        const QString saved = fill(documentPackage(paragraph(run("Body")), paragraph(start(5, "BookingID") + end(5)),
                                                   paragraph(run("Ref ") + start(6, "Reference") + run("?") + end(6))),
                                   {{"BookingID", "42"}, {"Reference", "ABC-9"}});
        QCOMPARE(documentText(partOf(saved, "word/header1.xml")), QString("42"));
        QCOMPARE(documentText(partOf(saved, "word/footer1.xml")), QString("Ref ABC-9"));
    }

    void bookmarkAcrossParagraphsJoinsThem()
    {
        const QString body = paragraph(run("Notes: ") + start(2, "Notes") + run("first", "<w:b/>")) + paragraph(run("second"))
            + paragraph(run("third") + end(2) + run(" end"));
        const QString saved = fill(documentPackage(body), {{"Notes", "Late arrival"}});
        QCOMPARE(documentText(partOf(saved, "word/document.xml")), QString("Notes: Late arrival end"));
    }

    void templateIsSavedAsADocument()
    {
        const QString saved = fill(documentPackage(paragraph(run("Hello")), {}, {}, true), {}, "Confirmation.dotx");
        const QByteArray types = partOf(saved, "[Content_Types].xml");
        QVERIFY(types.contains("wordprocessingml.document.main+xml"));
        QVERIFY(!types.contains("template.main+xml"));
        QCOMPARE(documentText(partOf(saved, "word/document.xml")), QString("Hello"));
    }

    void bookmarksTheTemplateLacksOrValuesNotGivenChangeNothing()
    {
        const QString body = paragraph(run("Plain ") + start(0, "Other") + run("kept") + end(0));
        const QString saved = fill(documentPackage(body), {{"MadeBy", "Jo"}, {"Other", QString()}});
        QCOMPARE(documentText(partOf(saved, "word/document.xml")), QString("Plain "));
        const QString again = fill(documentPackage(body), {{"MadeBy", "Jo"}});
        QCOMPARE(documentText(partOf(again, "word/document.xml")), QString("Plain kept"));
    }

    void bookmarkEndingBeforeItStartsIsRefusedAndNothingIsWritten()
    {
        const QString path = out("broken.docx");
        OoxmlPackage p = documentPackage(paragraph(end(4) + run("x") + start(4, "MadeBy")));
        save(p, path);
        auto doc = DocxTemplate::open(path);
        QVERIFY(doc.ok());
        const Outcome filled = doc->fillBookmarks({{"MadeBy", "Jo"}});
        QVERIFY(!filled.ok());
        QCOMPARE(filled.refusal().id(), 6810);
        QVERIFY(filled.refusal().text().contains("MadeBy"));
    }

    void malformedOrForeignFilesAreRefused()
    {
        const QString path = out("malformed.docx");
        OoxmlPackage p = documentPackage(QStringLiteral("<w:p><w:r><w:t>open"));
        save(p, path);
        auto doc = DocxTemplate::open(path);
        QVERIFY(!doc.ok());
        QCOMPARE(doc.refusal().id(), 6805);

        OoxmlPackage sheet = workbookPackage();
        save(sheet, out("sheet.docx"));
        auto notText = DocxTemplate::open(out("sheet.docx"));
        QVERIFY(!notText.ok());
        QCOMPARE(notText.refusal().id(), 6809);
    }
};

QTEST_GUILESS_MAIN(TestDocxTemplate)
#include "test_docxtemplate.moc"
