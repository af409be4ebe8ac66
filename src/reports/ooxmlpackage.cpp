#include "reports/ooxmlpackage.h"

#include "shell/strings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <zip.h>

#include <cstring>

namespace fenlark {

namespace {

const QString ContentTypesPart = QStringLiteral("[Content_Types].xml");
constexpr unsigned ParseOptions = pugi::parse_default | pugi::parse_declaration | pugi::parse_ws_pcdata_single;

Refusal unreadable(const QString &path, const QString &reason)
{
    return Refusal(6803, QStringLiteral("The file %1 is not an Office document that Fenlark can read (%2)."), 6801,
                   QStringLiteral("Could not read the template"))
        .arg(QDir::toNativeSeparators(path))
        .arg(reason);
}

QString zipReason(zip_error_t *error)
{
    return QString::fromUtf8(zip_error_strerror(error));
}

struct ByteWriter : pugi::xml_writer {
    QByteArray out;
    void write(const void *data, size_t size) override { out.append(static_cast<const char *>(data), static_cast<qsizetype>(size)); }
};

QByteArray serialise(const pugi::xml_document &doc)
{
    ByteWriter writer;
    doc.save(writer, "", pugi::format_raw, pugi::encoding_utf8);
    return writer.out;
}

// The folder part of a part name, with its slash ("xl/" of "xl/workbook.xml").
QString folderOf(const QString &part)
{
    const int slash = part.lastIndexOf(QLatin1Char('/'));
    return slash < 0 ? QString() : part.left(slash + 1);
}

QString relationshipsPart(const QString &sourcePart)
{
    const int slash = sourcePart.lastIndexOf(QLatin1Char('/'));
    return folderOf(sourcePart) + QStringLiteral("_rels/") + sourcePart.mid(slash + 1) + QStringLiteral(".rels");
}

} // namespace

QString resolvePartName(const QString &sourcePart, const QString &target)
{
    QString path = target.startsWith(QLatin1Char('/')) ? target.mid(1) : folderOf(sourcePart) + target;
    QStringList out;
    for (const QString &piece : path.split(QLatin1Char('/'))) {
        if (piece == QLatin1String(".."))
            out.isEmpty() ? void() : out.removeLast();
        else if (!piece.isEmpty() && piece != QLatin1String("."))
            out << piece;
    }
    return out.join(QLatin1Char('/'));
}

QString xmlSafeText(const QString &text)
{
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        const char16_t u = c.unicode();
        if (c.isHighSurrogate()) {
            if (i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
                out += c;
                out += text.at(++i);
            }
            continue;
        }
        if (c.isLowSurrogate() || u == 0xFFFE || u == 0xFFFF)
            continue;
        if (u < 0x20 && u != u'\t' && u != u'\n' && u != u'\r')
            continue;
        out += c;
    }
    return out;
}

Refusal couldNotCreate(const QString &path)
{
    const QString shown = QDir::toNativeSeparators(path);
    return Refusal(6807, QStringLiteral("Could not create %1.\n\nYou may have the file open already."), 6808,
                   QStringLiteral("Could not create %1"))
        .arg(shown);
}

Outcome checkNotOpen(const QString &path)
{
    const QFileInfo info(path);
    const QDir dir = info.dir();
    if (QFileInfo::exists(dir.filePath(QStringLiteral(".~lock.") + info.fileName() + QLatin1Char('#')))
        || QFileInfo::exists(dir.filePath(QStringLiteral("~$") + info.fileName())))
        return couldNotCreate(path);
    return Done{};
}

