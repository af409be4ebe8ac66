#include "shell/screens/calendarlegend.h"

#include "shell/session.h"
#include "shell/strings.h"

#include <QHBoxLayout>
#include <QLabel>

namespace fenlark {

std::vector<LegendEntry> calendarLegend(const StatusColours &colours)
{
    std::vector<LegendEntry> entries;
    for (const Status &status : colours.list())
        entries.push_back({status.Code, status.Description, Rgb{status.Red, status.Green, status.Blue}});
    entries.push_back({QStringLiteral("I"), getString(5890, QStringLiteral("Checked in")), calendarcolours::CheckedIn});
    entries.push_back({QStringLiteral("K"), getString(5891, QStringLiteral("Checked out")), calendarcolours::CheckedOut});
    entries.push_back({QString(), getString(5192, QStringLiteral("Today")), calendarcolours::TodayText});
    return entries;
}

CalendarLegend::CalendarLegend(Session &session, QWidget *parent)
    : QWidget(parent), m_session(session), m_layout(new QHBoxLayout(this))
{
    setObjectName(QStringLiteral("calendarLegend"));
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(4);
    refresh();
}

void CalendarLegend::refresh()
{
    std::vector<LegendEntry> entries = calendarLegend(m_session.statusColours());
    if (entries == m_entries)
        return;
    m_entries = std::move(entries);
    while (QLayoutItem *item = m_layout->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    const int side = fontMetrics().height() - 2;
    for (const LegendEntry &entry : m_entries) {
        auto *swatch = new QLabel(this);
        swatch->setObjectName(QStringLiteral("legendSwatch") + entry.code);
        swatch->setFixedSize(side, side);
        swatch->setFrameShape(QFrame::Box);
        swatch->setAutoFillBackground(true);
        QPalette colours = swatch->palette();
        colours.setColor(QPalette::Window, QColor(entry.colour.red, entry.colour.green, entry.colour.blue));
        swatch->setPalette(colours);
        auto *name = new QLabel(entry.text, this);
        name->setObjectName(QStringLiteral("legendText") + entry.code);
        m_layout->addWidget(swatch);
        m_layout->addWidget(name);
        m_layout->addSpacing(8);
    }
    m_layout->addStretch();
}

} // namespace fenlark
