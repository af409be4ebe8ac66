#pragma once

#include "shell/calendargrid.h"
#include "shell/strings.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QLocale>
#include <QStyledItemDelegate>
#include <QTableView>

namespace fenlark {

class Session;

// gdCal's data: rooms down, days across, drawn from the calendar grid. The three
// header rows (month, day name, day of month, each an event row) are roles of
// the horizontal header.
class CalendarModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Role {
        BookingIdRole = Qt::UserRole + 1,
        RoomIdRole,
        DateRole,
        StatusRole,
        TodayRole,   // the cell or header is in today's column
        BandTextRole = Qt::UserRole + 10,        // + band 0..2 (header)
        BandBackgroundRole = Qt::UserRole + 20,  // + band 0..2 (header)
        EventNoteRole = Qt::UserRole + 30,       // + band 0..2 (header), empty without an event
    };

    explicit CalendarModel(Session &session, QObject *parent = nullptr);

    // Rebuilds the grid for days columns from firstDay (only new days are read).
    void drawCalendar(QDate firstDay, int days);
    const CalendarGrid &grid() const { return m_grid; }
    QDate firstDay() const { return m_grid.firstDay(); }
    qint32 roomIdAt(int row) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    Session &m_session;
    CalendarGrid m_grid;
};

// The three header rows of the calendar, each band coloured by its events.
class CalendarHeader : public QHeaderView {
    Q_OBJECT

public:
    explicit CalendarHeader(QWidget *parent = nullptr);
    QSize sizeHint() const override;
    int bandHeight() const;
    int bandAt(int y) const;

Q_SIGNALS:
    // A double click on a header row: the day's column and the band (0 to 2).
    void bandDoubleClicked(int column, int band);

protected:
    void paintSection(QPainter *painter, const QRect &rect, int logicalIndex) const override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    bool viewportEvent(QEvent *event) override;
};

// Paints a booking cell in its status colour with the two lines of text.
class CalendarDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};

// gdCal: the grid. Its width decides the number of days; day columns share the
// width so that the grid always fills its place.
class CalendarView : public QTableView {
    Q_OBJECT

public:
    static constexpr int RoomColumnWidth = 133;   // 2000 twips
    static constexpr int RowHeight = 34;          // 500 twips

    explicit CalendarView(QWidget *parent = nullptr);
    CalendarHeader *calendarHeader() const { return m_header; }
    // The day columns that the width beside the room names holds.
    int dayColumns() const;
    // Spreads the day columns over the width, and a few rooms over the height.
    void fitColumns();

Q_SIGNALS:
    void widthChanged();
    // From the keyboard: Enter on a cell opens its booking; Page Up and Down move
    // the calendar a week, an arrow past its first or last day moves it a day;
    // Home brings today back. The cell keeps its place on the screen.
    void openRequested();
    void daysRequested(int days);
    void todayRequested();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    CalendarHeader *m_header;
    int m_lastWidth = -1;
};

} // namespace fenlark
