#pragma once

#include "reports/cellreference.h"
#include "reports/ooxmlpackage.h"

#include <QHash>

#include <map>
#include <optional>

namespace fenlark {

// A workbook made from a template: the first worksheet's cells are found by the
// workbook's defined names, written with inline strings and numbers that keep the
// cell's own style, and rows are inserted the way a spreadsheet inserts them
// (everything below moves down: cells, merged ranges, names, conditional formats,
// formulas, drawings). The workbook is saved as a new file: the spreadsheet program
// recalculates every formula when it opens it.
class XlsxTemplate {
public:
    static Result<XlsxTemplate> open(const QString &path);

    // The first cell of a defined name that points at the first sheet; none when the
    // workbook has no such name (names compare without regard to case).
    std::optional<CellRef> namedCell(const QString &name) const;

    void setText(CellRef cell, const QString &text, bool bold = false);
    void setNumber(CellRef cell, double value, bool bold = false);
    // A formula without its "=".
    void setFormula(CellRef cell, const QString &formula);
    // The cell's formula without "=", empty when it holds none.
    QString formula(CellRef cell) const;

    // Inserts count empty rows before row `at`; the new rows take the styles of the
    // row that was at `at`, so they look like the template's own lines.
    void insertRows(int at, int count);

    // Defines (or redefines) a workbook name as a range of the first sheet.
    void defineName(const QString &name, CellRef first, CellRef last);

    Outcome save(const QString &path) const { return m_package.save(path); }

private:
    XlsxTemplate() = default;
    Outcome load();
    pugi::xml_node row(int number, bool create);
    pugi::xml_node cell(CellRef at, bool create);
    const pugi::xml_node cellNode(CellRef at) const;
    void clearCell(pugi::xml_node cell) const;
    void setStyle(pugi::xml_node cell, bool bold);
    int boldStyle(int style);
    void indexRows();
    void shiftDrawing(int at, int count);
    QString qualifiedSheet() const;

    OoxmlPackage m_package;
    QString m_sheetName;
    QString m_drawingPart;
    pugi::xml_node m_workbook;
    pugi::xml_node m_sheet;
    pugi::xml_node m_sheetData;
    pugi::xml_node m_styles;
    std::map<int, pugi::xml_node> m_rows;
    QHash<int, int> m_boldStyles;
};

} // namespace fenlark
