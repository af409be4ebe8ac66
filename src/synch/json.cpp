#include "synch/json.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

#include <algorithm>
#include <cmath>
#include <limits>

namespace fenlark {

// ---------------------------------------------------------------- JsonValue

JsonValue JsonValue::null()
{
    JsonValue v;
    v.m_kind = Null;
    return v;
}

JsonValue JsonValue::empty()
{
    JsonValue v;
    v.m_kind = Empty;
    return v;
}

JsonValue::JsonValue(bool value) : m_kind(Boolean), m_bool(value) {}
JsonValue::JsonValue(qint32 value) : m_kind(Integer), m_int(value) {}
JsonValue::JsonValue(double value) : m_kind(Double), m_double(value) {}
JsonValue::JsonValue(const QString &text) : m_kind(Text), m_text(text) {}
JsonValue::JsonValue(const char *text) : m_kind(Text), m_text(QString::fromUtf8(text)) {}
JsonValue::JsonValue(const QDateTime &value) : m_kind(DateTime), m_dateTime(value) {}
JsonValue::JsonValue(std::shared_ptr<JsonObject> object) : m_kind(Object), m_object(std::move(object)) {}
JsonValue::JsonValue(std::shared_ptr<JsonArray> array) : m_kind(Array), m_array(std::move(array)) {}

JsonValue JsonValue::newObject()
{
    return JsonValue(std::make_shared<JsonObject>());
}

JsonValue JsonValue::newArray()
{
    return JsonValue(std::make_shared<JsonArray>());
}

JsonValue JsonValue::fromVariant(const QVariant &value)
{
    if (value.isNull() || !value.isValid())
        return null();
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::Short:
    case QMetaType::UShort:
        return JsonValue(static_cast<qint32>(value.toInt()));
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
    case QMetaType::Long: {
        const qlonglong n = value.toLongLong();
        if (n >= std::numeric_limits<qint32>::min() && n <= std::numeric_limits<qint32>::max())
            return JsonValue(static_cast<qint32>(n));
        return JsonValue(static_cast<double>(n));
    }
    case QMetaType::Double:
    case QMetaType::Float:
        return JsonValue(value.toDouble());
    case QMetaType::Bool:
        return JsonValue(value.toBool());
    case QMetaType::QDateTime:
        return JsonValue(value.toDateTime());
    case QMetaType::QDate:
        return JsonValue(value.toDate().startOfDay());
    default:
        return JsonValue(value.toString());
    }
}

bool JsonValue::toBool() const
{
    switch (m_kind) {
    case Boolean: return m_bool;
    case Integer: return m_int != 0;
    case Double: return m_double != 0;
    case Text: return m_text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0 || m_text == QLatin1String("1");
    default: return false;
    }
}

qint32 JsonValue::toInt(bool *ok) const
{
    bool good = true;
    qint32 result = 0;
    switch (m_kind) {
    case Integer: result = m_int; break;
    case Boolean: result = m_bool ? 1 : 0; break;
    case Double:
        if (std::isfinite(m_double) && m_double >= std::numeric_limits<qint32>::min()
            && m_double <= std::numeric_limits<qint32>::max())
            result = static_cast<qint32>(std::llround(m_double));
        else
            good = false;
        break;
    case Text: {
        const qlonglong n = m_text.trimmed().toLongLong(&good);
        good = good && n >= std::numeric_limits<qint32>::min() && n <= std::numeric_limits<qint32>::max();
        result = good ? static_cast<qint32>(n) : 0;
        break;
    }
    default: good = false;
    }
    if (ok)
        *ok = good;
    return result;
}

double JsonValue::toDouble(bool *ok) const
{
    bool good = true;
    double result = 0;
    switch (m_kind) {
    case Integer: result = m_int; break;
    case Double: result = m_double; break;
    case Boolean: result = m_bool ? 1 : 0; break;
    case Text: result = m_text.trimmed().toDouble(&good); break;
    default: good = false;
    }
    if (!std::isfinite(result)) {
        good = false;
        result = 0;
    }
    if (ok)
        *ok = good;
    return good ? result : 0;
}

