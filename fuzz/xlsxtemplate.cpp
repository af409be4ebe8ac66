// The workbook template reader on a damaged or hostile workbook: opening refuses
// or succeeds, and whatever opens can be filled, grown and saved.

#include "ooxmlinput.h"
#include "reports/xlsxtemplate.h"

using namespace fenlark;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString path = fuzzsupport::packageFromInput(
        QStringLiteral("invoice.xlsx"),
        {QStringLiteral("[Content_Types].xml"), QStringLiteral("_rels/.rels"), QStringLiteral("xl/workbook.xml"),
         QStringLiteral("xl/_rels/workbook.xml.rels"), QStringLiteral("xl/worksheets/sheet1.xml"), QStringLiteral("xl/styles.xml")},
        data, size);
    Result<XlsxTemplate> workbook = XlsxTemplate::open(path);
    if (!workbook)
        return 0;
    for (const char *name : {"VMInvNo", "VMInvoiceTo", "VMInvLine", "End", "missing"}) {
        if (const auto cell = workbook->namedCell(QString::fromLatin1(name))) {
            workbook->setText(*cell, QStringLiteral("text & <more>"), true);
            workbook->setNumber(*cell, 12.5);
            (void)workbook->formula(*cell);
        }
    }
    workbook->setFormula(CellRef{3, 2}, QStringLiteral("SUM(B1:B2)"));
    workbook->insertRows(2, 3);
    workbook->defineName(QStringLiteral("Added"), CellRef{1, 1}, CellRef{4, 2});
    (void)workbook->save(fuzzsupport::scratch().filePath(QStringLiteral("output.xlsx")));
    return 0;
}
