#pragma once

// Small Office Open XML files built in the tests, and readers of what the
// engines wrote: the saved zip is opened again and its XML inspected.
#include "reports/ooxmlpackage.h"

#include <QString>
#include <QtTest>

namespace fixtures {

inline const QString ContentTypesHead = QStringLiteral(
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>"
    "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
    "<Default Extension=\"rels\" ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
    "<Default Extension=\"xml\" ContentType=\"application/xml\"/>");

inline QString rels(const QString &body)
{
    return QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
                          "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">")
        + body + QStringLiteral("</Relationships>");
}

inline QString relationship(const QString &id, const QString &type, const QString &target)
{
    return QStringLiteral("<Relationship Id=\"%1\" Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/%2\" Target=\"%3\"/>")
        .arg(id, type, target);
}

inline void save(fenlark::OoxmlPackage &package, const QString &path)
{
    const fenlark::Outcome saved = package.save(path);
    QVERIFY2(saved.ok(), qPrintable(saved.ok() ? QString() : saved.refusal().text()));
}

// A workbook whose first sheet "Invoice" holds: B2 (style 1), a line area A5/E5
// and A6 (styles 2 and 3), a total in E10 =SUM(E5:E9) with a stale cached value,
// a merged A12:C12, a conditional format on E5:E9 and a calculation chain.
inline QString sheetXml()
{
    return QStringLiteral(
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>"
        "<worksheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\" "
        "xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\">"
        "<dimension ref=\"A1:E12\"/><sheetData>"
        "<row r=\"2\"><c r=\"B2\" s=\"1\"/></row>"
        "<row r=\"5\" ht=\"18\" customHeight=\"1\"><c r=\"A5\" s=\"2\"/><c r=\"E5\" s=\"3\"/></row>"
        "<row r=\"6\"><c r=\"A6\" s=\"2\"><v>7</v></c></row>"
        "<row r=\"10\"><c r=\"E10\" s=\"3\"><f>SUM(E5:E9)</f><v>0</v></c></row>"
        "<row r=\"12\"><c r=\"A12\" t=\"inlineStr\"><is><t>Thank you</t></is></c></row>"
        "</sheetData><mergeCells count=\"1\"><mergeCell ref=\"A12:C12\"/></mergeCells>"
        "<conditionalFormatting sqref=\"E5:E9\"><cfRule type=\"expression\" priority=\"1\"><formula>E5&gt;100</formula></cfRule>"
        "</conditionalFormatting></worksheet>");
}

inline QString workbookXml(const QString &names)
{
    return QStringLiteral(
               "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>"
               "<workbook xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\" "
               "xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\">"
               "<sheets><sheet name=\"Invoice\" sheetId=\"1\" r:id=\"rId1\"/></sheets><definedNames>")
        + names + QStringLiteral("</definedNames><calcPr calcId=\"191029\"/></workbook>");
}

inline QString stylesXml()
{
    return QStringLiteral(
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>"
        "<styleSheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\">"
        "<numFmts count=\"1\"><numFmt numFmtId=\"164\" formatCode=\"#,##0.00\"/></numFmts>"
        "<fonts count=\"2\"><font><sz val=\"11\"/><name val=\"Calibri\"/></font>"
        "<font><i/><sz val=\"11\"/><name val=\"Calibri\"/></font></fonts>"
        "<fills count=\"1\"><fill><patternFill patternType=\"none\"/></fill></fills>"
        "<borders count=\"1\"><border/></borders>"
        "<cellStyleXfs count=\"1\"><xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\"/></cellStyleXfs>"
        "<cellXfs count=\"4\"><xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\" xfId=\"0\"/>"
        "<xf numFmtId=\"0\" fontId=\"1\" fillId=\"0\" borderId=\"0\" xfId=\"0\" applyFont=\"1\"/>"
        "<xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\" xfId=\"0\"/>"
        "<xf numFmtId=\"164\" fontId=\"0\" fillId=\"0\" borderId=\"0\" xfId=\"0\" applyNumberFormat=\"1\"/></cellXfs>"
        "</styleSheet>");
}

inline QString defaultNames()
{
    return QStringLiteral("<definedName name=\"VMName\">Invoice!$B$2</definedName>"
                          "<definedName name=\"VMInvLine\">Invoice!$A$5</definedName>"
                          "<definedName name=\"Total\">Invoice!$E$10:$E$10</definedName>"
                          "<definedName name=\"Elsewhere\">'Other sheet'!$A$5</definedName>");
}

inline fenlark::OoxmlPackage workbookPackage(const QString &sheet = sheetXml(), const QString &names = defaultNames())
{
    fenlark::OoxmlPackage p;
    p.setXml(QStringLiteral("[Content_Types].xml"),
             ContentTypesHead
                 + QStringLiteral(
                     "<Override PartName=\"/xl/workbook.xml\" ContentType=\"application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml\"/>"
                     "<Override PartName=\"/xl/worksheets/sheet1.xml\" ContentType=\"application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml\"/>"
                     "<Override PartName=\"/xl/styles.xml\" ContentType=\"application/vnd.openxmlformats-officedocument.spreadsheetml.styles+xml\"/>"
                     "<Override PartName=\"/xl/calcChain.xml\" ContentType=\"application/vnd.openxmlformats-officedocument.spreadsheetml.calcChain+xml\"/>"
                     "</Types>"));
    p.setXml(QStringLiteral("_rels/.rels"), rels(relationship("rId1", "officeDocument", "xl/workbook.xml")));
    p.setXml(QStringLiteral("xl/workbook.xml"), workbookXml(names));
    p.setXml(QStringLiteral("xl/_rels/workbook.xml.rels"),
             rels(relationship("rId1", "worksheet", "worksheets/sheet1.xml") + relationship("rId2", "styles", "styles.xml")
                  + relationship("rId3", "calcChain", "calcChain.xml")));
    p.setXml(QStringLiteral("xl/worksheets/sheet1.xml"), sheet);
    p.setXml(QStringLiteral("xl/styles.xml"), stylesXml());
    p.setXml(QStringLiteral("xl/calcChain.xml"),
             QStringLiteral("<calcChain xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\"><c r=\"E10\" i=\"1\"/></calcChain>"));
    return p;
}

// A document (or template) whose body is bodyXml, with a header and a footer.
inline fenlark::OoxmlPackage documentPackage(const QString &bodyXml, const QString &headerXml = {},
                                             const QString &footerXml = {}, bool asTemplate = false)
{
    const QString ns = QStringLiteral("xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\" "
                                      "xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\"");
    const QString mainType = asTemplate ? QStringLiteral("template") : QStringLiteral("document");
    fenlark::OoxmlPackage p;
    p.setXml(QStringLiteral("[Content_Types].xml"),
             ContentTypesHead
                 + QStringLiteral("<Override PartName=\"/word/document.xml\" ContentType=\"application/vnd.openxmlformats-officedocument.wordprocessingml.%1.main+xml\"/>"
                                  "<Override PartName=\"/word/header1.xml\" ContentType=\"application/vnd.openxmlformats-officedocument.wordprocessingml.header+xml\"/>"
                                  "<Override PartName=\"/word/footer1.xml\" ContentType=\"application/vnd.openxmlformats-officedocument.wordprocessingml.footer+xml\"/>"
                                  "</Types>")
                       .arg(mainType));
    p.setXml(QStringLiteral("_rels/.rels"), rels(relationship("rId1", "officeDocument", "word/document.xml")));
    p.setXml(QStringLiteral("word/_rels/document.xml.rels"),
             rels(relationship("rId1", "header", "header1.xml") + relationship("rId2", "footer", "footer1.xml")));
    p.setXml(QStringLiteral("word/document.xml"),
             QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?><w:document %1><w:body>%2"
                            "<w:sectPr><w:headerReference w:type=\"default\" r:id=\"rId1\"/>"
                            "<w:footerReference w:type=\"default\" r:id=\"rId2\"/></w:sectPr></w:body></w:document>")
                 .arg(ns, bodyXml));
    p.setXml(QStringLiteral("word/header1.xml"), QStringLiteral("<w:hdr %1>%2</w:hdr>").arg(ns, headerXml.isEmpty() ? QStringLiteral("<w:p/>") : headerXml));
    p.setXml(QStringLiteral("word/footer1.xml"), QStringLiteral("<w:ftr %1>%2</w:ftr>").arg(ns, footerXml.isEmpty() ? QStringLiteral("<w:p/>") : footerXml));
    return p;
}

