#include "shell/screens/calendarview.h"

#include "shell/session.h"
#include "shell/strings.h"
#include "shell/textformat.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

namespace fenlark {

namespace {

QColor toColor(const Rgb &rgb)
{
    return QColor(rgb.red, rgb.green, rgb.blue);
}

// Today's column: a free night is tinted, and the column is framed in the colour
// of today's date from the header down.
const QColor TodayFreeCell(255, 240, 244);

void paintTodayFrame(QPainter *painter, const QRect &rect, bool top)
{
    const QColor mark = toColor(calendarcolours::TodayText);
    painter->fillRect(QRect(rect.left(), rect.top(), 2, rect.height()), mark);
    painter->fillRect(QRect(rect.right() - 1, rect.top(), 2, rect.height()), mark);
    if (top)
        painter->fillRect(QRect(rect.left(), rect.top(), rect.width(), 2), mark);
}

} // namespace

CalendarModel::CalendarModel(Session &session, QObject *parent)
    : QAbstractTableModel(parent)
    , m_session(session)
{
}

void CalendarModel::drawCalendar(QDate firstDay, int days)
{
    beginResetModel();
    m_grid.build(m_session, firstDay, days);
    endResetModel();
}

qint32 CalendarModel::roomIdAt(int row) const
{
    const auto &rooms = m_session.property().rooms();
    if (row < 0 || row >= static_cast<int>(rooms.size()) || row >= m_grid.rooms())
        return 0;
    return rooms[static_cast<std::size_t>(row)].BBRoomID;
}

int CalendarModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_grid.rooms();
}

int CalendarModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_grid.days();
}

QVariant CalendarModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_grid.rooms() || index.column() >= m_grid.days())
        return {};
    const CalendarCell &cell = m_grid.cell(index.row(), index.column());
    switch (role) {
    case Qt::DisplayRole:
        return cell.text;
    case Qt::BackgroundRole:
        return toColor(cell.back);
    case Qt::ForegroundRole:
        return QColor(Qt::black);
    case Qt::TextAlignmentRole:
        return int(Qt::AlignCenter);
    case BookingIdRole:
        return cell.entry ? cell.entry->BBBookingID : 0;
    case RoomIdRole:
        return roomIdAt(index.row());
    case DateRole:
        return m_grid.dateOf(index.column());
    case StatusRole:
        return cell.entry ? cell.entry->Status : QString();
    case TodayRole:
        return m_grid.header(index.column()).today;
    case Qt::ToolTipRole: {
        if (!cell.entry)
            return {};
        const auto hint = bookingHint(m_session.db(), m_session.statusColours(), cell.entry->BBBookingID, roomIdAt(index.row()));
        return hint ? QVariant(*hint) : QVariant();
    }
    default:
        return {};
    }
}

QVariant CalendarModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical) {
        if (section < 0 || section >= m_grid.rooms())
            return {};
        const qint32 roomId = roomIdAt(section);
        if (role == Qt::DisplayRole)
            return m_session.property().RoomName(roomId);
        if (role == Qt::ToolTipRole) {
            const QString type = m_session.property().RTName(m_session.property().RoomBBRTID(roomId));
            return type.isEmpty() ? QVariant() : QVariant(type);
        }
        if (role == RoomIdRole)
            return roomId;
        return {};
    }
    if (section < 0 || section >= m_grid.days())
        return {};
    const DayHeader &h = m_grid.header(section);
    const QLocale locale = deskLocale();
    if (role >= BandTextRole && role < BandTextRole + 3) {
        switch (role - BandTextRole) {
        case 0:
            return locale.toString(h.date, QStringLiteral("MMM"));
        case 1:
            return locale.toString(h.date, QStringLiteral("ddd"));
        default:
            return QString::number(h.date.day());
        }
    }
    if (role >= BandBackgroundRole && role < BandBackgroundRole + 3)
        return toColor(h.band[role - BandBackgroundRole]);
    if (role >= EventNoteRole && role < EventNoteRole + 3) {
        const EventData *event = h.event[role - EventNoteRole];
        return event ? flattenLines(event->EventNote) : QString();
    }
    switch (role) {
    case Qt::DisplayRole:
        return locale.toString(h.date, QStringLiteral("MMM ddd d"));
    case Qt::ForegroundRole:
        return h.today ? toColor(calendarcolours::TodayText) : QColor(Qt::black);
    case Qt::FontRole: {
        QFont font;
        font.setBold(h.weekend);
        return font;
    }
    case DateRole:
        return h.date;
    case TodayRole:
        return h.today;
    default:
        return {};
    }
}

