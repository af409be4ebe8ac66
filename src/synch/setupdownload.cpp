#include "synch/setupdownload.h"

#include "shell/database.h"
#include "shell/errorlog.h"
#include "shell/messages.h"
#include "shell/schema.h"
#include "shell/strings.h"
#include "synch/json.h"
#include "synch/synchtables.h"

#include <QSqlQuery>

namespace fenlark {

namespace {
// A refused login asked again more often than this is taken as given up.
constexpr int MaxLoginAttempts = 20;
}

SetupDownload::SetupDownload(Database &db, ServerTransport &transport) : m_db(db), m_transport(transport) {}

bool SetupDownload::initialise()
{
    m_status = false;
    m_loginRefused = false;
    m_refused = false;
    for (int attempt = 0; attempt < MaxLoginAttempts; ++attempt) {
        m_stopOnFailure = true;
        const PostResult posted = m_transport.post(setupUrl(m_login, m_lastUpdated, m_synchCounter), QByteArray());
        if (!posted.ok && posted.httpStatus > 0) {
            m_refused = posted.httpStatus >= 400 && posted.httpStatus <= 499;
            reportCommunicationError(posted.error);
            return false;
        }
        if (!posted.ok || posted.reply.isEmpty()) {
            reportNoConnection();
            return false;
        }
        QString errors;
        const JsonValue reply = json::parse(posted.reply, &errors);
        if (!errors.isEmpty()) {
            // Only a reply read whole is applied: a cut one changes nothing.
            reportCommunicationError(getString(6022, QStringLiteral("The server's reply could not be applied: ")) + errors.left(200));
            return false;
        }
        if (processSetupReply(reply)) {
            m_status = true;
            return true;
        }
        if (m_stopOnFailure)
            return false;
        if (!m_loginRetry || !m_loginRetry(m_login.bbid, m_login.password)) {
            m_loginRefused = true;
            return false;
        }
    }
    m_loginRefused = true;
    return false;
}

bool SetupDownload::processSetupReply(const JsonValue &reply)
{
    m_stopOnFailure = true;
    if (!reply.isObject()) {
        reportCommunicationError(getString(6010, QStringLiteral("Nothing From Server")));
        return false;
    }
    if (!reply[QStringLiteral("success")].toBool()) {
        const QString message = reply[QStringLiteral("error")][QStringLiteral("message")].toText();
        m_refused = true;
        reportCommunicationError(message);
        return false;
    }
    if (reply.object()->contains(QStringLiteral("synconly"))) {
        bool ok = false;
        const qint32 counter = reply[QStringLiteral("synconly")].toInt(&ok);
        const JsonValue given = reply[QStringLiteral("synconly")];
        if (!ok || counter < 0 || (given.kind() == JsonValue::Double && given.toDouble() != counter)) {
            reportCommunicationError(getString(6022, QStringLiteral("The server's reply could not be applied: "))
                                     + QStringLiteral("synconly ") + reply[QStringLiteral("synconly")].toText().left(40));
            return false;
        }
        applySyncOnly(counter);
        return true;
    }
    if (reply.object()->contains(QStringLiteral("loginfail"))) {
        m_refused = true;
        m_failure = getString(6018, QStringLiteral("Incorrect BBID / Password"));
        if (m_showMessages)
            messages::critical(m_failure, getString(6017, QStringLiteral("Incorrect login details")));
        m_stopOnFailure = false;
        return false;
    }
    const JsonValue data = reply[QStringLiteral("data")];
    if (!data.isObject()) {
        reportCommunicationError(getString(6010, QStringLiteral("Nothing From Server")));
        return false;
    }
    try {
        replaceTables(data);
    } catch (const SynchDataError &e) {
        reportCommunicationError(e.message());
        return false;
    } catch (const DatabaseError &e) {
        reportCommunicationError(e.message());
        return false;
    }
    checkRoomsAfterSetup();
    return true;
}

void SetupDownload::replaceTables(const JsonValue &data)
{
    m_replaced.clear();
    m_ignored.clear();
    SynchTables tables(m_db);
    Transaction transaction(m_db);
    for (const auto &[name, rowsValue] : data.object()->entries()) {
        const QString table = name.toLower();
        // Only the tables that belong to the server can be replaced by it.
        if (!Schema::serverTables().contains(table) || !m_db.tableExists(table)) {
            m_ignored << name.left(60);
            continue;
        }
        if (!rowsValue.isArray())
            throw SynchDataError(QStringLiteral("The setup table %1 is not a list of rows").arg(table));
        const std::vector<TableColumn> &columns = tables.columns(table);
        QStringList names, marks;
        for (const TableColumn &c : columns) {
            names << c.name;
            marks << QStringLiteral("?");
        }
        const QString insert = QStringLiteral("insert into %1 (%2) values(%3)")
                                   .arg(table, names.join(QLatin1Char(',')), marks.join(QLatin1Char(',')));
        m_db.execute(QStringLiteral("delete from ") + table);
        QSet<QString> unknownNoted;
        for (const JsonValue &row : *rowsValue.array()) {
            if (!row.isObject())
                throw SynchDataError(QStringLiteral("A row of the setup table %1 is not an object").arg(table));
            // The server spells its keys in lower case; match columns without regard to case.
            QHash<QString, JsonValue> byName;
            for (const auto &[key, value] : row.object()->entries()) {
                const QString lower = key.toLower();
                if (!tables.column(table, lower)) {
                    if (!unknownNoted.contains(lower)) {
                        unknownNoted.insert(lower);
                        m_ignored << table + QLatin1Char('.') + key.left(60);
                    }
                    continue;
                }
                byName.insert(lower, value);
            }
            QVariantList bound;
            for (const TableColumn &c : columns) {
                const JsonValue value = byName.value(c.name.toLower());
                // A row names its own key, from 0 up: a missing or negative one would
                // be numbered by the database or clash with what refers to it.
                if (c.primaryKey && c.isInteger) {
                    bool ok = false;
                    if (value.toInt(&ok) < 0 || !ok)
                        throw SynchDataError(QStringLiteral("%1.%2: not a key: %3").arg(table, c.name, value.toText().left(40)));
                }
                bound << tables.columnValue(c, value, table);
            }
            m_db.execute(insert, bound);
        }
        m_replaced << table;
    }
    transaction.commit();
}

void SetupDownload::applySyncOnly(qint32 counter)
{
    Transaction transaction(m_db);
    if (!m_db.scalar(QStringLiteral("select 1 from bbsetup")).isValid())
        m_db.execute(QStringLiteral("insert into bbsetup (BBID) values (?)"), {m_login.bbid});
    m_db.execute(QStringLiteral("update bbsetup set SynchCounter = ?"), {counter});
    transaction.commit();
}

void SetupDownload::checkRoomsAfterSetup()
{
    const QVariant found = m_db.scalar(
        QStringLiteral("select guest.BBBookingID from booking, guest where booking.BBBookingID = guest.BBBookingID "
                       "and guest.BBRoomID not in (select BBRoomID from room) and booking.ToDate >= ?"),
        {sqlDate(QDate::currentDate())});
    m_roomsWarning = found.isValid();
    if (m_roomsWarning && m_showMessages)
        messages::critical(getString(6020, QStringLiteral("Rooms have been deleted from the Server Setup with future bookings. Please call veldmoor.")),
                           getString(6019, QStringLiteral("Error in database")));
}

void SetupDownload::reportNoConnection()
{
    m_failure = getString(6014, QStringLiteral("Could not access the veldmoor server. Please test you have an Internet connection and then try again."));
    if (m_showMessages)
        messages::critical(m_failure, getString(2015, QStringLiteral("Connection not established")));
}

void SetupDownload::reportCommunicationError(const QString &text)
{
    // A server may echo anything back, the password included.
    m_failure = redactPassword(text, m_login.password).left(ErrorLog::MaxMessageBytes);
    if (m_showMessages)
        messages::critical(m_failure.left(100) + QStringLiteral("\r\n\r\n") + getString(2019, QStringLiteral("Please call veldmoor support (021) 555 0100")),
                           getString(6015, QStringLiteral("Communication error")));
}

} // namespace fenlark
