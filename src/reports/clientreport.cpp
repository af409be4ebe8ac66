#include "clients/clientnames.h"
#include "rates/ratelists.h"
#include "reports/reportbuilders.h"
#include "reports/reportlookups.h"
#include "reports/reporttable.h"
#include "shell/database.h"
#include "shell/strings.h"

#include <QHash>

namespace fenlark {

namespace {

// The latest arrival of a booking each client had a part in: as its maker, as
// the client invoiced, or as a guest (main or second) in one of its rooms.
QHash<qint32, QDate> lastBookings(Database &db)
{
    QHash<qint32, QDate> last;
    QSqlQuery q = db.query(QStringLiteral(
        "select client, max(arrival) from ("
        "select b.MadeBy as client, b.FromDate as arrival from booking b "
        "union all select a.InvoiceTo, b.FromDate from booking b join account a on a.BBAccountID = b.BBAccountID "
        "union all select g.BBClientID, b.FromDate from guest g join booking b on b.BBBookingID = g.BBBookingID "
        "union all select g.BBClient2ID, b.FromDate from guest g join booking b on b.BBBookingID = g.BBBookingID "
        "where g.BBClient2ID > 0) group by client"));
    while (q.next())
        last.insert(q.value(0).toInt(), sqlDay(q.value(1)));
    return last;
}

// The first stored value of each client's fax, cell and nationality fields.
QHash<qint32, QHash<QString, QString>> clientFields(Database &db)
{
    QHash<qint32, QHash<QString, QString>> fields;
    QSqlQuery q = db.query(QStringLiteral("select BBClientID, FieldType, FieldValue from clientextra "
                                          "where FieldType in ('F', 'C', 'N') order by BBClientExtraID"));
    while (q.next()) {
        QHash<QString, QString> &of = fields[q.value(0).toInt()];
        const QString type = q.value(1).toString();
        if (!of.contains(type))
            of.insert(type, q.value(2).toString());
    }
    return fields;
}

} // namespace

ReportSheet clientReport(Database &db, const ReportCriteria &criteria)
{
    enum {
        Type = 1, Company, Title, FirstName, Surname, PhoneNo, Email, FaxNo, CellNo, VatNo, LastBooking, RateSheet,
        ClientId, Nationality
    };
    ReportSheet sheet;
    sheet.setTitle(getString(1347, QStringLiteral("Client Report")));
    sheet.setOrientation(ReportSheet::Landscape);
    ReportTable table(sheet, 3,
                      {reportColumn(6266, "Type"), reportColumn(6275, "Company"), reportColumn(6287, "Title"),
                       reportColumn(6288, "First Name"), reportColumn(6289, "Surname"), reportColumn(6290, "Phone No"),
                       reportColumn(6291, "Email"), reportColumn(6292, "Fax No"), reportColumn(6293, "Cell No"),
                       reportColumn(6294, "VAT No"), reportColumn(6295, "Last Booking", ColumnKind::Date),
                       reportColumn(6296, "Rate Sheet"), reportColumn(6297, "Client ID", ColumnKind::Number),
                       reportColumn(6298, "Nationality")});

    QHash<qint32, QString> sheetNames;
    for (const RateSheetChoice &choice : rateSheetList(db))
        sheetNames.insert(choice.BBRateSheetID, choice.name);
    const QHash<qint32, QDate> last = lastBookings(db);
    const QHash<qint32, QHash<QString, QString>> fields = clientFields(db);

    // Active clients only, on either path; a client with the field twice is listed once.
    QString sql = QStringLiteral("select c.BBClientID, c.ClientType, c.Company, c.Title, c.FirstName, c.Surname, "
                                 "c.PhoneNo, c.Email, c.VatNo, c.BBRateSheetID from client c where c.Active = 'Y'");
    QVariantList values;
    if (!criteria.clientType.isEmpty()) {
        sql += QStringLiteral(" and c.ClientType = ?");
        values << criteria.clientType;
    }
    if (!criteria.fieldType.isEmpty()) {
        sql += QStringLiteral(" and exists (select 1 from clientextra x where x.BBClientID = c.BBClientID "
                              "and x.FieldType = ? and x.FieldValue = ?)");
        values << criteria.fieldType << criteria.fieldValue;
    }
    sql += QStringLiteral(" order by c.Company collate nocase, c.Surname collate nocase, "
                          "c.FirstName collate nocase, c.BBClientID");
    QSqlQuery q = db.query(sql, values);
    while (q.next()) {
        const qint32 clientId = q.value(0).toInt();
        const QHash<QString, QString> extra = fields.value(clientId);
        table.addRow();
        table.text(Type, clientTypeName(q.value(1).toString()));
        table.text(Company, q.value(2).toString());
        table.text(Title, q.value(3).toString());
        table.text(FirstName, q.value(4).toString());
        table.text(Surname, q.value(5).toString());
        table.text(PhoneNo, q.value(6).toString());
        table.text(Email, q.value(7).toString());
        table.text(FaxNo, extra.value(QStringLiteral("F")));
        table.text(CellNo, extra.value(QStringLiteral("C")));
        table.text(VatNo, q.value(8).toString());
        table.date(LastBooking, last.value(clientId));
        const qint32 rateSheet = q.value(9).toInt();
        table.text(RateSheet, sheetNames.value(rateSheet, QString::number(rateSheet)));
        table.number(ClientId, clientId);
        table.text(Nationality, extra.value(QStringLiteral("N")));
    }
    table.finish(false);
    return sheet;
}

} // namespace fenlark