namespace {

QString doubleText(double d)
{
    if (!std::isfinite(d))
        return QStringLiteral("null");
    QString s = QString::number(d, 'g', 15);
    s.replace(QLatin1Char('e'), QLatin1Char('E'));
    return s;
}

} // namespace

QString JsonValue::toText() const
{
    switch (m_kind) {
    case Text: return m_text;
    case Integer: return QString::number(m_int);
    case Double: return doubleText(m_double);
    case Boolean: return m_bool ? QStringLiteral("true") : QStringLiteral("false");
    case DateTime: return json::toString(*this).remove(QLatin1Char('"'));
    default: return QString();
    }
}

QVariant JsonValue::toVariant() const
{
    switch (m_kind) {
    case Integer: return m_int;
    case Double: return std::isfinite(m_double) ? QVariant(m_double) : QVariant(QMetaType(QMetaType::Double));
    case Boolean: return m_bool ? 1 : 0;
    case Text: return m_text;
    case DateTime: return toText();
    case Null: return QVariant(QMetaType(QMetaType::QString));
    default: return QVariant();
    }
}

JsonValue JsonValue::operator[](const QString &key) const
{
    return m_object ? m_object->value(key) : JsonValue();
}

// ---------------------------------------------------------------- JsonObject

bool JsonObject::add(const QString &key, const JsonValue &value)
{
    if (m_index.contains(key))
        return false;
    m_index.insert(key, static_cast<int>(m_entries.size()));
    m_entries.emplace_back(key, value);
    return true;
}

void JsonObject::set(const QString &key, const JsonValue &value)
{
    const auto it = m_index.constFind(key);
    if (it != m_index.constEnd())
        m_entries[*it].second = value;
    else
        add(key, value);
}

JsonValue JsonObject::value(const QString &key) const
{
    const auto it = m_index.constFind(key);
    return it == m_index.constEnd() ? JsonValue() : m_entries[*it].second;
}

void JsonObject::remove(const QString &key)
{
    const auto it = m_index.constFind(key);
    if (it == m_index.constEnd())
        return;
    m_entries.erase(m_entries.begin() + *it);
    m_index.clear();
    for (int i = 0; i < static_cast<int>(m_entries.size()); ++i)
        m_index.insert(m_entries[i].first, i);
}

QStringList JsonObject::keys() const
{
    QStringList list;
    list.reserve(size());
    for (const auto &e : m_entries)
        list << e.first;
    return list;
}

// ---------------------------------------------------------------- parser

namespace json {

namespace {

// A failure inside a value that ends the enclosing object or array.
struct ValueFailure {
    QString text;
};

class Parser {
public:
    explicit Parser(const QString &text) : m_text(text), m_data(text.constData()), m_size(text.size()) {}

    JsonValue parseTop()
    {
        skipChar();
        if (m_pos < m_size && at() == u'{')
            return parseObject();
        if (m_pos < m_size && at() == u'[')
            return parseArray();
        m_errors = QStringLiteral("Invalid JSON");
        return JsonValue();
    }

    QString errors() const { return m_errors; }

private:
    QChar at() const { return m_data[m_pos]; }
    bool atEnd() const { return m_pos >= m_size; }
    QString remainder(qsizetype length = -1) const { return m_text.mid(m_pos, length); }
    QString position() const { return QString::number(m_pos + 1); }

    // Steps over blanks, tabs, line ends, parentheses and both kinds of comment.
    void skipChar()
    {
        bool startComment = false, inComment = false, longComment = false;
        while (m_pos < m_size) {
            const char16_t c = at().unicode();
            switch (c) {
            case u'\r':
            case u'\n':
                if (!longComment) {
                    inComment = false;
                    startComment = false;
                }
                break;
            case u'\t':
            case u' ':
            case u'(':
            case u')':
                break;
            case u'/':
                if (!longComment) {
                    if (startComment) {
                        inComment = true;
                        startComment = false;
                    } else {
                        startComment = true;
                        inComment = false;
                        longComment = false;
                    }
                } else if (startComment) {
                    startComment = inComment = longComment = false;
                }
                break;
            case u'*':
                if (startComment) {
                    inComment = true;
                    longComment = true;
                    startComment = false;
                } else {
                    startComment = true;
                }
                break;
            default:
                if (!inComment)
                    return;
                // A lone "/" that opened no comment ends the white space here.
                break;
            }
            ++m_pos;
        }
    }

