#pragma once

// A small property for the money tests: VAT-registered at 14% (code 1) with a
// zero-rated code 2, three rooms, stock items, clients, and bookings with their
// nightly rates and accounts written straight through the record classes.

#include "accounts/accountrecords.h"
#include "accounts/accounts.h"
#include "accounts/invoices.h"
#include "accounts/vat.h"
#include "bookings/bookingrecords.h"
#include "clients/clientrecords.h"
#include "shell/security.h"
#include "shell/setuprecords.h"
#include "support/testdatabase.h"

#include <QSqlQuery>
#include <QStringList>

#include <initializer_list>
#include <optional>
#include <vector>

namespace moneyfixture {

enum StockItem { Wine = 1, Water = 2, Retired = 3 };

inline void setUpProperty(fenlark::Database &db, bool vatRegistered = true)
{
    fenlark::BBSetup setup;
    setup.BBID = 20001;
    setup.BBName = QStringLiteral("Fixture Lodge");
    setup.Password = QStringLiteral("pw");
    setup.CurrencyCode = QStringLiteral("ZAR");
    setup.VatNo = vatRegistered ? QStringLiteral("4000123456") : QString();
    db.execute(QStringLiteral("delete from bbsetup"));
    setup.update(db);
    db.execute(QStringLiteral("insert into vatcode (VatCode, VATRate) values (1, 14), (2, 0)"));
    db.execute(QStringLiteral("insert into stock (BBStockID, StockName, Active, Price, VatCode) values "
                              "(1, 'Wine', 'Y', 180, 1), (2, 'Water', 'Y', 20, 2), (3, 'Old menu', 'N', 50, 1)"));
    for (int room = 1; room <= 3; ++room)
        db.execute(QStringLiteral("insert into room (BBRoomID, BBRTID, RoomName, OrderBy) values(?, 1, ?, ?)"),
                   {room, QStringLiteral("Room %1").arg(room), room});
}

// A fresh database holding the property above.
struct PropertyDatabase : TestDatabase {
    explicit PropertyDatabase(bool vatRegistered = true) { setUpProperty(db(), vatRegistered); }
};

inline qint32 addClient(fenlark::Database &db, const QString &surname, const QString &phone = {}, const QString &email = {})
{
    fenlark::Client c;
    c.Surname = surname;
    c.PhoneNo = phone;
    c.Email = email;
    c.Active = QStringLiteral("Y");
    c.update(db);
    return c.BBClientID;
}

// A booking made by client, on its own new account, one leg per room, each
// night at rate.
struct BookingMade {
    qint32 booking = 0;
    qint32 account = 0;
    std::vector<qint32> legs;
};

inline BookingMade addBooking(fenlark::Database &db, qint32 client, std::initializer_list<qint32> rooms, QDate from, int nights,
                              double rate, std::optional<qint32> account = std::nullopt)
{
    BookingMade made;
    made.account = account ? *account : fenlark::createAccount(db, client);
    fenlark::Booking b;
    b.BookingType = QStringLiteral("N");
    b.FromDate = from;
    b.ToDate = from.addDays(nights);
    b.Status = QStringLiteral("C");
    b.MadeBy = client;
    b.BBAccountID = made.account;
    b.update(db);
    made.booking = b.BBBookingID;
    for (qint32 room : rooms) {
        fenlark::Guest g;
        g.BBBookingID = b.BBBookingID;
        g.BBRoomID = room;
        g.BBClientID = client;
        g.NoAdults = 2;
        g.update(db);
        made.legs.push_back(g.BBGuestID);
        for (int n = 0; n < nights; ++n) {
            fenlark::DailyRate r;
            r.CalDate = from.addDays(n);
            r.BBBookingID = b.BBBookingID;
            r.BBRoomID = room;
            r.RoomRate = rate;
            r.update(db);
        }
    }
    return made;
}

inline qint32 addExtraRow(fenlark::Database &db, qint32 guest, qint32 account, double qty, double price, qint32 stock = Wine,
                          QDate date = QDate(2031, 7, 1))
{
    fenlark::Extra e;
    e.BBGuestID = guest;
    e.BBAccountID = account;
    e.ExtraDate = date;
    e.Qty = qty;
    e.Price = price;
    e.BBStockID = stock;
    e.update(db);
    return e.BBExtraID;
}

inline fenlark::UserStruct clerk(const QString &name = QStringLiteral("mary"))
{
    fenlark::UserStruct user;
    user.UserID = 7;
    user.UserName = name;
    return user;
}

// Answers the first-number question from a list; an exhausted list cancels.
class ScriptedPrompter : public fenlark::FirstNumberPrompter {
public:
    explicit ScriptedPrompter(QStringList answers = {}) : m_answers(std::move(answers)) {}
    std::optional<QString> askFirstNumber(const QString &, const QString &) override
    {
        ++asked;
        if (m_answers.isEmpty())
            return std::nullopt;
        return m_answers.takeFirst();
    }
    void refuseFirstNumber(const fenlark::Refusal &why) override { refused << why.id(); }
    int asked = 0;
    QList<int> refused;

private:
    QStringList m_answers;
};

// The notes of the audit lines, oldest first.
inline QStringList auditNotes(fenlark::Database &db)
{
    QStringList notes;
    QSqlQuery q = db.query(QStringLiteral("select notes from audit order by rowid"));
    while (q.next())
        notes << q.value(0).toString();
    return notes;
}

inline QVariant cell(fenlark::Database &db, const QString &sql, const QVariantList &values = {})
{
    return db.scalar(sql, values);
}

} // namespace moneyfixture