Result<OoxmlPackage> OoxmlPackage::open(const QString &path)
{
    const QString shown = QDir::toNativeSeparators(path);
    QFile file(path);
    if (!file.exists())
        return Refusal(6800, QStringLiteral("The file %1 could not be found."), 6801,
                       QStringLiteral("Could not read the template"))
            .arg(shown);
    if (!file.open(QIODevice::ReadOnly))
        return unreadable(path, file.errorString());
    const QByteArray data = file.readAll();
    file.close();
    if (data.isEmpty())
        return Refusal(6802, QStringLiteral("The file %1 is empty."), 6801, QStringLiteral("Could not read the template"))
            .arg(shown);

    zip_error_t error;
    zip_error_init(&error);
    zip_source_t *source = zip_source_buffer_create(data.constData(), static_cast<zip_uint64_t>(data.size()), 0, &error);
    if (!source) {
        const QString reason = zipReason(&error);
        zip_error_fini(&error);
        return unreadable(path, reason);
    }
    zip_t *archive = zip_open_from_source(source, ZIP_RDONLY | ZIP_CHECKCONS, &error);
    if (!archive) {
        const QString reason = zipReason(&error);
        zip_error_fini(&error);
        zip_source_free(source);
        return unreadable(path, reason);
    }
    zip_error_fini(&error);

    OoxmlPackage package;
    package.m_path = path;
    QString failure;
    const zip_int64_t count = zip_get_num_entries(archive, 0);
    for (zip_int64_t i = 0; i < count && failure.isEmpty(); ++i) {
        zip_stat_t stat;
        if (zip_stat_index(archive, static_cast<zip_uint64_t>(i), 0, &stat) != 0) {
            failure = QString::fromUtf8(zip_strerror(archive));
            break;
        }
        const QString name = QString::fromUtf8(stat.name);
        if (name.endsWith(QLatin1Char('/')))
            continue;
        zip_file_t *member = zip_fopen_index(archive, static_cast<zip_uint64_t>(i), 0);
        if (!member) {
            failure = QString::fromUtf8(zip_strerror(archive));
            break;
        }
        QByteArray bytes;
        bytes.resize(static_cast<qsizetype>(stat.size));
        const zip_int64_t read = zip_fread(member, bytes.data(), stat.size);
        if (read < 0 || static_cast<zip_uint64_t>(read) != stat.size)
            failure = QString::fromUtf8(zip_file_strerror(member));
        zip_fclose(member);
        package.m_entries.push_back(Entry{name, bytes, nullptr});
    }
    zip_discard(archive);
    if (!failure.isEmpty())
        return unreadable(path, failure);
    if (!package.contains(ContentTypesPart))
        return unreadable(path, getString(6804, QStringLiteral("it has no list of content types")));
    return package;
}

OoxmlPackage::Entry *OoxmlPackage::entry(const QString &part)
{
    for (Entry &e : m_entries)
        if (e.name == part)
            return &e;
    return nullptr;
}

const OoxmlPackage::Entry *OoxmlPackage::entry(const QString &part) const
{
    for (const Entry &e : m_entries)
        if (e.name == part)
            return &e;
    return nullptr;
}

bool OoxmlPackage::contains(const QString &part) const
{
    return entry(part) != nullptr;
}

Result<pugi::xml_document *> OoxmlPackage::xml(const QString &part)
{
    Entry *e = entry(part);
    if (!e)
        return static_cast<pugi::xml_document *>(nullptr);
    if (!e->doc) {
        auto doc = std::make_unique<pugi::xml_document>();
        const pugi::xml_parse_result parsed =
            doc->load_buffer(e->data.constData(), static_cast<size_t>(e->data.size()), ParseOptions, pugi::encoding_auto);
        if (!parsed)
            return Refusal(6805, QStringLiteral("The part %1 of %2 is not well-formed XML (%3 at byte %4)."), 6801,
                           QStringLiteral("Could not read the template"))
                .arg(part)
                .arg(QDir::toNativeSeparators(m_path))
                .arg(QString::fromUtf8(parsed.description()))
                .arg(static_cast<qint64>(parsed.offset));
        e->doc = std::move(doc);
        e->data.clear();
    }
    return e->doc.get();
}

QByteArray OoxmlPackage::bytes(const QString &part) const
{
    const Entry *e = entry(part);
    if (!e)
        return {};
    return e->doc ? serialise(*e->doc) : e->data;
}

void OoxmlPackage::setBytes(const QString &part, const QByteArray &data)
{
    Entry *e = entry(part);
    if (!e) {
        m_entries.push_back(Entry{part, data, nullptr});
        return;
    }
    e->data = data;
    e->doc.reset();
}

void OoxmlPackage::setXml(const QString &part, const QString &xmlText)
{
    setBytes(part, xmlText.toUtf8());
}

void OoxmlPackage::remove(const QString &part)
{
    std::erase_if(m_entries, [&](const Entry &e) { return e.name == part; });
}

Result<pugi::xml_document *> OoxmlPackage::contentTypes()
{
    auto doc = xml(ContentTypesPart);
    if (doc.ok() && !*doc) {
        setXml(ContentTypesPart,
               QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>"
                              "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\"/>"));
        return xml(ContentTypesPart);
    }
    return doc;
}

void OoxmlPackage::setOverrideContentType(const QString &part, const QString &contentType)
{
    auto doc = contentTypes();
    if (!doc)
        return;
    pugi::xml_node types = (*doc)->document_element();
    const QByteArray wanted = (QLatin1Char('/') + part).toUtf8();
    for (pugi::xml_node o : types.children("Override")) {
        if (std::strcmp(o.attribute("PartName").value(), wanted.constData()) == 0) {
            if (contentType.isEmpty())
                types.remove_child(o);
            else
                o.attribute("ContentType").set_value(contentType.toUtf8().constData());
            return;
        }
    }
    if (contentType.isEmpty())
        return;
    pugi::xml_node o = types.append_child("Override");
    o.append_attribute("PartName").set_value(wanted.constData());
    o.append_attribute("ContentType").set_value(contentType.toUtf8().constData());
}