CalendarHeader::CalendarHeader(QWidget *parent)
    : QHeaderView(Qt::Horizontal, parent)
{
    setSectionsClickable(false);
    setHighlightSections(false);
    setSectionResizeMode(QHeaderView::Fixed);
    setMinimumSectionSize(12);
}

int CalendarHeader::bandHeight() const
{
    return fontMetrics().height() + 4;
}

int CalendarHeader::bandAt(int y) const
{
    return std::clamp(y / std::max(1, bandHeight()), 0, 2);
}

QSize CalendarHeader::sizeHint() const
{
    QSize size = QHeaderView::sizeHint();
    size.setHeight(bandHeight() * 3);
    return size;
}

void CalendarHeader::paintSection(QPainter *painter, const QRect &rect, int logicalIndex) const
{
    const QAbstractItemModel *m = model();
    if (!m)
        return;
    painter->save();
    const int band = bandHeight();
    QFont font = m->headerData(logicalIndex, Qt::Horizontal, Qt::FontRole).value<QFont>();
    font.setPointSizeF(this->font().pointSizeF() * 0.9);
    painter->setFont(font);
    const QColor text = m->headerData(logicalIndex, Qt::Horizontal, Qt::ForegroundRole).value<QColor>();
    for (int b = 0; b < 3; ++b) {
        const QRect r(rect.left(), rect.top() + b * band, rect.width(), b == 2 ? rect.height() - 2 * band : band);
        painter->fillRect(r, m->headerData(logicalIndex, Qt::Horizontal, CalendarModel::BandBackgroundRole + b).value<QColor>());
        painter->setPen(text);
        painter->drawText(r, Qt::AlignCenter,
                          m->headerData(logicalIndex, Qt::Horizontal, CalendarModel::BandTextRole + b).toString());
        painter->setPen(QColor(160, 160, 160));
        painter->drawLine(r.bottomLeft(), r.bottomRight());
    }
    painter->drawLine(rect.topRight(), rect.bottomRight());
    if (m->headerData(logicalIndex, Qt::Horizontal, CalendarModel::TodayRole).toBool())
        paintTodayFrame(painter, rect, true);
    painter->restore();
}

void CalendarHeader::mouseDoubleClickEvent(QMouseEvent *event)
{
    const int column = logicalIndexAt(event->position().toPoint());
    if (column >= 0)
        Q_EMIT bandDoubleClicked(column, bandAt(event->position().toPoint().y()));
    event->accept();
}

bool CalendarHeader::viewportEvent(QEvent *event)
{
    if (event->type() == QEvent::ToolTip && model()) {
        auto *help = static_cast<QHelpEvent *>(event);
        const int column = logicalIndexAt(help->pos());
        if (column < 0) {
            QToolTip::hideText();
            return true;
        }
        QString tip = model()->headerData(column, Qt::Horizontal, CalendarModel::EventNoteRole + bandAt(help->pos().y())).toString();
        if (tip.isEmpty())
            tip = getString(2306, QStringLiteral("Double-click date to add an event"));
        QToolTip::showText(help->globalPos(), tip, this);
        return true;
    }
    return QHeaderView::viewportEvent(event);
}

void CalendarDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    painter->save();
    QColor back = index.data(Qt::BackgroundRole).value<QColor>();
    if (option.state & QStyle::State_Selected) {
        const QColor mark = option.palette.color(QPalette::Highlight);
        back = QColor((back.red() + mark.red()) / 2, (back.green() + mark.green()) / 2, (back.blue() + mark.blue()) / 2);
    }
    const bool today = index.data(CalendarModel::TodayRole).toBool();
    if (today && !index.data(CalendarModel::BookingIdRole).toInt())
        back = TodayFreeCell;
    painter->fillRect(option.rect, back);
    if (today)
        paintTodayFrame(painter, option.rect, false);
    const QString text = index.data(Qt::DisplayRole).toString();
    if (!text.isEmpty()) {
        QFont font = option.font;
        font.setPointSizeF(option.font.pointSizeF() * 0.9);
        painter->setFont(font);
        // Dark status colours (an outstanding account) take light text.
        const bool dark = 0.299 * back.red() + 0.587 * back.green() + 0.114 * back.blue() < 140;
        painter->setPen(dark ? Qt::white : Qt::black);
        painter->drawText(option.rect.adjusted(1, 1, -1, -1), Qt::AlignCenter, text);
    }
    painter->restore();
}

CalendarView::CalendarView(QWidget *parent)
    : QTableView(parent)
    , m_header(new CalendarHeader(this))
{
    setObjectName(QStringLiteral("gdCal"));
    setHorizontalHeader(m_header);
    setItemDelegate(new CalendarDelegate(this));
    setSelectionMode(QAbstractItemView::ContiguousSelection);
    setSelectionBehavior(QAbstractItemView::SelectItems);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrap(true);
    setMouseTracking(true);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(RowHeight);
    verticalHeader()->setFixedWidth(RoomColumnWidth);
    verticalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    verticalHeader()->setSectionsClickable(false);
    verticalHeader()->setHighlightSections(false);
    setGridStyle(Qt::SolidLine);
}

int CalendarView::dayColumns() const
{
    return dayColumnsForWidth(twipsFromPixels(viewport()->width()));
}

void CalendarView::fitColumns()
{
    if (!model())
        return;
    const int columns = model()->columnCount();
    const int rows = model()->rowCount();
    if (columns > 0) {
        const int width = viewport()->width();
        const int each = width / columns;
        int extra = width - each * columns;
        for (int c = 0; c < columns; ++c)
            setColumnWidth(c, each + (extra-- > 0 ? 1 : 0));
    }
    // A small property's rooms share the height; a large one scrolls.
    if (rows > 0)
        verticalHeader()->setDefaultSectionSize(std::max(RowHeight, (viewport()->height() - 1) / rows));
}

void CalendarView::resizeEvent(QResizeEvent *event)
{
    QTableView::resizeEvent(event);
    fitColumns();
    if (viewport()->width() != m_lastWidth) {
        m_lastWidth = viewport()->width();
        Q_EMIT widthChanged();
    }
}

void CalendarView::keyPressEvent(QKeyEvent *event)
{
    const QModelIndex current = currentIndex();
    const int lastColumn = model() ? model()->columnCount() - 1 : -1;
    const bool plain = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
    // The calendar is drawn again under the cell; the cursor stays in its row and
    // column, or for today goes to today's column.
    auto keepCell = [this, current](qint64 column) {
        if (current.isValid() && model() && column >= 0 && column < model()->columnCount())
            setCurrentIndex(model()->index(current.row(), int(column)));
    };
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (current.isValid()) {
            Q_EMIT openRequested();
            return;
        }
        break;
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        if (plain) {
            Q_EMIT daysRequested(event->key() == Qt::Key_PageUp ? -7 : 7);
            keepCell(current.column());
            return;
        }
        break;
    case Qt::Key_Home:
        if (plain) {
            Q_EMIT todayRequested();
            if (auto *calendar = qobject_cast<CalendarModel *>(model()))
                keepCell(calendar->firstDay().daysTo(QDate::currentDate()));
            return;
        }
        break;
    case Qt::Key_Left:
    case Qt::Key_Right: {
        const bool back = event->key() == Qt::Key_Left;
        if (plain && current.isValid() && current.column() == (back ? 0 : lastColumn)) {
            Q_EMIT daysRequested(back ? -1 : 1);
            keepCell(current.column());
            return;
        }
        break;
    }
    default:
        break;
    }
    QTableView::keyPressEvent(event);
}

} // namespace fenlark
