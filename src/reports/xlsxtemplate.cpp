#include "reports/xlsxtemplate.h"

#include <QDir>
#include <QLocale>

#include <cstring>
#include <vector>

namespace fenlark {

namespace {

QByteArray utf8(const QString &text)
{
    return text.toUtf8();
}

QString textOf(const pugi::char_t *value)
{
    return QString::fromUtf8(value);
}

bool endsWith(const QString &text, const char *suffix)
{
    return text.endsWith(QLatin1String(suffix));
}

// The attribute of the relationships namespace that names a part ("r:id").
pugi::xml_attribute relationshipId(pugi::xml_node node)
{
    for (pugi::xml_attribute a : node.attributes()) {
        const char *name = a.name();
        const std::size_t length = std::strlen(name);
        if (length > 3 && std::strcmp(name + length - 3, ":id") == 0)
            return a;
    }
    return {};
}

int rowNumberOf(pugi::xml_node row)
{
    return row.attribute("r").as_int();
}

QByteArray renamedCell(const char *name, int row)
{
    const char *p = name;
    while (*p && !(*p >= '0' && *p <= '9'))
        ++p;
    return QByteArray(name, static_cast<qsizetype>(p - name)) + QByteArray::number(row);
}

void shiftAttribute(pugi::xml_attribute attribute, int at, int count)
{
    if (attribute)
        attribute.set_value(utf8(shiftRangeList(textOf(attribute.value()), at, count)).constData());
}

void shiftFormulaText(pugi::xml_node node, int at, int count, const QString &sheet)
{
    const QString before = textOf(node.child_value());
    if (before.isEmpty())
        return;
    const QString after = shiftFormulaRows(before, at, count, sheet, true);
    if (after != before)
        node.text().set(utf8(after).constData());
}

Refusal notSpreadsheet(const QString &path)
{
    return Refusal(6806, QStringLiteral("The file %1 is not a spreadsheet: it has no worksheet."), 6801,
                   QStringLiteral("Could not read the template"))
        .arg(QDir::toNativeSeparators(path));
}

// Inserts a child named name after the last present of the elements that must come
// before it in the schema's order, or first when none of them is there.
pugi::xml_node insertInOrder(pugi::xml_node parent, const char *name, std::initializer_list<const char *> before)
{
    pugi::xml_node anchor;
    for (pugi::xml_node child : parent.children())
        for (const char *b : before)
            if (std::strcmp(child.name(), b) == 0)
                anchor = child;
    return anchor ? parent.insert_child_after(name, anchor) : parent.prepend_child(name);
}

} // namespace

Result<XlsxTemplate> XlsxTemplate::open(const QString &path)
{
    Result<OoxmlPackage> package = OoxmlPackage::open(path);
    if (!package)
        return package.refusal();
    XlsxTemplate workbook;
    workbook.m_package = std::move(*package);
    if (Outcome loaded = workbook.load(); !loaded)
        return loaded.refusal();
    return workbook;
}

Outcome XlsxTemplate::load()
{
    const QString path = m_package.path();
    QString bookPart;
    for (const auto &r : m_package.relationships(QString()))
        if (endsWith(r.type, "/officeDocument"))
            bookPart = r.target;
    auto book = m_package.xml(bookPart.isEmpty() ? QStringLiteral("xl/workbook.xml") : bookPart);
    if (!book)
        return book.refusal();
    if (!*book)
        return notSpreadsheet(path);
    if (bookPart.isEmpty())
        bookPart = QStringLiteral("xl/workbook.xml");
    m_workbook = (*book)->document_element();
    const pugi::xml_node first = m_workbook.child("sheets").child("sheet");
    if (!first)
        return notSpreadsheet(path);
    m_sheetName = textOf(first.attribute("name").value());
    const QString sheetId = textOf(relationshipId(first).value());

    QString sheetPart, stylesPart, calcChainPart;
    for (const auto &r : m_package.relationships(bookPart)) {
        if (r.id == sheetId)
            sheetPart = r.target;
        else if (endsWith(r.type, "/styles"))
            stylesPart = r.target;
        else if (endsWith(r.type, "/calcChain"))
            calcChainPart = r.target;
    }
    auto sheet = m_package.xml(sheetPart);
    if (!sheet)
        return sheet.refusal();
    if (sheetPart.isEmpty() || !*sheet)
        return notSpreadsheet(path);
    m_sheet = (*sheet)->document_element();
    m_sheetData = m_sheet.child("sheetData");
    if (!m_sheetData)
        return notSpreadsheet(path);

    if (!stylesPart.isEmpty()) {
        auto styles = m_package.xml(stylesPart);
        if (!styles)
            return styles.refusal();
        if (*styles)
            m_styles = (*styles)->document_element();
    }
    for (const auto &r : m_package.relationships(sheetPart))
        if (endsWith(r.type, "/drawing"))
            m_drawingPart = r.target;

    // The calculation chain would name cells that moved; without it, and with a full
    // recalculation asked for, the spreadsheet works every formula out afresh.
    if (!calcChainPart.isEmpty()) {
        m_package.remove(calcChainPart);
        m_package.setOverrideContentType(calcChainPart, QString());
        m_package.removeRelationshipsTo(bookPart, calcChainPart);
    }
    pugi::xml_node calc = m_workbook.child("calcPr");
    if (!calc)
        calc = insertInOrder(m_workbook, "calcPr",
                             {"fileVersion", "fileSharing", "workbookPr", "workbookProtection", "bookViews", "sheets",
                              "functionGroups", "externalReferences", "definedNames"});
    (calc.attribute("fullCalcOnLoad") ? calc.attribute("fullCalcOnLoad") : calc.append_attribute("fullCalcOnLoad"))
        .set_value("1");

    // Rows and cells may leave out their numbers (they then follow on); every one gets
    // its number, and cached results of formulas go, as they would be stale.
    int expectedRow = 1;
    for (pugi::xml_node r : m_sheetData.children("row")) {
        if (!r.attribute("r"))
            r.append_attribute("r").set_value(expectedRow);
        const int number = rowNumberOf(r);
        expectedRow = number + 1;
        int expectedColumn = 1;
        for (pugi::xml_node c : r.children("c")) {
            if (!c.attribute("r"))
                c.prepend_attribute("r").set_value(utf8(cellName({number, expectedColumn})).constData());
            expectedColumn = columnOfCellName(c.attribute("r").value()) + 1;
            if (c.child("f")) {
                c.remove_child("v");
                c.remove_attribute("t");
            }
        }
    }
    indexRows();
    return Done{};
}

void XlsxTemplate::indexRows()
{
    m_rows.clear();
    for (pugi::xml_node r : m_sheetData.children("row"))
        m_rows[rowNumberOf(r)] = r;
}

QString XlsxTemplate::qualifiedSheet() const
{
    bool plain = !m_sheetName.isEmpty() && !m_sheetName.at(0).isDigit();
    for (const QChar c : m_sheetName)
        plain = plain && (c.isLetterOrNumber() || c == QLatin1Char('_'));
    if (plain)
        return m_sheetName;
    QString quoted = m_sheetName;
    quoted.replace(QLatin1Char('\''), QStringLiteral("''"));
    return QLatin1Char('\'') + quoted + QLatin1Char('\'');
}

std::optional<CellRef> XlsxTemplate::namedCell(const QString &name) const
{
    for (pugi::xml_node n : m_workbook.child("definedNames").children("definedName")) {
        if (textOf(n.attribute("name").value()).compare(name, Qt::CaseInsensitive) != 0)
            continue;
        if (n.attribute("localSheetId") && n.attribute("localSheetId").as_int() != 0)
            continue;
        QString reference = textOf(n.child_value()).trimmed();
        const int bang = reference.lastIndexOf(QLatin1Char('!'));
        if (bang >= 0) {
            QString sheet = reference.left(bang);
            if (sheet.startsWith(QLatin1Char('\'')) && sheet.endsWith(QLatin1Char('\'')) && sheet.size() >= 2)
                sheet = sheet.mid(1, sheet.size() - 2).replace(QStringLiteral("''"), QStringLiteral("'"));
            if (sheet.compare(m_sheetName, Qt::CaseInsensitive) != 0)
                continue;
            reference = reference.mid(bang + 1);
        }
        const CellRef cell = parseCellRef(reference.section(QLatin1Char(':'), 0, 0));
        if (cell.isValid())
            return cell;
    }
    return std::nullopt;
}

pugi::xml_node XlsxTemplate::row(int number, bool create)
{
    const auto found = m_rows.find(number);
    if (found != m_rows.end())
        return found->second;
    if (!create)
        return {};
    const auto after = m_rows.upper_bound(number);
    pugi::xml_node node =
        after == m_rows.end() ? m_sheetData.append_child("row") : m_sheetData.insert_child_before("row", after->second);
    node.append_attribute("r").set_value(number);
    m_rows[number] = node;
    return node;
}

pugi::xml_node XlsxTemplate::cell(CellRef at, bool create)
{
    pugi::xml_node r = row(at.row, create);
    if (!r)
        return {};
    pugi::xml_node before;
    for (pugi::xml_node c : r.children("c")) {
        const int column = columnOfCellName(c.attribute("r").value());
        if (column == at.column)
            return c;
        if (column > at.column) {
            before = c;
            break;
        }
    }
    if (!create)
        return {};
    pugi::xml_node c = before ? r.insert_child_before("c", before) : r.append_child("c");
    c.append_attribute("r").set_value(utf8(cellName(at)).constData());
    // A new cell looks like its row, or else like its column.
    int style = 0;
    if (r.attribute("customFormat").as_bool())
        style = r.attribute("s").as_int();
    else
        for (pugi::xml_node col : m_sheet.child("cols").children("col"))
            if (col.attribute("min").as_int() <= at.column && at.column <= col.attribute("max").as_int())
                style = col.attribute("style").as_int();
    if (style > 0)
        c.append_attribute("s").set_value(style);
    return c;
}

const pugi::xml_node XlsxTemplate::cellNode(CellRef at) const
{
    return const_cast<XlsxTemplate *>(this)->cell(at, false);
}

void XlsxTemplate::clearCell(pugi::xml_node c) const
{
    while (c.first_child())
        c.remove_child(c.first_child());
    for (pugi::xml_attribute a = c.first_attribute(); a;) {
        const pugi::xml_attribute next = a.next_attribute();
        if (std::strcmp(a.name(), "r") != 0 && std::strcmp(a.name(), "s") != 0)
            c.remove_attribute(a);
        a = next;
    }
}

int XlsxTemplate::boldStyle(int style)
{
    if (const auto known = m_boldStyles.constFind(style); known != m_boldStyles.cend())
        return *known;
    pugi::xml_node xfs = m_styles.child("cellXfs");
    pugi::xml_node fonts = m_styles.child("fonts");
    pugi::xml_node xf;
    int xfCount = 0;
    for (pugi::xml_node x : xfs.children("xf")) {
        if (xfCount == style)
            xf = x;
        ++xfCount;
    }
    int bold = style;
    if (xf && fonts) {
        const int fontId = xf.attribute("fontId").as_int();
        pugi::xml_node font;
        int fontCount = 0;
        for (pugi::xml_node f : fonts.children("font"))
            if (fontCount++ == fontId)
                font = f;
        const bool alreadyBold = font && font.child("b") && font.child("b").attribute("val").as_bool(true);
        if (font && !alreadyBold) {
            pugi::xml_node boldFont = fonts.append_copy(font);
            boldFont.remove_child("b");
            boldFont.prepend_child("b");
            (fonts.attribute("count") ? fonts.attribute("count") : fonts.append_attribute("count")).set_value(fontCount + 1);
            pugi::xml_node boldXf = xfs.append_copy(xf);
            (boldXf.attribute("fontId") ? boldXf.attribute("fontId") : boldXf.append_attribute("fontId")).set_value(fontCount);
            (boldXf.attribute("applyFont") ? boldXf.attribute("applyFont") : boldXf.append_attribute("applyFont")).set_value(1);
            (xfs.attribute("count") ? xfs.attribute("count") : xfs.append_attribute("count")).set_value(xfCount + 1);
            bold = xfCount;
        }
    }
    m_boldStyles.insert(style, bold);
    return bold;
}

void XlsxTemplate::setStyle(pugi::xml_node c, bool bold)
{
    if (!bold || !m_styles)
        return;
    const int style = boldStyle(c.attribute("s").as_int());
    if (style == c.attribute("s").as_int())
        return;
    if (!c.attribute("s"))
        c.insert_attribute_after("s", c.attribute("r"));
    c.attribute("s").set_value(style);
}

void XlsxTemplate::setText(CellRef at, const QString &text, bool bold)
{
    pugi::xml_node c = cell(at, true);
    clearCell(c);
    setStyle(c, bold);
    c.append_attribute("t").set_value("inlineStr");
    pugi::xml_node t = c.append_child("is").append_child("t");
    const QString safe = xmlSafeText(text);
    if (!safe.isEmpty() && (safe.front().isSpace() || safe.back().isSpace() || safe.contains(QLatin1Char('\n'))))
        t.append_attribute("xml:space").set_value("preserve");
    t.text().set(utf8(safe).constData());
}

void XlsxTemplate::setNumber(CellRef at, double value, bool bold)
{
    pugi::xml_node c = cell(at, true);
    clearCell(c);
    setStyle(c, bold);
    c.append_child("v").text().set(
        utf8(QString::number(value == 0.0 ? 0.0 : value, 'g', QLocale::FloatingPointShortest)).constData());
}

void XlsxTemplate::setFormula(CellRef at, const QString &formula)
{
    pugi::xml_node c = cell(at, true);
    clearCell(c);
    c.append_child("f").text().set(utf8(xmlSafeText(formula)).constData());
}

QString XlsxTemplate::formula(CellRef at) const
{
    const pugi::xml_node c = cellNode(at);
    return c ? textOf(c.child("f").child_value()) : QString();
}

void XlsxTemplate::insertRows(int at, int count)
{
    if (count < 1 || at < 1)
        return;
    const pugi::xml_node source = row(at, false);

    std::vector<pugi::xml_node> rows;
    for (pugi::xml_node r : m_sheetData.children("row"))
        rows.push_back(r);
    pugi::xml_node firstMoved;
    for (pugi::xml_node r : rows) {
        const int number = rowNumberOf(r);
        if (number >= at) {
            if (!firstMoved)
                firstMoved = r;
            r.attribute("r").set_value(number + count);
            for (pugi::xml_node c : r.children("c"))
                c.attribute("r").set_value(renamedCell(c.attribute("r").value(), number + count).constData());
        }
        for (pugi::xml_node c : r.children("c")) {
            if (pugi::xml_node f = c.child("f")) {
                shiftFormulaText(f, at, count, m_sheetName);
                shiftAttribute(f.attribute("ref"), at, count);
            }
        }
    }

    for (int k = 0; k < count; ++k) {
        pugi::xml_node fresh = firstMoved ? m_sheetData.insert_child_before("row", firstMoved) : m_sheetData.append_child("row");
        fresh.append_attribute("r").set_value(at + k);
        if (!source)
            continue;
        for (pugi::xml_attribute a : source.attributes())
            if (std::strcmp(a.name(), "r") != 0 && std::strcmp(a.name(), "spans") != 0)
                fresh.append_attribute(a.name()).set_value(a.value());
        for (pugi::xml_node c : source.children("c")) {
            pugi::xml_node copy = fresh.append_child("c");
            copy.append_attribute("r").set_value(renamedCell(c.attribute("r").value(), at + k).constData());
            if (c.attribute("s"))
                copy.append_attribute("s").set_value(c.attribute("s").value());
        }
    }

    shiftAttribute(m_sheet.child("dimension").attribute("ref"), at, count);
    shiftAttribute(m_sheet.child("autoFilter").attribute("ref"), at, count);
    for (pugi::xml_node m : m_sheet.child("mergeCells").children("mergeCell"))
        shiftAttribute(m.attribute("ref"), at, count);
    for (pugi::xml_node cf : m_sheet.children("conditionalFormatting")) {
        shiftAttribute(cf.attribute("sqref"), at, count);
        for (pugi::xml_node rule : cf.children("cfRule"))
            for (pugi::xml_node f : rule.children("formula"))
                shiftFormulaText(f, at, count, m_sheetName);
    }
    for (pugi::xml_node dv : m_sheet.child("dataValidations").children("dataValidation")) {
        shiftAttribute(dv.attribute("sqref"), at, count);
        shiftFormulaText(dv.child("formula1"), at, count, m_sheetName);
        shiftFormulaText(dv.child("formula2"), at, count, m_sheetName);
    }
    for (pugi::xml_node h : m_sheet.child("hyperlinks").children("hyperlink"))
        shiftAttribute(h.attribute("ref"), at, count);
    for (pugi::xml_node brk : m_sheet.child("rowBreaks").children("brk"))
        if (brk.attribute("id").as_int() >= at)
            brk.attribute("id").set_value(brk.attribute("id").as_int() + count);
    for (pugi::xml_node n : m_workbook.child("definedNames").children("definedName")) {
        const QString before = textOf(n.child_value());
        const QString after = shiftFormulaRows(before, at, count, m_sheetName, false);
        if (after != before)
            n.text().set(utf8(after).constData());
    }
    shiftDrawing(at, count);
    indexRows();
}

void XlsxTemplate::shiftDrawing(int at, int count)
{
    if (m_drawingPart.isEmpty())
        return;
    auto drawing = m_package.xml(m_drawingPart);
    if (!drawing || !*drawing)
        return;
    // Anchors count rows from 0.
    for (pugi::xml_node anchor : (*drawing)->document_element().children()) {
        for (pugi::xml_node end : anchor.children()) {
            const QString name = textOf(end.name());
            if (!name.endsWith(QLatin1String(":from")) && !name.endsWith(QLatin1String(":to")))
                continue;
            for (pugi::xml_node field : end.children()) {
                if (!textOf(field.name()).endsWith(QLatin1String(":row")))
                    continue;
                const int row = field.text().as_int();
                if (row + 1 >= at)
                    field.text().set(row + count);
            }
        }
    }
}

void XlsxTemplate::defineName(const QString &name, CellRef first, CellRef last)
{
    QString reference = qualifiedSheet() + QLatin1Char('!') + absoluteCellName(first);
    if (!(first == last))
        reference += QLatin1Char(':') + absoluteCellName(last);
    pugi::xml_node names = m_workbook.child("definedNames");
    if (!names)
        names = insertInOrder(m_workbook, "definedNames",
                              {"fileVersion", "fileSharing", "workbookPr", "workbookProtection", "bookViews", "sheets",
                               "functionGroups", "externalReferences"});
    pugi::xml_node target;
    for (pugi::xml_node n : names.children("definedName"))
        if (!n.attribute("localSheetId") && textOf(n.attribute("name").value()).compare(name, Qt::CaseInsensitive) == 0)
            target = n;
    if (!target) {
        target = names.append_child("definedName");
        target.append_attribute("name").set_value(utf8(name).constData());
    }
    target.text().set(utf8(reference).constData());
}

} // namespace fenlark
