#include "synch/json.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>
#include <unordered_map>

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

JsonValue::JsonValue(bool value) : m_kind(Boolean), m_boolean(value) {}
JsonValue::JsonValue(qint32 value) : m_kind(Integer), m_integer(value) {}
JsonValue::JsonValue(double value) : m_kind(Double), m_real(value) {}
JsonValue::JsonValue(const QString &text) : m_kind(Text), m_text(text) {}
JsonValue::JsonValue(const char *text) : m_kind(Text), m_text(QString::fromUtf8(text)) {}

JsonValue::JsonValue(const QDateTime &value)
    : m_kind(DateTime), m_text(value.time() == QTime(0, 0) ? value.date().toString(QStringLiteral("yyyy-MM-dd"))
                                                           : value.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")))
{
}

JsonValue::JsonValue(std::shared_ptr<JsonObject> object) : m_kind(Object), m_node(std::move(object)) {}
JsonValue::JsonValue(std::shared_ptr<JsonArray> array) : m_kind(Array), m_node(std::move(array)) {}

JsonValue::JsonValue(const JsonValue &other) : m_kind(other.m_kind)
{
    copyFrom(other);
}

JsonValue::JsonValue(JsonValue &&other) noexcept : m_kind(other.m_kind)
{
    moveFrom(other);
}

JsonValue &JsonValue::operator=(const JsonValue &other)
{
    if (this != &other) {
        JsonValue copy(other);
        *this = std::move(copy);
    }
    return *this;
}

JsonValue &JsonValue::operator=(JsonValue &&other) noexcept
{
    if (this != &other) {
        release();
        m_kind = other.m_kind;
        moveFrom(other);
    }
    return *this;
}

JsonValue::~JsonValue()
{
    release();
}

void JsonValue::copyNumber(const JsonValue &other) noexcept
{
    switch (m_kind) {
    case Boolean: m_boolean = other.m_boolean; break;
    case Integer: m_integer = other.m_integer; break;
    case Double: m_real = other.m_real; break;
    default: m_real = 0;
    }
}

void JsonValue::copyFrom(const JsonValue &other)
{
    if (holdsText())
        new (&m_text) QString(other.m_text);
    else if (holdsNode())
        new (&m_node) std::shared_ptr<void>(other.m_node);
    else
        copyNumber(other);
}

void JsonValue::moveFrom(JsonValue &other) noexcept
{
    if (holdsText())
        new (&m_text) QString(std::move(other.m_text));
    else if (holdsNode())
        new (&m_node) std::shared_ptr<void>(std::move(other.m_node));
    else
        copyNumber(other);
    other.release();
    other.m_kind = Nothing;
    other.m_real = 0;
}

void JsonValue::release() noexcept
{
    if (holdsText())
        m_text.~QString();
    else if (holdsNode())
        m_node.~shared_ptr();
    m_kind = Nothing;
    m_real = 0;
}

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
    case Boolean: return m_boolean;
    case Integer: return m_integer != 0;
    case Double: return m_real != 0;
    case Text: return m_text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0 || m_text == QLatin1String("1");
    default: return false;
    }
}

qint32 JsonValue::toInt(bool *ok) const
{
    bool good = true;
    qint32 result = 0;
    switch (m_kind) {
    case Integer: result = m_integer; break;
    case Boolean: result = m_boolean ? 1 : 0; break;
    case Double: {
        const double d = m_real;
        if (std::isfinite(d) && d >= std::numeric_limits<qint32>::min() && d <= std::numeric_limits<qint32>::max())
            result = static_cast<qint32>(std::llround(d));
        else
            good = false;
        break;
    }
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
    case Integer: result = m_integer; break;
    case Double: result = m_real; break;
    case Boolean: result = m_boolean ? 1 : 0; break;
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
    case Text:
    case DateTime: return m_text;
    case Integer: return QString::number(m_integer);
    case Double: return doubleText(m_real);
    case Boolean: return m_boolean ? QStringLiteral("true") : QStringLiteral("false");
    default: return QString();
    }
}

JsonValue JsonValue::operator[](const QString &key) const
{
    const JsonObject *o = object();
    return o ? o->value(key) : JsonValue();
}

