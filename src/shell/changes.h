#pragma once

#include <QSet>

namespace fenlark {

// What a write changed, as far as anything on screen depends on it. Every write
// of the core hands one back; the desk brings the calendar (and whatever else
// shows the data) up to date from it in one place.
class Changes {
public:
    // A booking whose head, legs, dates, rooms, heads or status changed (or that
    // was made or removed): its cells on the calendar are read again.
    Changes &booking(qint32 bbBookingId);
    // A client whose name changed: its label on the calendar is read again.
    Changes &client(qint32 bbClientId);
    // Calendar events (the header rows) changed.
    Changes &events();
    // Too much changed to say (a synchronisation, a repair): everything is read again.
    Changes &everything();
    // The property's setup changed (rooms, room types, rate data, VAT codes,
    // users): it is loaded again, and everything with it.
    Changes &setup();

    Changes &merge(const Changes &other);

    const QSet<qint32> &bookings() const { return m_bookings; }
    const QSet<qint32> &clients() const { return m_clients; }
    bool eventsChanged() const { return m_events; }
    bool everythingChanged() const { return m_everything || m_setup; }
    bool setupChanged() const { return m_setup; }
    bool isEmpty() const;

private:
    QSet<qint32> m_bookings;
    QSet<qint32> m_clients;
    bool m_events = false;
    bool m_everything = false;
    bool m_setup = false;
};

// Who is told about changes: the desk listens; without a desk nobody does.
class ChangeListener {
public:
    virtual ~ChangeListener() = default;
    virtual void applyChanges(const Changes &changes) = 0;
};

} // namespace fenlark
