#include "shell/changes.h"

namespace fenlark {

Changes &Changes::booking(qint32 bbBookingId)
{
    if (bbBookingId != 0)
        m_bookings.insert(bbBookingId);
    return *this;
}

Changes &Changes::client(qint32 bbClientId)
{
    if (bbClientId != 0)
        m_clients.insert(bbClientId);
    return *this;
}

Changes &Changes::events()
{
    m_events = true;
    return *this;
}

Changes &Changes::everything()
{
    m_everything = true;
    return *this;
}

Changes &Changes::setup()
{
    m_setup = true;
    return *this;
}

Changes &Changes::merge(const Changes &other)
{
    m_bookings.unite(other.m_bookings);
    m_clients.unite(other.m_clients);
    m_events = m_events || other.m_events;
    m_everything = m_everything || other.m_everything;
    m_setup = m_setup || other.m_setup;
    return *this;
}

bool Changes::isEmpty() const
{
    return m_bookings.isEmpty() && m_clients.isEmpty() && !m_events && !m_everything && !m_setup;
}

} // namespace fenlark
