#include "clients/clientsearch.h"

#include "clients/clientnames.h"
#include "shell/database.h"
#include "shell/textcompare.h"

#include <QHash>
#include <QSqlQuery>
#include <QStringList>

namespace fenlark {

bool ClientSearchCriteria::isEmpty() const
{
    return firstName.isEmpty() && surname.isEmpty() && company.isEmpty() && clientId.isEmpty();
}

QString ClientSearchRow::text() const
{
    QString line;
    if (ClientType == clienttype::Individual) {
        line = (FirstName + QLatin1Char(' ') + Surname).trimmed();
        if (!PhoneNo.isEmpty())
            line += QStringLiteral(" - ") + PhoneNo;
        if (!Company.isEmpty())
            line += QStringLiteral(" / ") + Company;
        else if (!Email.isEmpty())
            line += QStringLiteral(" / ") + Email;
    } else {
        line = Company;
        if (!PhoneNo.isEmpty())
            line += QStringLiteral(" - ") + PhoneNo;
        if (!Email.isEmpty())
            line += QStringLiteral(" / ") + Email;
    }
    return line;
}

QString ClientSearchRow::shortName() const
{
    return getShortName(FirstName, Surname, Company);
}

ClientSearchStatement clientSearchStatement(const ClientSearchCriteria &criteria)
{
    ClientSearchStatement statement;
    if (criteria.isEmpty())
        return statement;
    qint32 id = 0;
    if (!criteria.clientId.isEmpty()) {
        bool ok = false;
        id = criteria.clientId.toInt(&ok);
        if (!ok)
            return statement;
    }
    // The column names come from here only; what was typed is always bound. The
    // names are matched in their folded form, kept for every client in clientfold.
    statement.sql = QStringLiteral("select bbclientid from clientfold where active = 'Y'");
    const std::pair<const QString *, const char *> prefixes[] = {
        {&criteria.firstName, " and firstname like ?"},
        {&criteria.surname, " and surname like ?"},
        {&criteria.company, " and company like ?"},
    };
    for (const auto &[typed, condition] : prefixes) {
        if (typed->isEmpty())
            continue;
        statement.sql += QLatin1String(condition);
        statement.values << QVariant(foldCase(*typed) + QLatin1Char('%'));
    }
    if (!criteria.clientId.isEmpty()) {
        statement.sql += QLatin1String(" and bbclientid = ?");
        statement.values << id;
    }
    statement.sql += QLatin1String(" order by bbclientid desc");
    return statement;
}

std::vector<qint32> searchClientIds(Database &db, const ClientSearchCriteria &criteria)
{
    std::vector<qint32> ids;
    const ClientSearchStatement statement = clientSearchStatement(criteria);
    if (statement.sql.isEmpty())
        return ids;
    QSqlQuery q = db.query(statement.sql, statement.values);
    while (q.next())
        ids.push_back(q.value(0).toInt());
    return ids;
}

std::vector<ClientSearchRow> fetchClientRows(Database &db, const std::vector<qint32> &ids)
{
    // Read in slices of a fixed size so the statement text repeats and stays prepared.
    constexpr std::size_t Slice = 64;
    static const QString sql = [] {
        QStringList marks;
        for (std::size_t i = 0; i < Slice; ++i)
            marks << QStringLiteral("?");
        return QStringLiteral("select bbclientid, clienttype, firstname, surname, company, phoneno, email "
                              "from client where bbclientid in (%1)")
            .arg(marks.join(QLatin1Char(',')));
    }();
    QHash<qint32, ClientSearchRow> found;
    for (std::size_t from = 0; from < ids.size(); from += Slice) {
        QVariantList values;
        for (std::size_t i = 0; i < Slice; ++i)
            values << (from + i < ids.size() ? ids[from + i] : 0);
        QSqlQuery q = db.query(sql, values);
        while (q.next()) {
            ClientSearchRow row;
            row.BBClientID = q.value(0).toInt();
            row.ClientType = q.value(1).toString();
            row.FirstName = q.value(2).toString();
            row.Surname = q.value(3).toString();
            row.Company = q.value(4).toString();
            row.PhoneNo = q.value(5).toString();
            row.Email = q.value(6).toString();
            found.insert(row.BBClientID, std::move(row));
        }
    }
    std::vector<ClientSearchRow> rows;
    rows.reserve(ids.size());
    for (qint32 id : ids) {
        auto it = found.constFind(id);
        if (it != found.constEnd())
            rows.push_back(it.value());
    }
    return rows;
}

std::vector<ClientSearchRow> searchClients(Database &db, const ClientSearchCriteria &criteria)
{
    return fetchClientRows(db, searchClientIds(db, criteria));
}

QString tidyName(const QString &typed)
{
    if (typed.isEmpty())
        return typed;
    return typed.left(1).toUpper() + typed.mid(1);
}

} // namespace fenlark
