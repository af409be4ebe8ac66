// The document template reader on a damaged or hostile document: opening refuses
// or succeeds, and whatever opens can have its bookmarks filled and be saved.

#include "ooxmlinput.h"
#include "reports/docxtemplate.h"

using namespace fenlark;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString path = fuzzsupport::packageFromInput(
        QStringLiteral("Confirmation.docx"),
        {QStringLiteral("[Content_Types].xml"), QStringLiteral("_rels/.rels"), QStringLiteral("word/document.xml"),
         QStringLiteral("word/_rels/document.xml.rels"), QStringLiteral("word/styles.xml"), QStringLiteral("word/footer1.xml")},
        data, size);
    Result<DocxTemplate> document = DocxTemplate::open(path);
    if (!document)
        return 0;
    const QHash<QString, QString> values = {{QStringLiteral("MadeBy"), QStringLiteral("Anna\nWalker\tsr")},
                                            {QStringLiteral("Arrival"), QStringLiteral("2027-01-10")},
                                            {QStringLiteral("guestnames"), QStringLiteral("Fen & <Lodge>")}};
    if (document->fillBookmarks(values))
        (void)document->save(fuzzsupport::scratch().filePath(QStringLiteral("output.docx")));
    return 0;
}
