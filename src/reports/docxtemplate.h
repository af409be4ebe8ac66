#pragma once

#include "reports/ooxmlpackage.h"

#include <QHash>

namespace fenlark {

// A text document made from a .docx or .dotx template by filling its bookmarks,
// in the body and in every header and footer. A filled bookmark holds the value
// as text in the format of the first run it covered (a collapsed bookmark takes
// the format of the text before it); line ends in a value become line breaks and
// tabs become tabs. A template is always saved as a document.
class DocxTemplate {
public:
    static Result<DocxTemplate> open(const QString &path);

    // Fills every bookmark whose name (without regard to case) is a key of values;
    // bookmarks the template lacks are left out. Refused, before anything is
    // changed, when a bookmark that would be filled ends before it starts.
    Outcome fillBookmarks(const QHash<QString, QString> &values);

    Outcome save(const QString &path) const { return m_package.save(path); }

private:
    DocxTemplate() = default;

    OoxmlPackage m_package;
    std::vector<pugi::xml_node> m_stories;   // document, headers, footers
};

} // namespace fenlark
