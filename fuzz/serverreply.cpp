// Any reply of the server, applied to a small property by a whole synchronisation
// run: the run ends, nothing throws past it, no transaction is left open and the
// file stays sound.

#include "fuzzsupport.h"
#include "shell/changelog.h"
#include "shell/database.h"
#include "synch/synch.h"
#include "synch/transport.h"

#include <QFile>

#include <cstdlib>

using namespace fenlark;

namespace {

// Answers the first post with the input and every later one with "nothing more".
class CannedTransport : public ServerTransport {
public:
    explicit CannedTransport(QString reply) : m_reply(std::move(reply)) {}
    PostResult post(const QString &, const QByteArray &) override
    {
        PostResult result;
        result.ok = true;
        result.httpStatus = 200;
        result.reply = m_posts++ == 0 ? m_reply
                                      : QStringLiteral("{\"success\":true,\"data\":{\"requests\":[],\"acknowledgements\":[],"
                                                       "\"logupdates\":[]}}");
        return result;
    }

private:
    QString m_reply;
    int m_posts = 0;
};

// A property with two rooms, a client, a booking and changes waiting to be sent.
QString templateDatabase()
{
    const QString path = fuzzsupport::scratch().filePath(QStringLiteral("template.db"));
    auto db = Database::open(path);
    db->execute(QStringLiteral("insert into bbsetup (BBID, BBName, Password) values (12345, 'Fen Lodge', 'pw')"));
    db->execute(QStringLiteral("insert into room (BBRoomID, BBRTID, RoomName, OrderBy) values (1, 1, 'Heron', 1), (2, 1, 'Otter', 2)"));
    db->execute(QStringLiteral("insert into stock (BBStockID, StockName, Price) values (1, 'Wine', 12.5)"));
    db->execute(QStringLiteral("insert into client (Surname) values ('Walker')"));
    db->execute(QStringLiteral("insert into account (InvoiceTo) values (1)"));
    db->execute(QStringLiteral("insert into booking (FromDate, ToDate, MadeBy, BBAccountID, Status, BookingType) "
                               "values ('2027-01-10', '2027-01-12', 1, 1, 'C', 'N')"));
    db->execute(QStringLiteral("insert into guest (BBBookingID, BBRoomID, BBClientID, NoAdults) values (1, 1, 1, 2)"));
    ChangeLog::markAllChanged(*db);
    return path;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QString source = templateDatabase();
    const QString path = fuzzsupport::scratch().filePath(QStringLiteral("desk.db"));
    for (const QString &suffix : {QString(), QStringLiteral("-wal"), QStringLiteral("-shm")})
        QFile::remove(path + suffix);
    QFile::remove(fuzzsupport::scratch().filePath(QStringLiteral("fenlark.log")));
    if (!QFile::copy(source, path))
        std::abort();
    auto db = Database::open(path);
    CannedTransport transport(QString::fromUtf8(fuzzsupport::bytes(data, size)));
    Synch synch(*db, transport);
    ServerLogin login;
    login.server = QStringLiteral("127.0.0.1:1");
    login.bbid = 12345;
    login.password = QStringLiteral("pw");
    synch.setLogin(login);
    synch.setSkipSetup(true);
    synch.setShowForm(true);
    synch.synchronise();
    if (db->transactionDepth() != 0 || !db->quickCheck().isEmpty())
        std::abort();
    return 0;
}
