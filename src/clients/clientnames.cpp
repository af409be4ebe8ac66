#include "clients/clientnames.h"

#include "clients/clientrecords.h"
#include "shell/messages.h"
#include "shell/strings.h"

namespace fenlark {

QString clientTypeName(const QString &code)
{
    if (code == clienttype::Individual)
        return getString(2222, QStringLiteral("Individual"));
    if (code == getString(1946, QStringLiteral("C")))
        return getString(2156, QStringLiteral("Company"));
    if (code == getString(2225, QStringLiteral("T")))
        return getString(2223, QStringLiteral("Travel Agent"));
    if (code == getString(2226, QStringLiteral("O")))
        return getString(2224, QStringLiteral("Tour Operator"));
    return {};
}

int getClientTypeIndex(const QString &code)
{
    if (code == clienttype::Company)
        return 1;
    if (code == clienttype::TravelAgent)
        return 2;
    if (code == clienttype::TourOperator)
        return 3;
    return 0;
}

QString getClientTypeCode(int index)
{
    switch (index) {
    case 1:
        return clienttype::Company;
    case 2:
        return clienttype::TravelAgent;
    case 3:
        return clienttype::TourOperator;
    default:
        return clienttype::Individual;
    }
}

QStringList clientTypeNames()
{
    QStringList names;
    for (int i = 0; i < 4; ++i)
        names << clientTypeName(getClientTypeCode(i));
    return names;
}

QString getClientName(Database &db, qint32 clientId)
{
    Client client;
    if (!client.fetch(db, clientId)) {
        messages::critical(getString(2232, QStringLiteral("Could not find client (")) + QString::number(clientId) +
                               getString(2233, QStringLiteral("). Please call veldmoor to see why this might happen.")),
                           getString(2231, QStringLiteral("Missing client information")));
        return getString(2234, QStringLiteral("Unknown client - ID ")) + QString::number(clientId);
    }
    return client.FullName();
}

QString getClientExtra(Database &db, qint32 clientId, const QString &fieldType)
{
    return db.scalar(QStringLiteral("select fieldvalue from clientextra where bbclientid = ? and fieldtype = ?"),
                     {clientId, fieldType})
        .toString();
}

QStringList clientExtraFieldTypes()
{
    return {QStringLiteral("P"), QStringLiteral("F"), QStringLiteral("C"), QStringLiteral("I"),
            QStringLiteral("N"), QStringLiteral("O"), QStringLiteral("T"), QStringLiteral("S")};
}

QString clientExtraFieldName(const QString &fieldType)
{
    static const char *const texts[] = {"Phone No", "Fax No", "Cell No", "ID/Passport", "Nationality", "Other", "Type", "Segment"};
    const int at = clientExtraFieldTypes().indexOf(fieldType);
    if (at < 0)
        return {};
    return getString(5620 + at, QString::fromLatin1(texts[at]));
}

} // namespace fenlark
