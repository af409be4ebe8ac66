#pragma once

#include "shell/refusal.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <pugixml.hpp>

#include <map>
#include <memory>
#include <vector>

namespace fenlark {

// An Office Open XML file (.xlsx, .docx, .dotx) held whole in memory: the zip's
// entries in their order, with XML parts parsed when first asked for. Opening
// reads the file and lets go of it, so a template is never written to; saving
// builds the new zip in memory and writes it through a temporary file in the
// target folder that is renamed into place only when it is complete.
class OoxmlPackage {
public:
    // Refused when the file is missing, empty, not a zip or damaged.
    static Result<OoxmlPackage> open(const QString &path);
    // An empty package (tests and generated files start from one).
    OoxmlPackage() = default;

    QString path() const { return m_path; }
    bool contains(const QString &part) const;

    // The parsed XML of a part, or nullptr when the package has no such part.
    // Refused when the part is not well-formed XML.
    Result<pugi::xml_document *> xml(const QString &part);
    QByteArray bytes(const QString &part) const;
    void setBytes(const QString &part, const QByteArray &data);
    void setXml(const QString &part, const QString &xmlText);
    void remove(const QString &part);

    // Sets the content type of a part in [Content_Types].xml; an empty type drops it.
    void setOverrideContentType(const QString &part, const QString &contentType);
    // The parts whose override has that content type, in the file's order.
    QStringList partsOfContentType(const QString &contentType);

    // The relationships of a part: id, type and the target as a part name.
    struct Relationship {
        QString id;
        QString type;
        QString target;
    };
    std::vector<Relationship> relationships(const QString &sourcePart);
    // Drops every relationship of sourcePart that points at target.
    void removeRelationshipsTo(const QString &sourcePart, const QString &target);

    // The package as zip bytes, parsed parts serialised afresh.
    QByteArray toZip() const;
    // Writes a new file at path; an existing file is replaced only by a complete one.
    Outcome save(const QString &path) const;

private:
    struct Entry {
        QString name;
        QByteArray data;
        std::unique_ptr<pugi::xml_document> doc;   // parsed form, which then holds the truth
    };
    Entry *entry(const QString &part);
    const Entry *entry(const QString &part) const;
    Result<pugi::xml_document *> contentTypes();

    QString m_path;
    std::vector<Entry> m_entries;
};

// The part a relationship target points at, from the part that holds the relationship
// ("xl/workbook.xml" + "worksheets/sheet1.xml" = "xl/worksheets/sheet1.xml").
QString resolvePartName(const QString &sourcePart, const QString &target);

// Text safe for XML 1.0: characters that XML cannot carry (control characters other
// than tab and line ends, unpaired surrogates) are dropped.
QString xmlSafeText(const QString &text);

// Refuses to write over a document that an office program has open (LibreOffice's
// lock file ".~lock.<name>#" or another suite's "~$<name>" lies beside it), with
// "You may have the file open already.".
Outcome checkNotOpen(const QString &path);
// The refusal for a document that could not be written at path.
Refusal couldNotCreate(const QString &path);

} // namespace fenlark
