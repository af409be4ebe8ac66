#include "ooxmlfixtures.h"
#include "reports/cellreference.h"
#include "reports/xlsxtemplate.h"

#include <QCryptographicHash>
#include <QTemporaryDir>
#include <QtTest>

using namespace fenlark;
using namespace fixtures;

class TestXlsxTemplate : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_template;

    QString out(const QString &name) const { return m_dir->filePath(name); }

    XlsxTemplate openTemplate()
    {
        auto t = XlsxTemplate::open(m_template);
        if (!t)
            qFatal("template did not open: %s", qPrintable(t.refusal().text()));
        return std::move(*t);
    }

private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_template = out(QStringLiteral("template.xlsx"));
        OoxmlPackage p = workbookPackage();
        save(p, m_template);
    }

    void formulaReferencesMoveLikeTheSpreadsheetMovesThem_data()
    {
        QTest::addColumn<QString>("formula");
        QTest::addColumn<QString>("expected");
        // Rows inserted: 3 before row 5, on sheet "Invoice".
        QTest::newRow("range grows") << "SUM(E2:E9)" << "SUM(E2:E12)";
        QTest::newRow("range below moves") << "SUM(E5:E9)" << "SUM(E8:E12)";
        QTest::newRow("above stays") << "A4*2" << "A4*2";
        QTest::newRow("absolute moves") << "$E$10+E$5" << "$E$13+E$8";
        QTest::newRow("own sheet named") << "Invoice!E6+'Invoice'!F7" << "Invoice!E9+'Invoice'!F10";
        QTest::newRow("other sheet stays") << "Rates!E6+'Other sheet'!A5:B9" << "Rates!E6+'Other sheet'!A5:B9";
        QTest::newRow("text stays") << "IF(A6>0,\"see A6\",A7)" << "IF(A9>0,\"see A6\",A10)";
        QTest::newRow("function names stay") << "LOG10(A6)+ATAN2(1,2)" << "LOG10(A9)+ATAN2(1,2)";
        QTest::newRow("names and numbers stay") << "AccomTotal*1.5E+3+VAT_Rate" << "AccomTotal*1.5E+3+VAT_Rate";
        QTest::newRow("whole rows") << "SUM($5:$6)+SUM(2:3)" << "SUM($8:$9)+SUM(2:3)";
        QTest::newRow("lower case") << "sum(e5:e6)" << "sum(E8:E9)";
        QTest::newRow("external stays") << "[1]Invoice!A6" << "[1]Invoice!A6";
    }
    void formulaReferencesMoveLikeTheSpreadsheetMovesThem()
    {
        QFETCH(QString, formula);
        QFETCH(QString, expected);
        QCOMPARE(shiftFormulaRows(formula, 5, 3, QStringLiteral("Invoice")), expected);
    }

    void definedNamesMoveOnlyWhenTheyNameTheSheet()
    {
        QCOMPARE(shiftFormulaRows("Invoice!$A$5", 5, 2, "Invoice", false), QString("Invoice!$A$7"));
        QCOMPARE(shiftFormulaRows("$A$5", 5, 2, "Invoice", false), QString("$A$5"));
        QCOMPARE(shiftRangeList("A5:C5 E1 E9", 5, 1), QString("A6:C6 E1 E10"));
    }

    void namedCellsAreFoundWithoutRegardToCase()
    {
        const XlsxTemplate t = openTemplate();
        QCOMPARE(t.namedCell("vminvline"), std::optional<CellRef>(CellRef{5, 1}));
        QCOMPARE(t.namedCell("Total"), std::optional<CellRef>(CellRef{10, 5}));
        QVERIFY(!t.namedCell("Elsewhere"));   // another sheet's cell
        QVERIFY(!t.namedCell("VMDeposit"));
    }

    void insertedRowsMoveCellsMergesNamesConditionalFormatsAndFormulas()
    {
        XlsxTemplate t = openTemplate();
        t.insertRows(5, 3);
        QCOMPARE(t.namedCell("VMInvLine"), std::optional<CellRef>(CellRef{8, 1}));
        QCOMPARE(t.namedCell("VMName"), std::optional<CellRef>(CellRef{2, 2}));
        QVERIFY(t.save(out("moved.xlsx")).ok());

        const auto sheet = parsed(partOf(out("moved.xlsx"), "xl/worksheets/sheet1.xml"));
        QCOMPARE(cellShows(sheet, "E13"), QString("=SUM(E8:E12)"));
        QCOMPARE(cellShows(sheet, "A9"), QString("7"));
        QVERIFY(!cellIn(sheet, "E10"));
        // The new rows look like the row they pushed down, without its values.
        for (const char *name : {"A5", "A6", "A7"})
            QCOMPARE(cellIn(sheet, name).attribute("s").as_int(), 2);
        QCOMPARE(cellIn(sheet, "E7").attribute("s").as_int(), 3);
        const pugi::xml_node root = sheet.document_element();
        QCOMPARE(root.child("sheetData").find_child_by_attribute("row", "r", "6").attribute("ht").as_int(), 18);
        QCOMPARE(QString(root.child("mergeCells").child("mergeCell").attribute("ref").value()), QString("A15:C15"));
        const pugi::xml_node cf = root.child("conditionalFormatting");
        QCOMPARE(QString(cf.attribute("sqref").value()), QString("E8:E12"));
        QCOMPARE(QString(cf.child("cfRule").child("formula").child_value()), QString("E8>100"));
        QCOMPARE(QString(root.child("dimension").attribute("ref").value()), QString("A1:E15"));
        // Rows stay in order, numbered once each.
        int last = 0;
        for (pugi::xml_node r : root.child("sheetData").children("row")) {
            QVERIFY(r.attribute("r").as_int() > last);
            last = r.attribute("r").as_int();
        }
        const auto book = parsed(partOf(out("moved.xlsx"), "xl/workbook.xml"));
        const pugi::xml_node names = book.document_element().child("definedNames");
        QCOMPARE(QString(names.find_child_by_attribute("name", "Total").child_value()), QString("Invoice!$E$13:$E$13"));
        QCOMPARE(QString(names.find_child_by_attribute("name", "Elsewhere").child_value()), QString("'Other sheet'!$A$5"));
    }

    void writtenCellsKeepTheirStyleAndEscapeTheirText()
    {
        XlsxTemplate t = openTemplate();
        const QString name = QStringLiteral("Smith & <Sons> \"Ltd\" Ñoño 李");
        t.setText({2, 2}, name);
        t.setText({5, 1}, "Accommodation", true);
        t.setNumber({5, 5}, 1234.5);
        t.setText({20, 3}, "  two\nlines ");
        QVERIFY(t.save(out("written.xlsx")).ok());

        const auto sheet = parsed(partOf(out("written.xlsx"), "xl/worksheets/sheet1.xml"));
        QCOMPARE(cellShows(sheet, "B2"), name);
        QCOMPARE(cellIn(sheet, "B2").attribute("s").as_int(), 1);
        QCOMPARE(QString(cellIn(sheet, "B2").attribute("t").value()), QString("inlineStr"));
        QCOMPARE(cellShows(sheet, "E5"), QString("1234.5"));
        QCOMPARE(cellIn(sheet, "E5").attribute("s").as_int(), 3);
        QCOMPARE(cellShows(sheet, "C20"), QString("  two\nlines "));

        // Bold is a copy of the cell's own style with a bold copy of its font.
        const auto styles = parsed(partOf(out("written.xlsx"), "xl/styles.xml"));
        const int bold = cellIn(sheet, "A5").attribute("s").as_int();
        QCOMPARE(bold, 4);
        const pugi::xml_node xfs = styles.document_element().child("cellXfs");
        QCOMPARE(xfs.attribute("count").as_int(), 5);
        pugi::xml_node xf = xfs.first_child();
        for (int i = 0; i < bold; ++i)
            xf = xf.next_sibling();
        const int font = xf.attribute("fontId").as_int();
        pugi::xml_node f = styles.document_element().child("fonts").first_child();
        for (int i = 0; i < font; ++i)
            f = f.next_sibling();
        QVERIFY(f.child("b"));
        QCOMPARE(QString(f.child("name").attribute("val").value()), QString("Calibri"));
    }

    void savedWorkbookRecalculatesOnLoadAndLeavesTheTemplateAlone()
    {
        QFile file(m_template);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray before = QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256);
        file.close();

        XlsxTemplate t = openTemplate();
        t.insertRows(6, 1);
        t.defineName("AccomTotal", {5, 5}, {9, 5});
        QVERIFY(t.save(out("book.xlsx")).ok());

        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256), before);

        auto saved = OoxmlPackage::open(out("book.xlsx"));
        QVERIFY(saved.ok());
        QVERIFY(!saved->contains("xl/calcChain.xml"));
        QVERIFY(!saved->bytes("[Content_Types].xml").contains("calcChain"));
        QVERIFY(!saved->bytes("xl/_rels/workbook.xml.rels").contains("calcChain"));
        const auto book = parsed(saved->bytes("xl/workbook.xml"));
        QCOMPARE(book.document_element().child("calcPr").attribute("fullCalcOnLoad").as_int(), 1);
        QCOMPARE(QString(book.document_element().child("definedNames").find_child_by_attribute("name", "AccomTotal").child_value()),
                 QString("Invoice!$E$5:$E$9"));
        // The formula's cached value from the template is gone.
        const auto sheet = parsed(saved->bytes("xl/worksheets/sheet1.xml"));
        QVERIFY(cellIn(sheet, "E11").child("f"));
        QVERIFY(!cellIn(sheet, "E11").child("v"));
    }

    void unreadableTemplatesAreRefusedWithTheirReason_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<int>("refusal");
        QByteArray valid;
        {
            OoxmlPackage p = workbookPackage();
            valid = p.toZip();
        }
        QTest::newRow("empty") << QByteArray() << 6802;
        QTest::newRow("not a zip") << QByteArray("VMInvLine,VMDeposit\n1,2\n") << 6803;
        QTest::newRow("cut short") << valid.left(valid.size() / 2) << 6803;
        QByteArray damaged = valid;
        damaged[damaged.size() / 3] = static_cast<char>(damaged[damaged.size() / 3] ^ 0x55);
        QTest::newRow("damaged") << damaged << 6803;
        {
            OoxmlPackage p = workbookPackage(QStringLiteral("<worksheet><sheetData><row r=\"1\"></sheetData>"));
            QTest::newRow("malformed sheet") << p.toZip() << 6805;
        }
        {
            OoxmlPackage p = workbookPackage();
            p.remove("xl/workbook.xml");
            QTest::newRow("no workbook") << p.toZip() << 6806;
        }
    }
    void unreadableTemplatesAreRefusedWithTheirReason()
    {
        QFETCH(QByteArray, content);
        QFETCH(int, refusal);
        const QString path = out("bad.xlsx");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        auto t = XlsxTemplate::open(path);
        QVERIFY(!t.ok());
        QCOMPARE(t.refusal().id(), refusal);
    }

    void missingTemplateIsRefused()
    {
        auto t = XlsxTemplate::open(out("nowhere.xlsx"));
        QVERIFY(!t.ok());
        QCOMPARE(t.refusal().id(), 6800);
    }

    void documentThatIsOpenOrCannotBeWrittenIsRefusedLeavingNothingBehind()
    {
        XlsxTemplate t = openTemplate();
        const QString target = out("Inv000042.xlsx");
        QFile lock(out(".~lock.Inv000042.xlsx#"));
        QVERIFY(lock.open(QIODevice::WriteOnly));
        lock.close();
        Outcome saved = t.save(target);
        QVERIFY(!saved.ok());
        QCOMPARE(saved.refusal().id(), 6807);
        QVERIFY(saved.refusal().text().contains("You may have the file open already."));
        QVERIFY(!QFile::exists(target));
        lock.remove();
        QFile otherSuite(out("~$Inv000042.xlsx"));
        QVERIFY(otherSuite.open(QIODevice::WriteOnly));
        otherSuite.close();
        QCOMPARE(t.save(target).refusal().id(), 6807);
        otherSuite.remove();
        QVERIFY(!QFile::exists(target));

        saved = t.save(m_template + QStringLiteral("/inside-a-file.xlsx"));
        QCOMPARE(saved.refusal().id(), 6807);
        QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden), QStringList{"template.xlsx"});
    }
};

QTEST_GUILESS_MAIN(TestXlsxTemplate)
#include "test_xlsxtemplate.moc"
