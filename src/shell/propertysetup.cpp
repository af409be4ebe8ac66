#include "shell/propertysetup.h"

namespace fenlark {

void PropertySetup::load(Database &db)
{
    m_rooms = Room::list(db, QStringLiteral("OrderBy, BBRoomID"));
    m_roomIndex.clear();
    for (int i = 0; i < static_cast<int>(m_rooms.size()); ++i)
        m_roomIndex.insert(m_rooms[static_cast<std::size_t>(i)].BBRoomID, i);
    m_roomTypes.clear();
    for (RoomType &type : RoomType::list(db, QStringLiteral("OrderBy, BBRTID")))
        m_roomTypes.insert(type.BBRTID, type);
    m_vatCodes.clear();
    for (VatCode &code : VatCode::list(db))
        m_vatCodes.insert(code.Code, code);
}

const Room *PropertySetup::room(qint32 bbRoomId) const
{
    const auto it = m_roomIndex.constFind(bbRoomId);
    return it == m_roomIndex.constEnd() ? nullptr : &m_rooms[static_cast<std::size_t>(*it)];
}

const RoomType *PropertySetup::roomType(qint32 bbRtId) const
{
    const auto it = m_roomTypes.constFind(bbRtId);
    return it == m_roomTypes.constEnd() ? nullptr : &*it;
}

QString PropertySetup::RoomName(qint32 bbRoomId) const
{
    const Room *r = room(bbRoomId);
    return r ? r->RoomName : QString();
}

qint32 PropertySetup::RoomBBRTID(qint32 bbRoomId) const
{
    const Room *r = room(bbRoomId);
    return r ? r->BBRTID : 0;
}

QString PropertySetup::RTName(qint32 bbRtId) const
{
    const RoomType *t = roomType(bbRtId);
    return t ? t->RTName : QString();
}

QString PropertySetup::RateScheme(qint32 bbRtId) const
{
    const RoomType *t = roomType(bbRtId);
    return t ? t->RateScheme : QString();
}

QString PropertySetup::AppliesTo(qint32 bbRtId) const
{
    const RoomType *t = roomType(bbRtId);
    return t ? t->AppliesTo : QString();
}

qint16 PropertySetup::MaxAdults(qint32 bbRtId) const
{
    const RoomType *t = roomType(bbRtId);
    return t ? t->MaxAdults : 0;
}

const VatCode *PropertySetup::getVatCode(qint16 code) const
{
    const auto it = m_vatCodes.constFind(code);
    return it == m_vatCodes.constEnd() ? nullptr : &*it;
}

} // namespace fenlark
