#include "reports/docxtemplate.h"

#include <QDir>

#include <cstring>
#include <string>

namespace fenlark {

namespace {

const QString DocumentType = QStringLiteral("application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml");
const QString TemplateType = QStringLiteral("application/vnd.openxmlformats-officedocument.wordprocessingml.template.main+xml");
const QString HeaderType = QStringLiteral("application/vnd.openxmlformats-officedocument.wordprocessingml.header+xml");
const QString FooterType = QStringLiteral("application/vnd.openxmlformats-officedocument.wordprocessingml.footer+xml");

// The element names of one part, with the prefix its root uses for the main namespace.
struct Names {
    explicit Names(pugi::xml_node root)
    {
        const char *name = root.name();
        const char *colon = std::strchr(name, ':');
        prefix = colon ? std::string(name, static_cast<std::size_t>(colon - name + 1)) : std::string();
        bookmarkStart = prefix + "bookmarkStart";
        bookmarkEnd = prefix + "bookmarkEnd";
        p = prefix + "p";
        pPr = prefix + "pPr";
        r = prefix + "r";
        rPr = prefix + "rPr";
        t = prefix + "t";
        br = prefix + "br";
        tab = prefix + "tab";
        id = prefix + "id";
        nameAttr = prefix + "name";
    }
    bool is(pugi::xml_node node, const std::string &what) const { return what == node.name(); }
    bool isMarker(pugi::xml_node node) const { return is(node, bookmarkStart) || is(node, bookmarkEnd); }
    // A container of paragraphs rather than of runs.
    bool isBlock(pugi::xml_node node) const
    {
        for (const char *local : {"body", "hdr", "ftr", "tc", "txbxContent", "footnote", "endnote", "comment"})
            if (prefix + local == node.name())
                return true;
        return false;
    }

