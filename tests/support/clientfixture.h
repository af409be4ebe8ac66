#pragma once

// A stored client for a test: an individual, or a company client when a company
// is given; made at the desk ("C") on 1 May 2020 at 08:00; active unless active
// says "N".

#include "clients/clientrecords.h"

#include <QDateTime>

inline qint32 addPerson(fenlark::Database &db, const QString &first, const QString &surname, const QString &company = {},
                        const QString &active = QStringLiteral("Y"))
{
    fenlark::Client c;
    c.ClientType = company.isEmpty() ? QStringLiteral("I") : QStringLiteral("C");
    c.FirstName = first;
    c.Surname = surname;
    c.Company = company;
    c.Active = active;
    c.CreatedOn = QStringLiteral("C");
    c.DateCreated = QDateTime(QDate(2020, 5, 1), QTime(8, 0));
    c.update(db);
    return c.BBClientID;
}