// ---------------------------------------------------------------- JsonObject

int JsonObject::indexOf(const QString &key) const
{
    if (!m_index.isEmpty())
        return m_index.value(key, -1);
    for (int i = 0; i < static_cast<int>(m_entries.size()); ++i) {
        if (m_entries[i].first == key)
            return i;
    }
    return -1;
}

void JsonObject::buildIndex()
{
    m_index.clear();
    if (static_cast<int>(m_entries.size()) < IndexFrom)
        return;
    m_index.reserve(static_cast<qsizetype>(m_entries.size()) * 2);
    for (int i = 0; i < static_cast<int>(m_entries.size()); ++i)
        m_index.insert(m_entries[i].first, i);
}

bool JsonObject::add(const QString &key, const JsonValue &value)
{
    if (indexOf(key) >= 0)
        return false;
    m_entries.emplace_back(key, value);
    const int at = static_cast<int>(m_entries.size()) - 1;
    if (!m_index.isEmpty())
        m_index.insert(key, at);
    else if (at + 1 >= IndexFrom)
        buildIndex();
    return true;
}

void JsonObject::set(const QString &key, const JsonValue &value)
{
    const int at = indexOf(key);
    if (at >= 0)
        m_entries[at].second = value;
    else
        add(key, value);
}

JsonValue JsonObject::value(const QString &key) const
{
    const int at = indexOf(key);
    return at < 0 ? JsonValue() : m_entries[at].second;
}