    bool enter()
    {
        if (++m_depth > MaxDepth) {
            --m_depth;
            return false;
        }
        return true;
    }

    // Steps over the opening bracket of an object or array; false (with the
    // error noted) when it is missing or the nesting is too deep.
    bool openContainer(QChar open, const QString &kind, qsizetype shownLength)
    {
        skipChar();
        if (atEnd() || at() != open) {
            m_errors += QStringLiteral("Invalid %1 at position %2 : %3\r\n").arg(kind, position(), remainder(shownLength));
            return false;
        }
        if (!enter()) {
            m_errors += QStringLiteral("Nesting too deep at position %1\r\n").arg(position());
            m_pos = m_size;
            return false;
        }
        ++m_pos;
        return true;
    }

    // Moves to the next member of an object or array: false at the closing
    // bracket or at the end of the text (noted as an error).
    bool nextMember(QChar close, const QString &kind)
    {
        skipChar();
        if (atEnd()) {
            m_errors += QStringLiteral("Unexpected end of text in %1 at position %2\r\n").arg(kind, position());
            return false;
        }
        if (at() == close) {
            ++m_pos;
            return false;
        }
        if (at() == u',') {
            ++m_pos;
            skipChar();
            if (atEnd()) {
                m_errors += QStringLiteral("Unexpected end of text in %1 at position %2\r\n").arg(kind, position());
                return false;
            }
        }
        return true;
    }

    JsonValue parseObject()
    {
        auto object = std::make_shared<JsonObject>();
        JsonValue result(object);
        if (!openContainer(u'{', QStringLiteral("Object"), -1))
            return result;
        while (nextMember(u'}', QStringLiteral("object"))) {
            const QString key = parseKey();
            try {
                const JsonValue value = parseValue();
                if (!object->add(key, value))
                    throw ValueFailure{QStringLiteral("This key is already associated with an element of this collection")};
            } catch (const ValueFailure &failure) {
                m_errors += failure.text + QStringLiteral(": ") + key + QStringLiteral("\r\n");
                break;
            }
        }
        --m_depth;
        return result;
    }

    JsonValue parseArray()
    {
        auto array = std::make_shared<JsonArray>();
        JsonValue result(array);
        if (!openContainer(u'[', QStringLiteral("Array"), 20))
            return result;
        while (nextMember(u']', QStringLiteral("array"))) {
            const qsizetype before = m_pos;
            try {
                array->append(parseValue());
            } catch (const ValueFailure &failure) {
                m_errors += failure.text + QStringLiteral(": ") + remainder(20) + QStringLiteral("\r\n");
                break;
            }
            if (m_pos == before) {
                // A value that could not be read at all: stop rather than read it forever.
                m_errors += QStringLiteral("Unreadable value at position %1 : %2\r\n").arg(position(), remainder(20));
                break;
            }
        }
        --m_depth;
        return result;
    }

    JsonValue parseValue()
    {
        skipChar();
        if (atEnd())
            return parseNumber();
        switch (at().unicode()) {
        case u'{': return parseObject();
        case u'[': return parseArray();
        case u'"':
        case u'\'': return JsonValue(parseString());
        case u't':
        case u'f': return parseBoolean();
        case u'n': return parseNull();
        default: return parseNumber();
        }
    }

    static int hexDigit(char16_t c)
    {
        if (c >= u'0' && c <= u'9')
            return c - u'0';
        if (c >= u'a' && c <= u'f')
            return c - u'a' + 10;
        if (c >= u'A' && c <= u'F')
            return c - u'A' + 10;
        return -1;
    }

