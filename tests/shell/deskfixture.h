#pragma once

// Small rows for the desk's tests: rooms, clients and bookings.

#include "bookings/bookingrecords.h"
#include "clients/clientrecords.h"
#include "shell/database.h"
#include "shell/session.h"
#include "support/testdatabase.h"
#include "support/recordingsink.h"

#include <QStringList>

#include <memory>
#include <vector>

namespace deskfixture {

inline void addRoom(fenlark::Database &db, qint32 id, const QString &name, qint32 type = 1)
{
    db.execute("insert into room (BBRoomID, BBRTID, RoomName, OrderBy) values(?, ?, ?, ?)", {id, type, name, id});
}

inline void addRoomType(fenlark::Database &db, qint32 id, const QString &name)
{
    db.execute("insert into roomtype (BBRTID, RTName, OrderBy) values(?, ?, ?)", {id, name, id});
}

inline qint32 addClient(fenlark::Database &db, const QString &first, const QString &surname, const QString &phone = {})
{
    fenlark::Client c;
    c.FirstName = first;
    c.Surname = surname;
    c.PhoneNo = phone;
    c.Active = "Y";
    c.update(db);
    return c.BBClientID;
}

// A booking of one room; returns its key.
inline qint32 addBooking(fenlark::Database &db, qint32 room, qint32 client, QDate from, int nights,
                         const QString &status = "C", int adults = 2, int children = 0, const QString &checkInOut = {})
{
    fenlark::Booking b;
    b.BookingType = "N";
    b.FromDate = from;
    b.ToDate = from.addDays(nights);
    b.Status = status;
    b.MadeBy = client;
    b.update(db);
    fenlark::Guest g;
    g.BBBookingID = b.BBBookingID;
    g.BBRoomID = room;
    g.BBClientID = client;
    g.NoAdults = static_cast<qint16>(adults);
    g.Child1 = static_cast<qint16>(children);
    g.CheckInOut = checkInOut;
    g.update(db);
    return b.BBBookingID;
}

// A property of four rooms with Anna Smith's booking (two adults and a child in
// room 2) in the first visible week, in a session of the given user.
inline std::unique_ptr<fenlark::Session> smallDesk(TestDatabase &t, const QString &user = "admin")
{
    addRoomType(t.db(), 1, "Double");
    for (int r = 1; r <= 4; ++r)
        addRoom(t.db(), r, QString("Room %1").arg(r));
    addBooking(t.db(), 2, addClient(t.db(), "Anna", "Smith", "021"), QDate::currentDate().addDays(-5), 3, "C", 2, 1);
    auto session = std::make_unique<fenlark::Session>(fenlark::Database::open(t.file("test.db")), 0);
    fenlark::UserStruct u = fenlark::UserStruct::autoAdmin();
    u.UserName = user;
    session->setUser(u);
    return session;
}

} // namespace deskfixture
