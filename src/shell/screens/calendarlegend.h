#pragma once

#include "shell/calendargrid.h"

#include <QString>
#include <QWidget>

#include <vector>

class QHBoxLayout;

namespace fenlark {

class Session;

// One colour of the calendar and what it means.
struct LegendEntry {
    QString code;   // the status letter, "I"/"K" for checked in and out, empty for today
    QString text;
    Rgb colour;
    bool operator==(const LegendEntry &) const = default;
};

// What each colour of the calendar means: every status in the property's colours,
// checked in and checked out, and the mark of today's column, in the desk's language.
std::vector<LegendEntry> calendarLegend(const StatusColours &colours);

// The legend under the calendar: a swatch and a name for each colour.
class CalendarLegend : public QWidget {
    Q_OBJECT

public:
    CalendarLegend(Session &session, QWidget *parent = nullptr);

    // Follows the colours and names as they stand; rebuilt only when they changed.
    void refresh();
    const std::vector<LegendEntry> &entries() const { return m_entries; }

private:
    Session &m_session;
    QHBoxLayout *m_layout;
    std::vector<LegendEntry> m_entries;
};

} // namespace fenlark
