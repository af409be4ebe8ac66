#pragma once

#include "shell/setuprecords.h"

#include <QHash>

#include <vector>

namespace fenlark {

class Database;

// The rooms, room types and VAT codes that the desk looks up all day.
class PropertySetup {
public:
    void load(Database &db);

    // All rooms in their order.
    const std::vector<Room> &rooms() const { return m_rooms; }
    const Room *room(qint32 bbRoomId) const;
    const RoomType *roomType(qint32 bbRtId) const;
    QString RoomName(qint32 bbRoomId) const;
    qint32 RoomBBRTID(qint32 bbRoomId) const;
    QString RTName(qint32 bbRtId) const;
    QString RateScheme(qint32 bbRtId) const;
    QString AppliesTo(qint32 bbRtId) const;
    qint16 MaxAdults(qint32 bbRtId) const;

    const QHash<qint16, VatCode> &getVATCodes() const { return m_vatCodes; }
    const VatCode *getVatCode(qint16 code) const;
    static constexpr qint16 getDefaultVATCode() { return 1; }

private:
    std::vector<Room> m_rooms;
    QHash<qint32, int> m_roomIndex;
    QHash<qint32, RoomType> m_roomTypes;
    QHash<qint16, VatCode> m_vatCodes;
};

} // namespace fenlark