QStringList OoxmlPackage::partsOfContentType(const QString &contentType)
{
    QStringList parts;
    auto doc = contentTypes();
    if (!doc)
        return parts;
    const QByteArray wanted = contentType.toUtf8();
    for (pugi::xml_node o : (*doc)->document_element().children("Override"))
        if (std::strcmp(o.attribute("ContentType").value(), wanted.constData()) == 0)
            parts << QString::fromUtf8(o.attribute("PartName").value()).mid(1);
    return parts;
}

std::vector<OoxmlPackage::Relationship> OoxmlPackage::relationships(const QString &sourcePart)
{
    std::vector<Relationship> list;
    auto doc = xml(relationshipsPart(sourcePart));
    if (!doc || !*doc)
        return list;
    for (pugi::xml_node r : (*doc)->document_element().children("Relationship")) {
        if (QString::fromUtf8(r.attribute("TargetMode").value()) == QLatin1String("External"))
            continue;
        list.push_back({QString::fromUtf8(r.attribute("Id").value()), QString::fromUtf8(r.attribute("Type").value()),
                        resolvePartName(sourcePart, QString::fromUtf8(r.attribute("Target").value()))});
    }
    return list;
}

void OoxmlPackage::removeRelationshipsTo(const QString &sourcePart, const QString &target)
{
    auto doc = xml(relationshipsPart(sourcePart));
    if (!doc || !*doc)
        return;
    pugi::xml_node root = (*doc)->document_element();
    for (pugi::xml_node r = root.child("Relationship"); r;) {
        const pugi::xml_node next = r.next_sibling("Relationship");
        if (resolvePartName(sourcePart, QString::fromUtf8(r.attribute("Target").value())) == target)
            root.remove_child(r);
        r = next;
    }
}

QByteArray OoxmlPackage::toZip() const
{
    std::vector<QByteArray> data;
    data.reserve(m_entries.size());
    for (const Entry &e : m_entries)
        data.push_back(e.doc ? serialise(*e.doc) : e.data);

    zip_error_t error;
    zip_error_init(&error);
    zip_source_t *buffer = zip_source_buffer_create(nullptr, 0, 0, &error);
    zip_t *archive = buffer ? zip_open_from_source(buffer, ZIP_TRUNCATE, &error) : nullptr;
    zip_error_fini(&error);
    if (!archive) {
        if (buffer)
            zip_source_free(buffer);
        return {};
    }
    zip_source_keep(buffer);
    bool ok = true;
    for (std::size_t i = 0; i < m_entries.size() && ok; ++i) {
        zip_source_t *member = zip_source_buffer(archive, data[i].constData(), static_cast<zip_uint64_t>(data[i].size()), 0);
        const QByteArray name = m_entries[i].name.toUtf8();
        const zip_int64_t at = member ? zip_file_add(archive, name.constData(), member, ZIP_FL_ENC_UTF_8) : -1;
        if (at < 0) {
            if (member)
                zip_source_free(member);
            ok = false;
        } else {
            zip_set_file_compression(archive, static_cast<zip_uint64_t>(at), ZIP_CM_DEFLATE, 6);
        }
    }
    if (!ok || zip_close(archive) != 0) {
        zip_discard(archive);
        zip_source_free(buffer);
        return {};
    }
    QByteArray out;
    if (zip_source_open(buffer) == 0) {
        zip_source_seek(buffer, 0, SEEK_END);
        const zip_int64_t size = zip_source_tell(buffer);
        zip_source_seek(buffer, 0, SEEK_SET);
        if (size > 0) {
            out.resize(static_cast<qsizetype>(size));
            if (zip_source_read(buffer, out.data(), static_cast<zip_uint64_t>(size)) != size)
                out.clear();
        }
        zip_source_close(buffer);
    }
    zip_source_free(buffer);
    return out;
}

Outcome OoxmlPackage::save(const QString &path) const
{
    if (Outcome open = checkNotOpen(path); !open)
        return open;
    const QByteArray zipped = toZip();
    if (zipped.isEmpty())
        return couldNotCreate(path);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(zipped) != zipped.size() || !file.commit())
        return couldNotCreate(path);
    return Done{};
}

} // namespace fenlark
