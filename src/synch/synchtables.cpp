#include "synch/synchtables.h"

#include "shell/database.h"
#include "shell/schema.h"
#include "synch/json.h"

#include <QSqlQuery>

namespace fenlark {

namespace {
// A text longer than this from the server is refused rather than stored.
constexpr qsizetype MaxTextLength = 1 << 20;
}

bool SynchTables::isShared(const QString &table)
{
    return Schema::sharedTables().contains(table) || table == QLatin1String("creditnote");
}

QString SynchTables::localKey(const QString &table)
{
    static const QHash<QString, QString> keys = {
        {"booking", "BBBookingID"}, {"guest", "BBGuestID"}, {"client", "BBClientID"},
        {"clientextra", "BBClientExtraID"}, {"clienttran", "BBClientTranID"}, {"account", "BBAccountID"},
        {"event", "BBEventID"}, {"payment", "BBPaymentID"}, {"invoice", "BBInvoiceID"},
        {"invoiceitem", "BBInvoiceItemID"}, {"extra", "BBExtraID"}, {"creditnote", "BBCreditNoteID"},
    };
    return keys.value(table);
}

QString SynchTables::serverKey(const QString &table)
{
    const QString key = localKey(table);
    return key.isEmpty() ? QString() : key.mid(2);
}

const std::vector<TableColumn> &SynchTables::columns(const QString &table)
{
    auto it = m_columns.find(table);
    if (it != m_columns.end())
        return *it;
    std::vector<TableColumn> list;
    if (m_db.tableExists(table)) {
        // The name was checked against the database's own list of tables above.
        QSqlQuery q = m_db.query(QStringLiteral("pragma table_info(%1)").arg(table));
        while (q.next()) {
            TableColumn c;
            c.name = q.value(1).toString();
            const QString type = q.value(2).toString().toLower();
            c.isInteger = type.contains(QLatin1String("int"));
            c.isReal = type.contains(QLatin1String("real")) || type.contains(QLatin1String("double"))
                || type.contains(QLatin1String("float")) || type.contains(QLatin1String("money"));
            c.notNull = q.value(3).toInt() != 0;
            c.primaryKey = q.value(5).toInt() != 0;
            list.push_back(c);
        }
    }
    return *m_columns.insert(table, list);
}

const TableColumn *SynchTables::column(const QString &table, const QString &name)
{
    for (const TableColumn &c : columns(table)) {
        if (c.name.compare(name, Qt::CaseInsensitive) == 0)
            return &c;
    }
    return nullptr;
}

qint32 SynchTables::serverToLocalId(const QString &table, qint32 tableId)
{
    const QVariant v = m_db.scalar(QStringLiteral("select %1 from %2 where %3 = ?")
                                       .arg(localKey(table), table, serverKey(table)),
                                   {tableId});
    return v.isValid() ? v.toInt() : -1;
}

qint32 SynchTables::localToServerId(const QString &table, qint32 localId)
{
    const QVariant v = m_db.scalar(QStringLiteral("select %1 from %2 where %3 = ?")
                                       .arg(serverKey(table), table, localKey(table)),
                                   {localId});
    return v.isValid() ? v.toInt() : -1;
}

QVariant SynchTables::columnValue(const TableColumn &column, const JsonValue &value, const QString &table)
{
    const auto refuse = [&](const QString &why) {
        return SynchDataError(QStringLiteral("%1.%2: %3").arg(table, column.name, why));
    };
    if (value.isNothing() || value.isNull() || value.kind() == JsonValue::Empty) {
        if (!column.notNull)
            return QVariant(QMetaType(column.isInteger ? QMetaType::LongLong
                                                      : column.isReal ? QMetaType::Double : QMetaType::QString));
        if (column.isInteger)
            return 0;
        if (column.isReal)
            return 0.0;
        return QString("");  // empty, not null: a null QString binds as NULL
    }
    if (value.isObject() || value.isArray())
        throw refuse(QStringLiteral("a structure where a value belongs"));
    if (column.isInteger) {
        bool ok = false;
        const qint32 n = value.toInt(&ok);
        // 2.0 is the whole number 2; 2.5 is no value of a whole-number column.
        if (!ok || (value.kind() == JsonValue::Double && value.toDouble() != static_cast<double>(n)))
            throw refuse(QStringLiteral("not a whole number in 32 bits: ") + value.toText().left(40));
        return n;
    }
    if (column.isReal) {
        bool ok = false;
        const double d = value.toDouble(&ok);
        if (!ok)
            throw refuse(QStringLiteral("not a finite number: ") + value.toText().left(40));
        return d;
    }
    const QString text = value.toText();
    if (text.size() > MaxTextLength)
        throw refuse(QStringLiteral("text too long"));
    return text.isNull() ? QString("") : text;
}

} // namespace fenlark