void JsonObject::remove(const QString &key)
{
    const int at = indexOf(key);
    if (at < 0)
        return;
    m_entries.erase(m_entries.begin() + at);
    buildIndex();
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

// A text past MaxValues: the whole parse is abandoned.
struct TooManyValues {};

// Texts that recur throughout a reply (keys, table names, "U", "Y") are kept once
// and shared, so a reply of many small rows costs little more than its rows.
class TextPool {
public:
    QString get(QStringView text)
    {
        const std::u16string_view key(reinterpret_cast<const char16_t *>(text.utf16()), static_cast<std::size_t>(text.size()));
        const auto it = m_texts.find(key);
        if (it != m_texts.end())
            return it->second;
        QString kept = text.toString();
        if (m_texts.size() < MaxPooled)
            m_texts.emplace(std::u16string_view(reinterpret_cast<const char16_t *>(kept.utf16()), static_cast<std::size_t>(kept.size())), kept);
        return kept;
    }

private:
    static constexpr std::size_t MaxPooled = 4096;
    // The views point into the QString beside them, which keeps its text alive.
    std::unordered_map<std::u16string_view, QString> m_texts;
};

class Parser {
public:
    Parser(const QString &text, qsizetype maxValues)
        : m_text(text), m_data(reinterpret_cast<const char16_t *>(text.utf16())), m_size(text.size()), m_maxValues(maxValues)
    {
    }

    JsonValue parseTop()
    {
        skipChar();
        try {
            if (m_pos < m_size && at() == u'{')
                return parseObject();
            if (m_pos < m_size && at() == u'[')
                return parseArray();
        } catch (const TooManyValues &) {
            noteError(QStringLiteral("More than %1 values: the text is refused whole\r\n").arg(m_maxValues));
            return JsonValue();
        }
        m_errors = QStringLiteral("Invalid JSON");
        return JsonValue();
    }

    QString errors() const { return m_errors; }

private:
    static constexpr qsizetype ExcerptLength = 40;
    static constexpr qsizetype PooledLength = 16;

    char16_t at() const { return m_data[m_pos]; }
    bool atEnd() const { return m_pos >= m_size; }
    QString excerpt(qsizetype length = ExcerptLength) const { return m_text.mid(m_pos, std::min(length, ExcerptLength)); }
    QString position() const { return QString::number(m_pos + 1); }

    void noteError(const QString &text)
    {
        if (m_errors.size() < MaxErrorText)
            m_errors += text.left(MaxErrorText - m_errors.size());
    }

    void countValue()
    {
        if (++m_values > m_maxValues)
            throw TooManyValues{};
    }

    // Steps over blanks, tabs, line ends, parentheses and both kinds of comment.
    void skipChar()
    {
        // Most tokens follow one another with nothing between.
        if (m_pos < m_size && m_data[m_pos] > u'/' && m_data[m_pos] != u'*')
            return;
        bool startComment = false, inComment = false, longComment = false;
        while (m_pos < m_size) {
            const char16_t c = m_data[m_pos];
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
    bool openContainer(char16_t open, const QString &kind, qsizetype shownLength)
    {
        skipChar();
        if (atEnd() || at() != open) {
            noteError(QStringLiteral("Invalid %1 at position %2 : %3\r\n").arg(kind, position(), excerpt(shownLength)));
            return false;
        }
        if (!enter()) {
            noteError(QStringLiteral("Nesting too deep at position %1\r\n").arg(position()));
            m_pos = m_size;
            return false;
        }
        ++m_pos;
        return true;
    }

    // Moves to the next member of an object or array: false at the closing
    // bracket or at the end of the text (noted as an error).
    bool nextMember(char16_t close, const QString &kind)
    {
        skipChar();
        if (atEnd()) {
            noteError(QStringLiteral("Unexpected end of text in %1 at position %2\r\n").arg(kind, position()));
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
                noteError(QStringLiteral("Unexpected end of text in %1 at position %2\r\n").arg(kind, position()));
                return false;
            }
        }
        return true;
    }

    JsonValue parseObject()
    {
        auto object = std::make_shared<JsonObject>();
        JsonValue result(object);
        if (!openContainer(u'{', QStringLiteral("Object"), ExcerptLength))
            return result;
        while (nextMember(u'}', QStringLiteral("object"))) {
            const qsizetype before = m_pos;
            const QString key = parseKey();
            try {
                const JsonValue value = parseValue();
                if (!object->add(key, value))
                    throw ValueFailure{QStringLiteral("This key is already associated with an element of this collection")};
            } catch (const ValueFailure &failure) {
                noteError(failure.text + QStringLiteral(": ") + key.left(ExcerptLength) + QStringLiteral("\r\n"));
                break;
            }
            if (m_pos == before) {
                noteError(QStringLiteral("Unreadable member at position %1 : %2\r\n").arg(position(), excerpt()));
                break;
            }
        }
        object->squeeze();
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
                noteError(failure.text + QStringLiteral(": ") + excerpt(20) + QStringLiteral("\r\n"));
                break;
            }
            if (m_pos == before) {
                // A value that could not be read at all: stop rather than read it forever.
                noteError(QStringLiteral("Unreadable value at position %1 : %2\r\n").arg(position(), excerpt(20)));
                break;
            }
        }
        --m_depth;
        return result;
    }

    JsonValue parseValue()
    {
        countValue();
        skipChar();
        if (atEnd())
            return parseNumber();
        switch (at()) {
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

    QString slice(qsizetype from, qsizetype to)
    {
        const QStringView view(m_data + from, to - from);
        return view.size() <= PooledLength ? m_pool.get(view) : view.toString();
    }

    QString parseString()
    {
        skipChar();
        if (atEnd())
            return QString();
        const char16_t quote = at();
        ++m_pos;
        // Most strings hold no escape: take them in one piece.
        const char16_t *p = m_data + m_pos;
        const char16_t *const end = m_data + m_size;
        while (p != end && *p != quote && *p != u'\\')
            ++p;
        if (p != end && *p == quote) {
            QString out = slice(m_pos, p - m_data);
            m_pos = p - m_data + 1;
            return out;
        }
        QString out;
        out.reserve(p - m_data - m_pos + 16);
        while (m_pos < m_size) {
            const char16_t c = at();
            if (c == quote) {
                ++m_pos;
                return out;
            }
            if (c != u'\\') {
                out += QChar(c);
                ++m_pos;
                continue;
            }
            ++m_pos;
            if (atEnd())
                break;
            const char16_t e = at();
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
                    const int d = hexDigit(at());
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
            const char16_t c = at();
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
        const QStringView token(m_data + start, m_pos - start);
        if (isDouble) {
            // One whole number and a finite one: "1e999", "1.5.5e3" or "1e" is no number at all.
            bool ok = false;
            const double d = token.toDouble(&ok);
            if (!ok || !std::isfinite(d))
                throw ValueFailure{QStringLiteral("Invalid number ") + token.left(ExcerptLength).toString()};
            return JsonValue(d);
        }
        qsizetype i = 0;
        const bool negative = !token.isEmpty() && token[0] == u'-';
        if (!token.isEmpty() && (token[0] == u'-' || token[0] == u'+'))
            ++i;
        if (i == token.size())
            throw ValueFailure{QStringLiteral("Type mismatch")};
        qint64 n = 0;
        for (; i < token.size(); ++i) {
            const char16_t c = token[i].unicode();
            if (c < u'0' || c > u'9')
                throw ValueFailure{QStringLiteral("Type mismatch")};
            n = n * 10 + (c - u'0');
            if (n > qint64(std::numeric_limits<qint32>::max()) + 1)
                throw ValueFailure{QStringLiteral("Overflow")};
        }
        if (negative)
            n = -n;
        if (n > std::numeric_limits<qint32>::max() || n < std::numeric_limits<qint32>::min())
            throw ValueFailure{QStringLiteral("Overflow")};
        return JsonValue(static_cast<qint32>(n));
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
        noteError(QStringLiteral("Invalid Boolean at position %1 : %2\r\n").arg(position(), excerpt()));
        return JsonValue(false);
    }

    JsonValue parseNull()
    {
        if (QStringView(m_text).mid(m_pos, 4) == QLatin1String("null")) {
            m_pos += 4;
            return JsonValue::null();
        }
        noteError(QStringLiteral("Invalid null value at position %1 : %2\r\n").arg(position(), excerpt()));
        return JsonValue::empty();
    }

    static bool isKeyBlank(char16_t c) { return c == u'\r' || c == u'\n' || c == u'\t' || c == u' '; }

    QString parseKey()
    {
        skipChar();
        // The usual key: double-quoted, no blank inside, then the colon.
        if (m_pos < m_size && at() == u'"') {
            qsizetype end = m_pos + 1;
            while (end < m_size && m_data[end] != u'"' && m_data[end] != u' ' && m_data[end] != u'\t' && m_data[end] != u'\r'
                   && m_data[end] != u'\n')
                ++end;
            if (end < m_size && m_data[end] == u'"') {
                const qsizetype keyStart = m_pos + 1;
                m_pos = end + 1;
                QString key = m_pool.get(QStringView(m_data + keyStart, end - keyStart));
                skipChar();
                if (atEnd() || at() != u':') {
                    noteError(QStringLiteral("Invalid Key at position %1 : %2\r\n").arg(position(), key.left(ExcerptLength)));
                    return key;
                }
                ++m_pos;
                return key;
            }
        }
        QString key;
        bool inDouble = false, inSingle = false;
        while (m_pos < m_size) {
            const char16_t c = at();
            if ((c == u'"' && !inSingle) || (c == u'\'' && !inDouble)) {
                bool &flag = c == u'"' ? inDouble : inSingle;
                flag = !flag;
                ++m_pos;
                if (!flag) {
                    skipChar();
                    if (atEnd() || at() != u':') {
                        noteError(QStringLiteral("Invalid Key at position %1 : %2\r\n").arg(position(), key.left(ExcerptLength)));
                        return key;
                    }
                }
                continue;
            }
            if (c == u':' && !inDouble && !inSingle) {
                ++m_pos;
                return m_pool.get(key);
            }
            if (!isKeyBlank(c))
                key += QChar(c);
            ++m_pos;
        }
        return key;
    }

    const QString &m_text;
    const char16_t *m_data;
    qsizetype m_size;
    qsizetype m_maxValues;
    qsizetype m_pos = 0;
    int m_depth = 0;
    qsizetype m_values = 0;
    QString m_errors;
    TextPool m_pool;
};

constexpr char HexDigits[] = "0123456789ABCDEF";

} // namespace

JsonValue parse(const QString &text, QString *errors, qsizetype maxValues)
{
    Parser parser(text, maxValues);
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
    case JsonValue::DateTime:
        out += QLatin1Char('"');
        out += value.toText();
        out += QLatin1Char('"');
        break;
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