    std::string prefix, bookmarkStart, bookmarkEnd, p, pPr, r, rPr, t, br, tab, id, nameAttr;
};

pugi::xml_node nextInDocument(pugi::xml_node node)
{
    if (node.first_child())
        return node.first_child();
    while (node) {
        if (node.next_sibling())
            return node.next_sibling();
        node = node.parent();
    }
    return {};
}

bool comesBefore(pugi::xml_node a, pugi::xml_node b)
{
    for (pugi::xml_node n = nextInDocument(a); n; n = nextInDocument(n))
        if (n == b)
            return true;
    return false;
}

// The format of the first run in node (node itself or inside it).
pugi::xml_node firstRunFormat(const Names &w, pugi::xml_node node)
{
    if (w.is(node, w.r))
        return node.child(w.rPr.c_str());
    const pugi::xml_node run = node.find_node([&](pugi::xml_node n) { return w.is(n, w.r); });
    return run ? run.child(w.rPr.c_str()) : pugi::xml_node();
}

// The format of the run before a point, or else of the run after it.
pugi::xml_node neighbourFormat(const Names &w, pugi::xml_node at)
{
    for (pugi::xml_node n = at.previous_sibling(); n; n = n.previous_sibling())
        if (w.is(n, w.r))
            return n.child(w.rPr.c_str());
    for (pugi::xml_node n = at.next_sibling(); n; n = n.next_sibling())
        if (w.is(n, w.r))
            return n.child(w.rPr.c_str());
    return {};
}

// Removes what lies between two siblings except bookmark markers, and gives the
// format of the first run that was removed.
pugi::xml_node removeBetween(const Names &w, pugi::xml_node parent, pugi::xml_node from, pugi::xml_node to,
                             pugi::xml_document &scratch)
{
    pugi::xml_node format;
    for (pugi::xml_node n = from; n && n != to;) {
        const pugi::xml_node next = n.next_sibling();
        if (!w.isMarker(n) && !w.is(n, w.pPr)) {
            if (!format) {
                if (const pugi::xml_node found = firstRunFormat(w, n))
                    format = scratch.append_copy(found);
            }
            parent.remove_child(n);
        }
        n = next;
    }
    return format;
}

void insertRun(const Names &w, pugi::xml_node parent, pugi::xml_node after, pugi::xml_node format, const QString &value)
{
    QString text = xmlSafeText(value);
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    if (text.isEmpty())
        return;
    pugi::xml_node run = after ? parent.insert_child_after(w.r.c_str(), after) : parent.prepend_child(w.r.c_str());
    if (format)
        run.append_copy(format);
    QString pending;
    auto flush = [&] {
        if (pending.isEmpty())
            return;
        pugi::xml_node t = run.append_child(w.t.c_str());
        t.append_attribute("xml:space").set_value("preserve");
        t.text().set(pending.toUtf8().constData());
        pending.clear();
    };
    for (const QChar c : text) {
        if (c == QLatin1Char('\n')) {
            flush();
            run.append_child(w.br.c_str());
        } else if (c == QLatin1Char('\t')) {
            flush();
            run.append_child(w.tab.c_str());
        } else {
            pending += c;
        }
    }
    flush();
}

// The point in a paragraph where its text begins: after its properties.
pugi::xml_node paragraphStart(const Names &w, pugi::xml_node paragraph)
{
    const pugi::xml_node pPr = paragraph.child(w.pPr.c_str());
    return pPr;
}

void fillBookmark(const Names &w, pugi::xml_node start, pugi::xml_node end, const QString &value)
{
    pugi::xml_document scratch;   // keeps a copy of a format whose run is removed
    pugi::xml_node parent = start.parent();

    if (end && end.parent() == parent && !w.isBlock(parent)) {
        pugi::xml_node format = removeBetween(w, parent, start.next_sibling(), end, scratch);
        if (!format)
            format = neighbourFormat(w, start);
        insertRun(w, parent, start, format, value);
        return;
    }

    if (end && end.parent() == parent) {
        // Whole paragraphs: the first stays and holds the value, the others go.
        pugi::xml_node keep;
        for (pugi::xml_node n = start.next_sibling(); n && n != end; n = n.next_sibling())
            if (w.is(n, w.p)) {
                keep = n;
                break;
            }
        if (!keep) {
            keep = parent.insert_child_after(w.p.c_str(), start);
        }
        pugi::xml_node format;
        if (const pugi::xml_node found = firstRunFormat(w, keep))
            format = scratch.append_copy(found);
        removeBetween(w, parent, start.next_sibling(), keep, scratch);
        removeBetween(w, parent, keep.next_sibling(), end, scratch);
        removeBetween(w, keep, keep.first_child(), pugi::xml_node(), scratch);
        insertRun(w, keep, paragraphStart(w, keep), format, value);
        return;
    }

    pugi::xml_node first = parent;
    const pugi::xml_node last = end ? end.parent() : pugi::xml_node();
    if (end && w.is(first, w.p) && w.is(last, w.p) && first.parent() == last.parent() && comesBefore(first, last)) {
        // Across paragraphs: the paragraph marks in between go, as when the text is typed over.
        pugi::xml_node format = removeBetween(w, first, start.next_sibling(), pugi::xml_node(), scratch);
        const pugi::xml_node between = removeBetween(w, first.parent(), first.next_sibling(), last, scratch);
        if (!format)
            format = between;
        const pugi::xml_node before = removeBetween(w, last, last.first_child(), end, scratch);
        if (!format)
            format = before;
        for (pugi::xml_node n = last.first_child(); n;) {
            const pugi::xml_node next = n.next_sibling();
            if (!w.is(n, w.pPr))
                first.append_move(n);
            n = next;
        }
        first.parent().remove_child(last);
        insertRun(w, first, start, format, value);
        return;
    }

    // A collapsed bookmark (or one whose end cannot be reached): the value goes in at its start.
    if (w.isBlock(parent)) {
        pugi::xml_node paragraph;
        for (pugi::xml_node n = start.next_sibling(); n && !paragraph; n = n.next_sibling())
            if (w.is(n, w.p))
                paragraph = n;
        if (!paragraph)
            paragraph = parent.insert_child_after(w.p.c_str(), start);
        insertRun(w, paragraph, paragraphStart(w, paragraph), firstRunFormat(w, paragraph), value);
        return;
    }
    insertRun(w, parent, start, neighbourFormat(w, start), value);
}

} // namespace

Result<DocxTemplate> DocxTemplate::open(const QString &path)
{
    Result<OoxmlPackage> package = OoxmlPackage::open(path);
    if (!package)
        return package.refusal();
    DocxTemplate document;
    document.m_package = std::move(*package);
    OoxmlPackage &files = document.m_package;

    QStringList parts = files.partsOfContentType(DocumentType);
    const QStringList templates = files.partsOfContentType(TemplateType);
    for (const QString &part : templates)
        files.setOverrideContentType(part, DocumentType);
    parts += templates;
    if (parts.isEmpty())
        return Refusal(6809, QStringLiteral("The file %1 is not a text document: it has no document part."), 6801,
                       QStringLiteral("Could not read the template"))
            .arg(QDir::toNativeSeparators(path));
    parts += files.partsOfContentType(HeaderType);
    parts += files.partsOfContentType(FooterType);
    for (const QString &part : parts) {
        auto xml = files.xml(part);
        if (!xml)
            return xml.refusal();
        if (*xml)
            document.m_stories.push_back((*xml)->document_element());
    }
    return document;
}

Outcome DocxTemplate::fillBookmarks(const QHash<QString, QString> &values)
{
    QHash<QString, QString> wanted;
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        wanted.insert(it.key().toLower(), it.value());

    struct Fill {
        Names names;
        pugi::xml_node start, end;
        QString value;
    };
    std::vector<Fill> fills;
    for (pugi::xml_node story : m_stories) {
        const Names w(story);
        std::vector<pugi::xml_node> starts;
        QHash<QString, pugi::xml_node> ends;
        for (pugi::xml_node n = story; n; n = nextInDocument(n)) {
            if (w.is(n, w.bookmarkStart))
                starts.push_back(n);
            else if (w.is(n, w.bookmarkEnd))
                ends.insert(QString::fromUtf8(n.attribute(w.id.c_str()).value()), n);
        }
        for (pugi::xml_node start : starts) {
            const QString name = QString::fromUtf8(start.attribute(w.nameAttr.c_str()).value());
            const auto value = wanted.constFind(name.toLower());
            if (value == wanted.cend())
                continue;
            const pugi::xml_node end = ends.value(QString::fromUtf8(start.attribute(w.id.c_str()).value()));
            if (end && !comesBefore(start, end))
                return Refusal(6810, QStringLiteral("The bookmark %1 in %2 ends before it starts."), 6801,
                               QStringLiteral("Could not read the template"))
                    .arg(name)
                    .arg(QDir::toNativeSeparators(m_package.path()));
            fills.push_back({w, start, end, *value});
        }
    }
    for (const Fill &f : fills)
        fillBookmark(f.names, f.start, f.end, f.value);
    return Done{};
}

} // namespace fenlark
