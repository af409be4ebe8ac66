#pragma once

// A small property seeded for the report tests: three rooms, six clients, six
// bookings around March 2026 with the boundary cases the reports must get right
// (a stay straddling 1 March, one straddling 31 March, a room out of service, a
// paid booking, back-to-back stays on 13 March), extras, payments, a ledger for
// the age analysis as at 31 May 2026, and audit lines either side of midnight.
#include "shell/database.h"
#include "support/testdatabase.h"

#include <QVariantList>

namespace reportfixture {

inline void insert(fenlark::Database &db, const char *sql, const QVariantList &values)
{
    db.execute(QString::fromUtf8(sql), values);
}

inline void seed(fenlark::Database &db)
{
    using V = QVariantList;
    for (const V &room : {V{1, "Room 1", 2}, V{2, "Room 2", 1}, V{3, "Cottage", 3}})
        insert(db, "insert into room (BBRoomID, RoomName, OrderBy) values (?,?,?)", room);
    insert(db, "insert into ratesheet (BBRateSheetID, RateCode) values (1, 'CORP')", {});
    insert(db, "insert into package (BBPackageID, PackageCode) values (5, 'GOLF')", {});
    insert(db, "insert into ratecode (BBRateID, Source, SourceID) values (9, 'B', 5)", {});
    for (const V &stock : {V{1, "Wine", 85.0}, V{2, "Transfer", 250.0}})
        insert(db, "insert into stock (BBStockID, StockName, Price) values (?,?,?)", stock);

    // BBClientID, ClientType, Title, FirstName, Surname, Company, PhoneNo, Email, VatNo, BBRateSheetID, Active
    for (const V &client : {V{1, "I", "Mr", "Sam", "Smith", "", "021 555 0101", "sam@example.com", "", 0, "Y"},
                            V{2, "T", "", "", "", "Heron Travel", "011 555 0200", "desk@heron.example", "4010203040", 1, "Y"},
                            V{3, "I", "Ms", "Ana", "Núñez", "", "", "ana@example.com", "", 0, "Y"},
                            V{4, "I", "Dr", "Lee", "Chan", "", "083 555 0404", "", "", 0, "Y"},
                            V{5, "I", "", "Old", "Client", "", "", "", "", 0, "N"},
                            V{6, "C", "", "", "", "Acme & Sons", "021 555 0606", "", "", 0, "Y"}})
        insert(db,
               "insert into client (BBClientID, ClientType, Title, FirstName, Surname, Company, PhoneNo, Email, VatNo, "
               "BBRateSheetID, Active) values (?,?,?,?,?,?,?,?,?,?,?)",
               client);
    for (const V &extra : {V{1, "F", "021 555 0109"}, V{1, "N", "British"}, V{1, "C", "082 555 0101"},
                           V{2, "N", "South African"}, V{3, "N", "British"}, V{5, "N", "British"}})
        insert(db, "insert into clientextra (BBClientID, FieldType, FieldValue) values (?,?,?)", extra);

    // BBAccountID, InvoiceTo, InvoiceNo, ProformaNo, Status
    for (const V &account : {V{1, 1, 0, 7, "O"}, V{2, 2, 11, 0, "C"}, V{3, 4, 0, 0, "O"}, V{4, 1, 12, 0, "C"},
                             V{5, 1, 0, 0, "O"}, V{6, 3, 0, 0, "O"}})
        insert(db, "insert into account (BBAccountID, InvoiceTo, InvoiceNo, ProformaNo, Status) values (?,?,?,?,?)",
               account);

    // BBBookingID, BookingID, BookingType, BookingDate, FromDate, ToDate, Status, MadeBy, BBAccountID, AgentComm,
    // Source, Notes
    for (const V &booking : {V{1, 501, "N", "2026-02-01 09:15:00", "2026-02-27", "2026-03-03", "C", 1, 1, 0.0, "Website", "Late arrival"},
                             V{2, 0, "P", "2026-03-01 14:00:00", "2026-03-10", "2026-03-13", "W", 2, 2, 10.0, "Heron", ""},
                             V{3, 0, "P", "2026-03-02 08:00:00", "2026-03-20", "2026-03-22", "U", 6, 0, 0.0, "", "Painting"},
                             V{4, 504, "C", "2026-03-05 10:00:00", "2026-03-30", "2026-04-02", "S", 1, 4, 0.0, "Website", ""},
                             V{5, 505, "N", "2026-03-06 11:00:00", "2026-04-10", "2026-04-12", "C", 1, 1, 0.0, "Web", ""},
                             V{6, 0, "P", "2026-03-07 12:00:00", "2026-03-13", "2026-03-14", "P", 3, 6, 0.0, "", ""}})
        insert(db,
               "insert into booking (BBBookingID, BookingID, BookingType, BookingDate, FromDate, ToDate, Status, MadeBy, "
               "BBAccountID, AgentComm, Source, Notes, CurrencyCode, ExchangeRate) values (?,?,?,?,?,?,?,?,?,?,?,?,'ZAR',1)",
               booking);

    // BBGuestID, BBBookingID, BBRoomID, BBClientID, NoAdults, Child1, BBRateID, BBClient2ID, BBAccountID
    for (const V &leg : {V{1, 1, 1, 1, 2, 1, 9, 4, 0}, V{2, 2, 2, 3, 2, 0, 0, 0, 0}, V{3, 2, 3, 4, 1, 0, 0, 0, 3},
                         V{4, 3, 1, 6, 0, 0, 0, 0, 0}, V{5, 4, 3, 1, 2, 0, 0, 0, 0}, V{6, 5, 2, 1, 2, 0, 0, 0, 0},
                         V{7, 6, 2, 3, 1, 0, 0, 0, 0}})
        insert(db,
               "insert into guest (BBGuestID, BBBookingID, BBRoomID, BBClientID, NoAdults, Child1, BBRateID, "
               "BBClient2ID, BBAccountID) values (?,?,?,?,?,?,?,?,?)",
               leg);

    // CalDate, BBBookingID, BBRoomID, RoomRate
    for (const V &night : {V{"2026-02-27", 1, 1, 90.0}, V{"2026-02-28", 1, 1, 90.0}, V{"2026-03-01", 1, 1, 110.0},
                           V{"2026-03-02", 1, 1, 120.0}, V{"2026-03-10", 2, 2, 200.0}, V{"2026-03-11", 2, 2, 200.0},
                           V{"2026-03-12", 2, 2, 200.0}, V{"2026-03-10", 2, 3, 300.0}, V{"2026-03-11", 2, 3, 300.0},
                           V{"2026-03-12", 2, 3, 300.0}, V{"2026-03-30", 4, 3, 150.0}, V{"2026-03-31", 4, 3, 150.0},
                           V{"2026-04-01", 4, 3, 150.0}, V{"2026-04-10", 5, 2, 100.0}, V{"2026-04-11", 5, 2, 100.0},
                           V{"2026-03-13", 6, 2, 180.0}})
        insert(db, "insert into dailyrate (CalDate, BBBookingID, BBRoomID, RoomRate) values (?,?,?,?)", night);

    // BBGuestID, ExtraDate, Qty, Price, BBStockID, BBAccountID
    for (const V &extra : {V{1, "2026-03-01", 2.0, 85.0, 1, 1}, V{3, "2026-03-11", 1.0, 250.0, 2, 3},
                           V{2, "2026-03-12", 1.0, 85.0, 1, 2}, V{1, "2026-02-28", 1.0, 85.0, 1, 1},
                           V{7, "2026-03-13", 3.0, 10.5, 99, 6}})
        insert(db,
               "insert into extra (BBGuestID, ExtraDate, Qty, Price, BBStockID, BBAccountID) values (?,?,?,?,?,?)", extra);

    // BBPaymentID, BBAccountID, PaymentDate, PaymentType, Reference, Amount
    for (const V &payment : {V{1, 1, "2026-03-02", "2", "CARD-1", 200.0}, V{2, 2, "2026-03-05", "0", "EFT 77", 1500.0},
                             V{3, 0, "2026-03-15", "1", "Walk-in", 50.0}, V{4, 4, "2026-03-31", "0", "EFT 80", 450.0},
                             V{5, 1, "2026-04-01", "2", "CARD-2", 30.0}, V{6, 2, "2026-02-28", "0", "EFT 70", 100.0}})
        insert(db,
               "insert into payment (BBPaymentID, BBAccountID, PaymentDate, PaymentType, Reference, Amount) "
               "values (?,?,?,?,?,?)",
               payment);

    // BBClientID, TranDate, TranType, TranNo, Reference, Amount, VAT, Matched
    for (const V &tran : {V{1, "2026-03-30", "INV", 12, "Stay 4", 450.0, 55.26, 1},
                          V{1, "2026-03-31", "PMT", 4, "EFT 80", -450.0, 0.0, 1},
                          V{1, "2026-05-31", "INV", 20, "Dinner", 100.0, 12.28, 0},
                          V{1, "2026-04-30", "INV", 21, "Spa", 200.0, 24.56, 0},
                          V{1, "2026-03-31", "INV", 22, "Transfer", 300.0, 36.84, 0},
                          V{1, "2026-03-30", "INV", 23, "Wine", 400.0, 49.12, 0},
                          V{1, "2026-02-28", "INV", 24, "Old stay", 500.0, 61.40, 0},
                          V{1, "2026-06-01", "PMT", 9, "Deposit", -50.0, 0.0, 0},
                          V{2, "2026-03-13", "INV", 11, "Group", 1710.0, 210.0, 0},
                          V{2, "2026-03-05", "PMT", 2, "EFT 77", -1500.0, 0.0, 0},
                          V{3, "2026-05-01", "JNL", 1, "Rounding", 0.4, 0.0, 0},
                          V{4, "2026-05-02", "JNL", 2, "Rounding", 0.5, 0.0, 0},
                          V{6, "2026-05-10", "CRN", 3, "Refund", -0.6, 0.0, 0}})
        insert(db,
               "insert into clienttran (BBClientID, TranDate, TranType, TranNo, Reference, Amount, VAT, Matched) "
               "values (?,?,?,?,?,?,?,?)",
               tran);

    for (const V &line : {V{"2026-02-28 23:59:59", "admin", "Before the month ()"},
                          V{"2026-03-01 00:00:00", "admin", "Booking ID 2 ()"},
                          V{"2026-03-31 23:59:59", "maria", "Extra Deleted. A/C ID 1: 1 x Wine @ 85 (Broken)"},
                          V{"2026-04-01 00:00:00", "maria", "After the month ()"}})
        insert(db, "insert into audit (auditdate, UserName, Notes) values (?,?,?)", line);
}

} // namespace reportfixture
