#include "shell/propertyinfo.h"

#include "shell/database.h"

namespace fenlark {

QStringList getVersionInfo(Database &db)
{
    const QVariant version = db.scalar(QStringLiteral("select VersionNo from vmversion"));
    return {QStringLiteral("fenlark ") + QStringLiteral(FENLARK_VERSION),
            version.isValid() ? version.toString().trimmed() : QStringLiteral("0")};
}

bool hasOtherCurrency(Database &db)
{
    return db.scalar(QStringLiteral("select count(*) from ratesheet where currencycode not in (select currencycode from bbsetup)")).toInt() > 0;
}

QString getGuestRoomName(Database &db, qint32 guestId)
{
    const QVariant name = db.scalar(
        QStringLiteral("select room.RoomName from guest, room where guest.BBRoomID = room.BBRoomID and guest.BBGuestID = ?"), {guestId});
    return name.isValid() ? name.toString() : QStringLiteral("Error: No room name");
}

} // namespace fenlark