    QString parseString()
    {
        skipChar();
        QString out;
        if (atEnd())
            return out;
        const QChar quote = at();
        ++m_pos;
        while (m_pos < m_size) {
            const QChar c = at();
            if (c == quote) {
                ++m_pos;
                return out;
            }
            if (c != u'\\') {
                out += c;
                ++m_pos;
                continue;
            }
            ++m_pos;
            if (atEnd())
                break;
            const char16_t e = at().unicode();
            switch (e) {
            case u'"':
            case u'\\':
            case u'/':
            case u'\'': out += QChar(e); ++m_pos; break;
            case u'b': out += QChar(8); ++m_pos; break;
            case u'f': out += QChar(12); ++m_pos; break;
            case u'n': out += QChar(10); ++m_pos; break;
            case u'r': out += QChar(13); ++m_pos; break;
            case u't': out += QChar(9); ++m_pos; break;
            case u'u': {
                ++m_pos;
                // Lenient: the hex digits that lead the four characters make the code.
                char16_t code = 0;
                bool digits = true;
                for (int i = 0; i < 4 && m_pos < m_size; ++i, ++m_pos) {
                    const int d = hexDigit(at().unicode());
                    if (d < 0)
                        digits = false;
                    if (digits)
                        code = static_cast<char16_t>(code * 16 + d);
                }
                out += QChar(code);
                break;
            }
            default:
                // An unknown escape drops the backslash; the character is read as itself.
                break;
            }
        }
        return out;
    }

    JsonValue parseNumber()
    {
        skipChar();
        const qsizetype start = m_pos;
        bool isDouble = false;
        while (m_pos < m_size) {
            const char16_t c = at().unicode();
            if ((c >= u'0' && c <= u'9') || c == u'+' || c == u'-')
                ++m_pos;
            else if (c == u'.' || c == u'e' || c == u'E') {
                isDouble = true;
                ++m_pos;
            } else
                break;
        }
        if (atEnd())
            return JsonValue::empty();
        const QString token = m_text.mid(start, m_pos - start);
        if (isDouble)
            return JsonValue(lenientDouble(token));
        bool ok = false;
        const qlonglong n = token.toLongLong(&ok);
        if (!ok) {
            const bool allDigits = !token.isEmpty()
                && std::all_of(token.begin() + ((token[0] == u'-' || token[0] == u'+') ? 1 : 0), token.end(),
                               [](QChar c) { return c.isDigit(); })
                && token.size() > 1;
            throw ValueFailure{allDigits ? QStringLiteral("Overflow") : QStringLiteral("Type mismatch")};
        }
        if (n > std::numeric_limits<qint32>::max() || n < std::numeric_limits<qint32>::min())
            throw ValueFailure{QStringLiteral("Overflow")};
        return JsonValue(static_cast<qint32>(n));
    }

    // The longest leading part that reads as a number; 0 when none does.
    static double lenientDouble(const QString &token)
    {
        for (qsizetype length = token.size(); length > 0; --length) {
            bool ok = false;
            const double d = QStringView(token).left(length).toDouble(&ok);
            if (ok)
                return std::isfinite(d) ? d : 0.0;
        }
        return 0.0;
    }

    JsonValue parseBoolean()
    {
        if (QStringView(m_text).mid(m_pos, 4) == QLatin1String("true")) {
            m_pos += 4;
            return JsonValue(true);
        }
        if (QStringView(m_text).mid(m_pos, 5) == QLatin1String("false")) {
            m_pos += 5;
            return JsonValue(false);
        }
        m_errors += QStringLiteral("Invalid Boolean at position %1 : %2\r\n").arg(position(), remainder());
        return JsonValue(false);
    }

    JsonValue parseNull()
    {
        if (QStringView(m_text).mid(m_pos, 4) == QLatin1String("null")) {
            m_pos += 4;
            return JsonValue::null();
        }
        m_errors += QStringLiteral("Invalid null value at position %1 : %2\r\n").arg(position(), remainder());
        return JsonValue::empty();
    }

    QString parseKey()
    {
        skipChar();
        QString key;
        bool inDouble = false, inSingle = false;
        while (m_pos < m_size) {
            const QChar c = at();
            if ((c == u'"' && !inSingle) || (c == u'\'' && !inDouble)) {
                bool &flag = c == u'"' ? inDouble : inSingle;
                flag = !flag;
                ++m_pos;
                if (!flag) {
                    skipChar();
                    if (atEnd() || at() != u':') {
                        m_errors += QStringLiteral("Invalid Key at position %1 : %2\r\n").arg(position(), key);
                        return key;
                    }
                }
                continue;
            }
            if (c == u':' && !inDouble && !inSingle) {
                ++m_pos;
                return key;
            }
            if (c != u'\r' && c != u'\n' && c != u'\t' && c != u' ')
                key += c;
            ++m_pos;
        }
        return key;
    }

