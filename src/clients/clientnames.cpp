#include "clients/clientnames.h"

#include "clients/clientrecords.h"
#include "shell/messages.h"
#include "shell/strings.h"

#include <QStringList>

namespace fenlark {

QString clientName(const QString &title, const QString &firstName, const QString &surname, const QString &company)
{
    QString name = title.trimmed() + QLatin1Char(' ') + firstName.trimmed() + QLatin1Char(' ') + surname.trimmed();
    // Left-trimmed only: a missing first name leaves two blanks inside
    // ("Mr  Smith") and a missing surname a blank at the end, as the desk has always shown.
    while (!name.isEmpty() && name.front().isSpace())
        name.remove(0, 1);
    if (!name.isEmpty())
        return company.trimmed().isEmpty() ? name : name + QStringLiteral(" @ ") + company.trimmed();
    if (!company.trimmed().isEmpty())
        return company.trimmed();
    return QStringLiteral("<Blank>");
}

QString getShortName(const QString &firstName, const QString &surname, const QString &company)
{
    QString name = surname.trimmed();
    if (name.isEmpty())
        name = firstName.trimmed();
    if (name.isEmpty())
        name = company.trimmed();
    if (name.isEmpty())
        name = QStringLiteral("???");
    return name.left(3);
}

QString clientTypeName(const QString &code)
{
    if (code == QLatin1String("I"))
        return getString(5001, QStringLiteral("Individual"));
    if (code == QLatin1String("C"))
        return getString(5002, QStringLiteral("Company"));
    if (code == QLatin1String("T"))
        return getString(5003, QStringLiteral("Travel Agent"));
    if (code == QLatin1String("O"))
        return getString(5004, QStringLiteral("Tour Operator"));
    return {};
}

QString clientTypeCode(int index)
{
    static const QStringList codes = {QStringLiteral("I"), QStringLiteral("C"), QStringLiteral("T"), QStringLiteral("O")};
    return index >= 0 && index < codes.size() ? codes.at(index) : QString();
}

QString getClientName(Database &db, qint32 clientId)
{
    Client client;
    if (!client.fetch(db, clientId)) {
        messages::critical(getString(5005, QStringLiteral("Could not find client (%1). Please call veldmoor to see why this might happen.")).arg(clientId),
                           getString(5006, QStringLiteral("Missing client information")));
        return QStringLiteral("Unknown client - ID %1").arg(clientId);
    }
    return clientName(client.Title, client.FirstName, client.Surname, client.Company);
}

QString getClientExtra(Database &db, qint32 clientId, const QString &fieldType)
{
    return db.scalar(QStringLiteral("select fieldvalue from clientextra where bbclientid = ? and fieldtype = ?"),
                     {clientId, fieldType})
        .toString();
}

} // namespace fenlark
