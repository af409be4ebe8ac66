#pragma once

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>

#include <memory>
#include <utility>
#include <vector>

class QSqlQuery;
class QSqlRecord;
class QVariant;

namespace fenlark {

class JsonObject;
using JsonArray = QList<class JsonValue>;

// One value of the server exchange. Objects and arrays are shared by reference,
// as the messages are built up and handed around in pieces.
class JsonValue {
public:
    enum Kind : quint8 {
        Nothing,  // no value at all: what a failed parse returns
        Null,
        Empty,    // a number that ran off the end of a truncated text
        Boolean,
        Integer,  // 32-bit
        Double,
        Text,
        DateTime, // only ever written, never parsed: dates arrive as text; held in its written form
        Object,
        Array,
    };

    JsonValue() {}
    static JsonValue null();
    static JsonValue empty();
    JsonValue(bool value);
    JsonValue(qint32 value);
    JsonValue(double value);
    JsonValue(const QString &text);
    JsonValue(const char *text);
    JsonValue(const QDateTime &value);
    JsonValue(std::shared_ptr<JsonObject> object);
    JsonValue(std::shared_ptr<JsonArray> array);
    static JsonValue newObject();
    static JsonValue newArray();
    // A database value: null, whole numbers in 32 bits, other numbers, text.
    static JsonValue fromVariant(const QVariant &value);

    Kind kind() const { return m_kind; }
    bool isNothing() const { return m_kind == Nothing; }
    bool isNull() const { return m_kind == Null; }
    bool isObject() const { return m_kind == Object; }
    bool isArray() const { return m_kind == Array; }
    bool isNumber() const { return m_kind == Integer || m_kind == Double; }
    bool isText() const { return m_kind == Text; }

    bool toBool() const;
    qint32 toInt(bool *ok = nullptr) const;
    double toDouble(bool *ok = nullptr) const;
    // The value as text: numbers in their written form, null and empty as "".
    QString toText() const;

    // Null pointers when the value is not of that kind.
    JsonObject *object() const { return m_kind == Object ? static_cast<JsonObject *>(m_node.get()) : nullptr; }
    JsonArray *array() const { return m_kind == Array ? static_cast<JsonArray *>(m_node.get()) : nullptr; }

    // Member of an object; Nothing when absent or not an object.
    JsonValue operator[](const QString &key) const;

    JsonValue(const JsonValue &other);
    JsonValue(JsonValue &&other) noexcept;
    JsonValue &operator=(const JsonValue &other);
    JsonValue &operator=(JsonValue &&other) noexcept;
    ~JsonValue();

private:
    bool holdsText() const { return m_kind == Text || m_kind == DateTime; }
    bool holdsNode() const { return m_kind == Object || m_kind == Array; }
    // Starts the member of other's kind (m_kind already set) as a copy or a move of it.
    void copyFrom(const JsonValue &other);
    void moveFrom(JsonValue &other) noexcept;
    void copyNumber(const JsonValue &other) noexcept;
    void release() noexcept;

    // Kept to 32 bytes, as a server reply may hold millions of values: the kind
    // tells which member of the union lives.
    Kind m_kind = Nothing;
    union {
        bool m_boolean;
        qint32 m_integer;
        double m_real = 0;
        QString m_text;                 // Text, and DateTime in its written form
        std::shared_ptr<void> m_node;   // the JsonObject or JsonArray
    };
};

// An object: keys are case-sensitive and keep the order in which they came. Small
// objects (the usual row) are searched in order; a large one gets an index.
class JsonObject {
public:
    // False when the key is already there (the value stays as it was).
    bool add(const QString &key, const JsonValue &value);
    // Adds or replaces.
    void set(const QString &key, const JsonValue &value);
    bool contains(const QString &key) const { return indexOf(key) >= 0; }
    JsonValue value(const QString &key) const;
    void remove(const QString &key);
    int size() const { return static_cast<int>(m_entries.size()); }
    bool isEmpty() const { return m_entries.empty(); }
    const std::vector<std::pair<QString, JsonValue>> &entries() const { return m_entries; }
    QStringList keys() const;
    // Gives back the room kept for members yet to come.
    void squeeze() { m_entries.shrink_to_fit(); }

private:
    static constexpr int IndexFrom = 16;
    int indexOf(const QString &key) const;
    void buildIndex();

    std::vector<std::pair<QString, JsonValue>> m_entries;
    QHash<QString, int> m_index;   // empty (and unallocated) below IndexFrom entries
};

namespace json {

// Nesting deeper than this is refused as hostile.
constexpr int MaxDepth = 256;
// A text of more values than this is refused whole: no reply of the exchange comes
// near it, and it keeps a hostile one (a 64 MiB "[0,0,0,...") within bounded memory.
constexpr qsizetype MaxValues = 8'000'000;
// The error text stops growing here; each error quotes at most a short excerpt.
constexpr qsizetype MaxErrorText = 4096;

// Reads a text forgivingly: comments, parentheses and line breaks count as white
// space, single quotes and bare keys are accepted, and a failure in the middle of an
// object keeps what was read before it. The result is an object or an array, or
// Nothing when the text holds neither or more than MaxValues values; every failure
// is described in errors. A number must be whole and in 32 bits, or a finite
// double written as one number ("1e999", "1.5.5e3" and "NaN" are failures).
// Truncated or hostile text never loops, overruns or recurses without bound.
JsonValue parse(const QString &text, QString *errors = nullptr, qsizetype maxValues = MaxValues);

// The text of a value: no white space, keys as they stand, pure ASCII with
// upper-case \u escapes, the slash always escaped.
QString toString(const JsonValue &value);
void write(const JsonValue &value, QString &out);
// A text's escaped form, without the quotes.
void encode(const QString &text, QString &out);

// One row as an object, one entry per column in column order, null kept as null.
JsonValue recordToValue(const QSqlRecord &record);
// Every row of a query: a single row (or none, as an empty object) is an object
// unless forceCollection; more rows are an array.
JsonValue recordsetToValue(QSqlQuery &query, bool forceCollection);

} // namespace json

} // namespace fenlark