    const QString &m_text;
    const QChar *m_data;
    qsizetype m_size;
    qsizetype m_pos = 0;
    int m_depth = 0;
    QString m_errors;
};

constexpr char HexDigits[] = "0123456789ABCDEF";

} // namespace

JsonValue parse(const QString &text, QString *errors)
{
    Parser parser(text);
    JsonValue result = parser.parseTop();
    if (errors)
        *errors = parser.errors();
    return result;
}

void encode(const QString &text, QString &out)
{
    for (const QChar ch : text) {
        const char16_t c = ch.unicode();
        switch (c) {
        case 34: out += QLatin1String("\\\""); break;
        case 92: out += QLatin1String("\\\\"); break;
        case 47: out += QLatin1String("\\/"); break;
        case 8: out += QLatin1String("\\b"); break;
        case 12: out += QLatin1String("\\f"); break;
        case 10: out += QLatin1String("\\n"); break;
        case 13: out += QLatin1String("\\r"); break;
        case 9: out += QLatin1String("\\t"); break;
        default:
            if (c >= 32 && c <= 126) {
                out += ch;
            } else {
                const char escaped[] = {'\\', 'u', HexDigits[(c >> 12) & 15], HexDigits[(c >> 8) & 15],
                                        HexDigits[(c >> 4) & 15], HexDigits[c & 15]};
                out += QLatin1String(escaped, 6);
            }
        }
    }
}

void write(const JsonValue &value, QString &out)
{
    switch (value.kind()) {
    case JsonValue::Null:
        out += QLatin1String("null");
        break;
    case JsonValue::Boolean:
        out += value.toBool() ? QLatin1String("true") : QLatin1String("false");
        break;
    case JsonValue::DateTime: {
        const QDateTime dt = value.toDateTime();
        out += QLatin1Char('"');
        if (dt.time() == QTime(0, 0))
            out += dt.date().toString(QStringLiteral("yyyy-MM-dd"));
        else
            out += dt.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
        out += QLatin1Char('"');
        break;
    }
    case JsonValue::Text:
        out += QLatin1Char('"');
        encode(value.toText(), out);
        out += QLatin1Char('"');
        break;
    case JsonValue::Object: {
        out += QLatin1Char('{');
        bool first = true;
        for (const auto &[key, item] : value.object()->entries()) {
            if (!first)
                out += QLatin1Char(',');
            first = false;
            out += QLatin1Char('"');
            out += key;
            out += QLatin1String("\":");
            write(item, out);
        }
        out += QLatin1Char('}');
        break;
    }
    case JsonValue::Array: {
        out += QLatin1Char('[');
        bool first = true;
        for (const JsonValue &item : *value.array()) {
            if (!first)
                out += QLatin1Char(',');
            first = false;
            write(item, out);
        }
        out += QLatin1Char(']');
        break;
    }
    case JsonValue::Integer:
    case JsonValue::Double:
        out += value.toText();
        break;
    case JsonValue::Empty:
    case JsonValue::Nothing:
        break;
    }
}

QString toString(const JsonValue &value)
{
    QString out;
    out.reserve(256);
    write(value, out);
    return out;
}

JsonValue recordToValue(const QSqlRecord &record)
{
    auto object = std::make_shared<JsonObject>();
    for (int i = 0; i < record.count(); ++i)
        object->add(record.fieldName(i), JsonValue::fromVariant(record.value(i)));
    return JsonValue(object);
}

JsonValue recordsetToValue(QSqlQuery &query, bool forceCollection)
{
    auto rows = std::make_shared<JsonArray>();
    while (query.next())
        rows->append(recordToValue(query.record()));
    if (rows->size() <= 1 && !forceCollection)
        return rows->isEmpty() ? JsonValue::newObject() : rows->first();
    return JsonValue(rows);
}

} // namespace json

} // namespace fenlark