// The XML of one part of a saved file.
inline QByteArray partOf(const QString &path, const QString &part)
{
    auto package = fenlark::OoxmlPackage::open(path);
    if (!package)
        return {};
    return package->bytes(part);
}

inline pugi::xml_document parsed(const QByteArray &xml)
{
    pugi::xml_document doc;
    doc.load_buffer(xml.constData(), static_cast<size_t>(xml.size()), pugi::parse_default | pugi::parse_ws_pcdata_single);
    return doc;
}

// The cell element of a sheet's XML by its name ("E10"); empty when absent.
inline pugi::xml_node cellIn(const pugi::xml_document &sheet, const char *name)
{
    return sheet.document_element().child("sheetData").find_node(
        [&](pugi::xml_node n) { return std::strcmp(n.name(), "c") == 0 && std::strcmp(n.attribute("r").value(), name) == 0; });
}

// What a cell shows: its inline text, number or formula ("=..." for a formula).
inline QString cellShows(const pugi::xml_document &sheet, const char *name)
{
    const pugi::xml_node c = cellIn(sheet, name);
    if (c.child("f"))
        return QStringLiteral("=") + QString::fromUtf8(c.child("f").child_value());
    if (c.child("is"))
        return QString::fromUtf8(c.child("is").child("t").child_value());
    return QString::fromUtf8(c.child("v").child_value());
}

// The text of a document part: runs' text, "\n" for a line break, "\t" for a
// tab and "|" between paragraphs.
inline QString documentText(const QByteArray &xml)
{
    const pugi::xml_document doc = parsed(xml);
    QString text;
    bool firstParagraph = true;
    for (const pugi::xpath_node &p : doc.select_nodes("//w:p")) {
        if (!firstParagraph)
            text += QLatin1Char('|');
        firstParagraph = false;
        pugi::xpath_node_set pieces = p.node().select_nodes(".//w:t | .//w:br | .//w:tab");
        pieces.sort();
        for (const pugi::xpath_node &x : pieces) {
            const pugi::xml_node n = x.node();
            if (std::strcmp(n.name(), "w:t") == 0)
                text += QString::fromUtf8(n.child_value());
            else if (std::strcmp(n.name(), "w:br") == 0)
                text += QLatin1Char('\n');
            else
                text += QLatin1Char('\t');
        }
    }
    return text;
}

} // namespace fixtures
