#include "desk/screens/mainwindow.h"

#include "accounts/screens/accountsearchdialogs.h"
#include "accounts/screens/ledgerdialogs.h"
#include "bookings/screens/bookingsearchdialog.h"
#include "bookings/screens/cancellations.h"
#include "bookings/screens/checkinout.h"
#include "bookings/screens/confirmbooking.h"
#include "bookings/screens/doublebook.h"
#include "bookings/screens/occupancydialog.h"
#include "bookings/screens/quickquotedialog.h"
#include "bookings/screens/reminderbar.h"
#include "bookings/screens/roomswap.h"
#include "bookings/screens/viewbooking.h"
#include "clients/screens/clientdelete.h"
#include "clients/screens/clienthistorydialog.h"
#include "clients/screens/clientsearchdialogs.h"
#include "clients/screens/sourcecodemt.h"
#include "clients/screens/viewclient.h"
#include "desk/screens/deskstartuphost.h"
#include "reports/screens/reportlauncher.h"
#include "shell/calendar.h"
#include "shell/calendargrid.h"
#include "shell/databasechoice.h"
#include "shell/messages.h"
#include "shell/refusal.h"
#include "shell/screens/aboutdialog.h"
#include "shell/screens/calendarlegend.h"
#include "shell/screens/calendarview.h"
#include "shell/screens/choosedatabasedialog.h"
#include "shell/screens/eventdialog.h"
#include "shell/screens/guard.h"
#include "shell/screens/languagedialog.h"
#include "shell/screens/logindialogs.h"
#include "shell/screens/settingsdialogs.h"
#include "shell/screens/waitcursor.h"
#include "shell/strings.h"
#include "synch/screens/dlgemergencysynch.h"
#include "synch/screens/dlgsynch.h"
#include "synch/screens/dlgupgrade.h"
#include "synch/synchrun.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDateEdit>
#include <QDesktopServices>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>

namespace fenlark {

namespace {

QString text(int id, const char *fallback)
{
    // An empty translation keeps the English caption.
    const QString value = getString(id, QString::fromUtf8(fallback));
    return value.isEmpty() ? QString::fromUtf8(fallback) : value;
}

} // namespace

MainWindow::MainWindow(std::unique_ptr<Session> session, QWidget *parent)
    : QMainWindow(parent)
    , openUrl([](const QUrl &url) { return QDesktopServices::openUrl(url); })
    , m_session(std::move(session))
    , m_rates(RateData::load(m_session->db()))
{
    setObjectName(QStringLiteral("frmMain"));
    m_session->setChangeListener(this);
    DeskUi &ui = *this;
    m_commands = std::make_unique<MainCommands>(*m_session, ui);
    buildControls();
    buildMenus();
    retranslate();
    updateCommandStates();
    setMinimumSize(807, 460);
    resize(1180, 720);

    qApp->installEventFilter(this);

    m_timer = new QTimer(this);
    m_timer->setObjectName(QStringLiteral("Timer"));
    m_timer->setInterval(10000);
    connect(m_timer, &QTimer::timeout, this, guarded([this] { tick(); }));
    m_timer->start();
}

MainWindow::~MainWindow()
{
    m_session->setChangeListener(nullptr);
    // The grid reads the session while it is taken down; it goes first.
    delete takeCentralWidget();
    delete m_model;
}

QPushButton *MainWindow::button(const QString &objectName) const
{
    return findChild<QPushButton *>(objectName);
}

QAction *MainWindow::menuAction(const QString &objectName) const
{
    for (QAction *a : m_actions)
        if (a->objectName() == objectName)
            return a;
    return nullptr;
}

void MainWindow::buildControls()
{
    auto *central = new QWidget(this);
    auto *layout = new QVBoxLayout(central);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->setSpacing(6);

    for (const DeskCommand &command : MainCommands::commands()) {
        if (command.place != DeskCommand::Button)
            continue;
        auto *b = new QPushButton(central);
        b->setObjectName(command.name);
        b->setAutoDefault(false);
        connect(b, &QPushButton::clicked, this, guarded([this, name = command.name] { m_commands->run(name); }));
        m_buttons.push_back(b);
    }

    // The window's dates.
    auto *dateRow = new QHBoxLayout;
    dateRow->setObjectName(QStringLiteral("frmDate"));
    m_viewFromLabel = new QLabel(central);
    m_viewFromLabel->setObjectName(QStringLiteral("lblViewCalendarFrom"));
    m_from = new QDateEdit(central);
    m_from->setObjectName(QStringLiteral("dpFrom"));
    m_from->setCalendarPopup(true);
    m_from->setDisplayFormat(QStringLiteral("ddd dd MMM yyyy"));
    m_from->setDate(QDate::currentDate().addDays(-7));
    dateRow->addWidget(m_viewFromLabel);
    dateRow->addWidget(m_from);
    for (const char *name : {"cmdToday", "cmdPrevMonth", "cmdPrevWeek", "cmdNextWeek", "cmdNextMonth"})
        dateRow->addWidget(button(QString::fromLatin1(name)));
    dateRow->addStretch();
    layout->addLayout(dateRow);

    // The calendar beside the booking panel; a reminder takes its own place above
    // it, never over it, and the legend of the status colours sits below.
    auto *middle = new QHBoxLayout;
    auto *calendarColumn = new QVBoxLayout;
    m_reminderBar = new ReminderBar(*m_session, [this](qint32 booking, qint32 room) { openBooking(booking, room); }, central);
    m_model = new CalendarModel(*m_session, this);
    m_view = new CalendarView(central);
    m_view->setModel(m_model);
    m_legend = new CalendarLegend(*m_session, central);
    calendarColumn->addWidget(m_reminderBar);
    calendarColumn->addWidget(m_view, 1);
    calendarColumn->addWidget(m_legend);
    middle->addLayout(calendarColumn, 1);

    m_bookBox = new QGroupBox(central);
    m_bookBox->setObjectName(QStringLiteral("frmBook"));
    m_bookBox->setFixedWidth(230);
    auto *book = new QGridLayout(m_bookBox);
    m_userName = new QLabel(m_bookBox);
    m_userName->setObjectName(QStringLiteral("lblUserName"));
    QFont bold = m_userName->font();
    bold.setBold(true);
    m_userName->setFont(bold);
    m_inDateLabel = new QLabel(m_bookBox);
    m_inDateLabel->setObjectName(QStringLiteral("lblInDate"));
    m_leavingLabel = new QLabel(m_bookBox);
    m_leavingLabel->setObjectName(QStringLiteral("lblLeaving"));
    m_nightsLabel = new QLabel(m_bookBox);
    m_nightsLabel->setObjectName(QStringLiteral("lblNights"));
    m_inDate = new QDateEdit(m_bookBox);
    m_inDate->setObjectName(QStringLiteral("dpInDate"));
    m_leaving = new QDateEdit(m_bookBox);
    m_leaving->setObjectName(QStringLiteral("dpLeaving"));
    for (QDateEdit *e : {m_inDate, m_leaving}) {
        e->setCalendarPopup(true);
        e->setDisplayFormat(QStringLiteral("ddd dd MMM yyyy"));
        e->setDate(QDate::currentDate());
    }
    m_nights = new QLineEdit(m_bookBox);
    m_nights->setObjectName(QStringLiteral("txtNights"));
    m_nights->setValidator(new QIntValidator(0, 999, m_nights));
    m_nights->setText(QStringLiteral("0"));
    book->addWidget(m_userName, 0, 0, 1, 2);
    book->addWidget(m_inDateLabel, 1, 0);
    book->addWidget(m_inDate, 1, 1);
    book->addWidget(m_leavingLabel, 2, 0);
    book->addWidget(m_leaving, 2, 1);
    book->addWidget(m_nightsLabel, 3, 0);
    book->addWidget(m_nights, 3, 1);
    book->addWidget(button(QStringLiteral("cmdCheck")), 4, 0, 1, 2);
    m_roomsBox = new QWidget(m_bookBox);
    auto *roomsLayout = new QVBoxLayout(m_roomsBox);
    roomsLayout->setContentsMargins(0, 0, 0, 0);
    m_rooms = new QListWidget(m_roomsBox);
    m_rooms->setObjectName(QStringLiteral("lstRooms"));
    m_rooms->setSelectionMode(QAbstractItemView::MultiSelection);
    m_out = new QLabel(m_roomsBox);
    m_out->setObjectName(QStringLiteral("lblOut"));
    m_out->setWordWrap(true);
    roomsLayout->addWidget(m_rooms, 1);
    roomsLayout->addWidget(m_out);
    auto *bookButtons = new QHBoxLayout;
    bookButtons->addWidget(button(QStringLiteral("cmdBook")));
    bookButtons->addWidget(button(QStringLiteral("cmdQuote")));
    roomsLayout->addLayout(bookButtons);
    roomsLayout->addWidget(button(QStringLiteral("cmdCloseBox")));
    book->addWidget(m_roomsBox, 5, 0, 1, 2);
    book->setRowStretch(5, 1);
    m_roomsBox->setVisible(false);
    button(QStringLiteral("cmdCloseBox"))->setVisible(false);
    middle->addWidget(m_bookBox);
    layout->addLayout(middle, 1);

    // The details of the selected booking and the desk's commands.
    auto *bottom = new QHBoxLayout;
    m_details = new QPlainTextEdit(central);
    m_details->setObjectName(QStringLiteral("txtDetails"));
    m_details->setReadOnly(true);
    m_details->setFixedHeight(3 * m_details->fontMetrics().lineSpacing() + 16);
    bottom->addWidget(m_details, 1);
    auto *commands = new QGridLayout;
    const char *commandNames[] = {"cmdView", "cmdSearch", "cmdCheckIn", "cmdCheckOut", "cmdRefresh",
                                  "cmdSwapRoom", "cmdChangeUser", "cmdSynch", "cmdExit"};
    for (int i = 0; i < 9; ++i)
        commands->addWidget(button(QString::fromLatin1(commandNames[i])), i / 5, i % 5);
    bottom->addLayout(commands);
    layout->addLayout(bottom);
    setCentralWidget(central);

    connect(m_from, &QDateEdit::dateChanged, this, guarded(this, &MainWindow::fromDateChanged));
    connect(m_inDate, &QDateEdit::dateChanged, this, guarded(this, &MainWindow::inDateChanged));
    connect(m_leaving, &QDateEdit::dateChanged, this, guarded(this, &MainWindow::leavingChanged));
    connect(m_nights, &QLineEdit::textEdited, this, guarded(this, &MainWindow::nightsEdited));
    connect(m_view, &CalendarView::widthChanged, this, guarded(this, &MainWindow::drawCalendar));
    connect(m_view, &QAbstractItemView::doubleClicked, this, guarded(this, &MainWindow::viewSelectedBooking));
    connect(m_view, &CalendarView::openRequested, this, guarded(this, &MainWindow::viewSelectedBooking));
    connect(m_view, &CalendarView::daysRequested, this, guarded([this](int days) { setFromDate(fromDate().addDays(days)); }));
    connect(m_view, &CalendarView::todayRequested, this, guarded([this] { m_commands->run(QStringLiteral("cmdToday")); }));
    connect(m_view->calendarHeader(), &CalendarHeader::bandDoubleClicked, this, guarded(this, &MainWindow::headerDoubleClicked));
    connect(m_view->selectionModel(), &QItemSelectionModel::selectionChanged, this, guarded(this, &MainWindow::selectionChanged));
    connect(m_model, &QAbstractItemModel::modelReset, this, guarded([this] {
        // A new model reset replaces the selection model's contents, not the object.
        m_view->fitColumns();
    }));
    connect(m_reminderBar, &ReminderBar::reminderShown, this, guarded(this, &MainWindow::restoreWindow));
    auto *colours = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_P), m_view, nullptr, nullptr, Qt::WidgetShortcut);
    connect(colours, &QShortcut::activated, this, guarded(this, &MainWindow::openColourPicker));

}

void MainWindow::buildMenus()
{
    for (const DeskCommand &command : MainCommands::commands()) {
        if (command.place == DeskCommand::Button)
            continue;
        QAction *action = nullptr;
        if (command.place == DeskCommand::MenuBar) {
            action = menuBar()->addAction(QString());
        } else {
            auto menu = std::find_if(m_menus.begin(), m_menus.end(), [&](QMenu *m) { return m->objectName() == command.menu; });
            if (menu == m_menus.end()) {
                m_menus.push_back(menuBar()->addMenu(QString()));
                m_menus.back()->setObjectName(command.menu);
                menu = m_menus.end() - 1;
            }
            action = (*menu)->addAction(QString());
        }
        action->setObjectName(command.name);
        connect(action, &QAction::triggered, this, guarded([this, name = command.name] { m_commands->run(name); }));
        m_actions.push_back(action);
    }
}

void MainWindow::retranslate()
{
    setWindowTitle(m_commands->windowCaption());
    for (const DeskCommand &command : MainCommands::commands()) {
        if (command.place == DeskCommand::Button) {
            QPushButton *b = button(command.name);
            b->setText(command.caption);
            b->setToolTip(command.toolTip);
        } else {
            menuAction(command.name)->setText(command.caption);
        }
    }
    for (const DeskMenu &title : MainCommands::menus())
        for (QMenu *menu : m_menus)
            if (menu->objectName() == title.name)
                menu->setTitle(title.title);
    m_viewFromLabel->setText(text(5151, "View calendar from:"));
    m_bookBox->setTitle(text(5150, "New booking"));
    m_inDateLabel->setText(text(5152, "Arriving:"));
    m_leavingLabel->setText(text(5153, "Leaving:"));
    m_nightsLabel->setText(text(5154, "Nights:"));
    m_userName->setText(m_session->getUser().UserName.isEmpty()
                            ? QString()
                            : text(5184, "User: %1").arg(m_session->getUser().UserName));
    for (QDateEdit *e : {m_from, m_inDate, m_leaving})
        e->setLocale(deskLocale());
}

void MainWindow::changeEvent(QEvent *event)
{
    // Status names come in the language of the desk, so the colours are read again.
    if (event->type() == QEvent::LanguageChange) {
        retranslate();
        m_session->loadStatusColours();
        drawCalendar();
    }
    QMainWindow::changeEvent(event);
}

void MainWindow::updateCommandStates()
{
    for (QPushButton *b : m_buttons)
        if (b->objectName() != QLatin1String("cmdCloseBox"))   // that one comes with the room list
            b->setVisible(m_commands->isShown(b->objectName()));
    for (QAction *action : m_actions)
        action->setVisible(m_commands->isShown(action->objectName()));
    const bool roomsListed = m_rooms->count() > 0;
    button(QStringLiteral("cmdBook"))->setEnabled(roomsListed);
    button(QStringLiteral("cmdQuote"))->setEnabled(roomsListed);
}

void MainWindow::applyChanges(const Changes &changes)
{
    if (changes.setupChanged()) {
        m_session->reloadSetup();
        m_rates = RateData::load(m_session->db());
    }
    m_session->calendar().refresh(m_session->db(), changes);
    drawCalendar();
}

void MainWindow::initialise()
{
    m_session->reloadSetup();
    m_rates = RateData::load(m_session->db());
    m_updating = true;
    m_from->setDate(QDate::currentDate().addDays(-7));
    m_inDate->setDate(QDate::currentDate());
    m_leaving->setDate(QDate::currentDate());
    m_updating = false;
    retranslate();
    drawCalendar();
}

QDate MainWindow::fromDate() const
{
    return m_from->date();
}

void MainWindow::drawCalendar()
{
    {
        WaitCursor wait;
        const int row = m_view->currentIndex().row();
        m_model->drawCalendar(m_from->date(), m_view->dayColumns());
        if (row >= 0)
            m_view->scrollTo(m_model->index(row, 0));
    }
    // The colours may have been edited or renamed in another language.
    m_legend->refresh();

    const auto &missing = m_model->grid().missingClients();
    if (!missing.empty() && missing != m_lastMissing)
        messages::show(Refusal(2284, QStringLiteral("Could not find guest data for booking: "), 2285, QStringLiteral("System error."))
                           .thenText(QString::number(missing.front())));
    m_lastMissing = missing;
}

void MainWindow::setFromDate(QDate date)
{
    if (m_from->date() == date)
        fromDateChanged();
    else
        m_from->setDate(date);
}

void MainWindow::fromDateChanged()
{
    if (m_updating)
        return;
    drawCalendar();
    if (m_inDate->date() == m_from->date())
        inDateChanged();
    else
        m_inDate->setDate(m_from->date());
}

void MainWindow::clearRoomList()
{
    m_rooms->clear();
    m_out->clear();
    button(QStringLiteral("cmdBook"))->setEnabled(false);
    button(QStringLiteral("cmdQuote"))->setEnabled(false);
}

void MainWindow::inDateChanged()
{
    if (m_updating)
        return;
    clearRoomList();
    m_updating = true;
    m_leaving->setDate(m_inDate->date());
    m_nights->setText(QStringLiteral("0"));
    m_updating = false;
    m_roomListActive = false;
}

void MainWindow::leavingChanged()
{
    if (m_updating)
        return;
    const qint64 nights = m_inDate->date().daysTo(m_leaving->date());
    if (nights >= 1) {
        const QString before = m_nights->text();
        m_nights->setText(QString::number(nights));
        if (before != m_nights->text())
            clearRoomList();
        checkRooms();
    } else {
        m_nights->setText(QStringLiteral("0"));
    }
}

void MainWindow::nightsEdited()
{
    m_roomListActive = false;
    clearRoomList();
    const int nights = m_nights->text().toInt();
    if (nights > 0) {
        m_updating = true;
        m_leaving->setDate(m_inDate->date().addDays(nights));
        m_updating = false;
    }
}

void MainWindow::selectionChanged()
{
    const QItemSelection selection = m_view->selectionModel()->selection();
    if (selection.isEmpty())
        return;
    int top = INT_MAX, bottom = -1, left = INT_MAX, right = -1;
    for (const QItemSelectionRange &range : selection) {
        top = std::min(top, range.top());
        bottom = std::max(bottom, range.bottom());
        left = std::min(left, range.left());
        right = std::max(right, range.right());
    }
    const GridSelection ordered = GridSelection::ordered(top, left, bottom, right);
    const BookingRequest request = bookingRequestFor(m_model->firstDay(), ordered);

    if (m_inDate->date() == request.inDate)
        inDateChanged();
    else
        m_inDate->setDate(request.inDate);
    m_updating = true;
    m_nights->setText(QString::number(request.nights));
    m_leaving->setDate(request.inDate.addDays(request.nights));
    m_updating = false;
    clearRoomList();
    fillDetails(ordered.top, ordered.left);
    m_selTop = request.firstRoom;
    m_selBottom = request.lastRoom;
    m_roomListActive = true;

    // A drag over free cells goes straight on to the list of free rooms.
    bool allFree = true;
    for (int r = ordered.top; r <= ordered.bottom && allFree; ++r)
        for (int c = ordered.left; c <= ordered.right && allFree; ++c)
            allFree = !m_model->grid().cell(r, c).entry;
    if (allFree)
        checkRooms();
}

void MainWindow::fillDetails(int row, int column)
{
    m_details->clear();
    if (row < 0 || column < 0 || row >= m_model->rowCount() || column >= m_model->columnCount())
        return;
    const CalendarCell &cell = m_model->grid().cell(row, column);
    if (!cell.entry)
        return;
    const auto details = bookingDetails(m_session->db(), cell.entry->BBBookingID, m_model->roomIdAt(row));
    if (!details) {
        refreshCalendar();
        return;
    }
    m_details->setPlainText(*details);
}

void MainWindow::checkRooms()
{
    QPushButton *closeBox = button(QStringLiteral("cmdCloseBox"));
    if (!closeBox->isVisible()) {
        closeBox->setVisible(true);
        m_roomsBox->setVisible(true);
    }
    if (Outcome nights = checkNights(m_nights->text()); !nights) {
        messages::show(nights.refusal());
        m_nights->setFocus();
        return;
    }
    const int nights = m_nights->text().toInt();
    const QDate from = m_inDate->date();
    std::vector<qint32> allRooms;
    for (const Room &room : m_session->property().rooms())
        allRooms.push_back(room.BBRoomID);
    QSet<qint32> wanted;
    if (m_roomListActive)
        for (int r = m_selTop; r <= m_selBottom; ++r)
            wanted.insert(m_model->roomIdAt(r));

    m_rooms->clear();
    const std::vector<qint32> free = freeRooms(m_session->db(), m_session->calendar(), allRooms, from, nights);
    if (free.empty()) {
        messages::critical(1691, QStringLiteral("There are no rooms free for these dates."), 1692, QStringLiteral("No rooms available"));
    } else {
        for (qint32 id : free) {
            auto *item = new QListWidgetItem(m_session->property().RoomName(id), m_rooms);
            item->setData(Qt::UserRole, id);
            item->setSelected(wanted.contains(id));
        }
    }
    m_out->setText(deskLocale().toString(from.addDays(nights), QStringLiteral("ddd dd MMM yyyy")));
    button(QStringLiteral("cmdBook"))->setEnabled(m_rooms->count() > 0);
    button(QStringLiteral("cmdQuote"))->setEnabled(m_rooms->count() > 0);
}

void MainWindow::bookSelectedRooms()
{
    if (m_rooms->count() == 0) {
        button(QStringLiteral("cmdBook"))->setEnabled(false);
        return;
    }
    std::vector<qint32> rooms;
    for (QListWidgetItem *item : m_rooms->selectedItems())
        rooms.push_back(item->data(Qt::UserRole).toInt());
    if (rooms.empty()) {
        messages::critical(2276, QStringLiteral("You didn't pick a room."), 2277, QStringLiteral("No room selected"));
        return;
    }
    ConfirmBooking dialog(*m_session, m_rates, rooms, m_inDate->date(), m_nights->text().toInt(), this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    // A booking was made: the room list has served and closes, and the booking
    // opens in the editor.
    closeRoomList();
    clearRoomList();
    openBooking(dialog.saved().BBBookingID, dialog.saved().firstRoomId);
}

void MainWindow::closeRoomList()
{
    button(QStringLiteral("cmdCloseBox"))->setVisible(false);
    m_roomsBox->setVisible(false);
}

void MainWindow::quickQuote()
{
    QuickQuoteDialog dialog(*m_session, m_rates, m_inDate->date(), m_nights->text().toInt(), this);
    dialog.exec();
}

bool MainWindow::checkDoubleBookings(bool onStart)
{
    return DoubleBook::check(*m_session, bookingOpener(), onStart, this);
}

bool MainWindow::doubleBookings(bool onStart)
{
    return checkDoubleBookings(onStart);
}

std::function<void(qint32, qint32)> MainWindow::bookingOpener()
{
    return [this](qint32 booking, qint32 room) { openBooking(booking, room); };
}

void MainWindow::viewSelectedBooking()
{
    const QModelIndex current = m_view->currentIndex();
    QModelIndexList selected = m_view->selectionModel()->selectedIndexes();
    QModelIndex cell = current;
    for (const QModelIndex &i : selected)
        if (!cell.isValid() || i.row() < cell.row() || (i.row() == cell.row() && i.column() < cell.column()))
            cell = i;
    if (!cell.isValid() || cell.data(Qt::DisplayRole).toString().isEmpty()) {
        messages::critical(2286, QStringLiteral("No booking selected."), 2287, QStringLiteral("Please select a booking"));
        return;
    }
    openBooking(cell.data(CalendarModel::BookingIdRole).toInt(), cell.data(CalendarModel::RoomIdRole).toInt());
    fillDetails(cell.row(), cell.column());
}

void MainWindow::headerDoubleClicked(int column, int band)
{
    if (column < 0 || column >= m_model->columnCount())
        return;
    const DayHeader &header = m_model->grid().header(column);
    EventDialog dialog(m_session->db(), header.date, band + 1, header.event[band], this);
    if (dialog.exec() == QDialog::Accepted)
        applyChanges(Changes().events());
}

void MainWindow::refreshCalendar()
{
    initCalendar();
    drawCalendar();
    m_view->setFocus();
}

bool MainWindow::openPath(const QString &path)
{
    return openUrl(QUrl::fromLocalFile(path));
}

void MainWindow::setHourglass(bool on)
{
    if (on)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

void MainWindow::exitDesk()
{
    close();
}

void MainWindow::searchBookings()
{
    BookingSearchDialog dialog(*m_session, bookingOpener(), [this](QDate from) { setFromDate(from); }, this);
    dialog.exec();
}

void MainWindow::checkInOut(int mode)
{
    CheckInOut::initialise(*m_session, mode == 1 ? StayEnd::Arrivals : StayEnd::Departures, bookingOpener(), this);
}

void MainWindow::swapRooms()
{
    RoomSwapDialog dialog(*m_session, this);
    dialog.exec();
}

bool MainWindow::synchronise(bool manual)
{
    if (!manual)
        return automaticSynch(m_session->db());
    const bool changed = synchManually(m_session->db(), this);
    m_view->setFocus();
    return changed;
}

bool MainWindow::emergencyAccessGranted()
{
    DlgEmergencySynch dialog(this);
    dialog.exec();
    return dialog.goodPassword();
}

void MainWindow::chooseDatabase()
{
    const int chosen = ChooseDatabaseDialog::choose(m_session->dbNumber(), this);
    DeskStartupHost host;
    if (DatabaseChoice::change(*m_session, chosen, host) == DatabaseChoice::Changed)
        initialise();
}

void MainWindow::chooseLanguage()
{
    LanguageDialog::showDialog(this);
}

void MainWindow::runReport(int number)
{
    ReportLauncher launcher(*m_session, this);
    launcher.openFile = [this](const QString &path) { return openPath(path); };
    launcher.run(number);
}

void MainWindow::occupancy()
{
    OccupancyDialog dialog(*m_session, m_rates, this);
    dialog.exec();
}

void MainWindow::cancellations()
{
    Cancellations dialog(*m_session, m_rates, this);
    dialog.fill();
    dialog.exec();
}

void MainWindow::replaceSource()
{
    SourceCodeMT dialog(*m_session, this);
    dialog.exec();
}

void MainWindow::options()
{
    PreferencesDialog dialog(*m_session, this);
    dialog.exec();
}

void MainWindow::clientSearch()
{
    ViewClientOpener editor(*m_session);
    ClientMaintenance dialog(m_session->db(), editor, this);
    dialog.exec();
}

void MainWindow::clientHistory()
{
    ClientHistory dialog(*m_session, bookingOpener(), this);
    dialog.exec();
}

void MainWindow::clientRetire()
{
    ClientDelete dialog(*m_session, this);
    dialog.exec();
}

void MainWindow::accountSearch()
{
    AccountsList::initialise(*m_session, this);
}

void MainWindow::transactions()
{
    ClientTranSearch::initialise(*m_session, this);
}

void MainWindow::upgrade()
{
    DlgUpgrade dialog(this);
    dialog.exec();
}

void MainWindow::about()
{
    AboutDialog dialog(true, this);
    dialog.exec();
}

void MainWindow::openColourPicker()
{
    ColourPickerDialog dialog(*m_session, this);
    connect(&dialog, &ColourPickerDialog::coloursChanged, this, guarded(this, &MainWindow::drawCalendar));
    dialog.exec();
}

bool MainWindow::enterPassword()
{
    const bool ok = fenlark::enterPassword(*m_session, this);
    retranslate();
    updateCommandStates();
    return ok;
}

void MainWindow::changeUser()
{
    enterPassword();
}

void MainWindow::endNicely()
{
    m_exitFlag = true;
    close();
}

Ticker::Result MainWindow::tick()
{
    return Ticker::tick(m_session->db(), *this);
}

bool MainWindow::deskIdle()
{
    // In the background or minimised the desk still ticks; a dialog holds it.
    return !QApplication::activeModalWidget();
}

void MainWindow::checkExpired()
{
    m_reminderBar->check();
}

void MainWindow::synchronise()
{
    bool changed = false;
    QPushButton *synch = button(QStringLiteral("cmdSynch"));
    synch->setEnabled(false);
    {
        WaitCursor wait;
        runGuarded([&] { changed = synchronise(false); });
    }
    synch->setEnabled(true);
    if (changed)
        m_commands->afterSynchronisation();
}

void MainWindow::restoreWindow()
{
    if (isMinimized())
        showMaximized();
}

void MainWindow::openBooking(qint32 bbBookingId, qint32 bbRoomId)
{
    if (m_bookingScreen) {
        m_bookingScreen(bbBookingId, bbRoomId);
        return;
    }
    ViewBooking::initialise(*m_session, m_rates, bbBookingId, bbRoomId, this);
}

bool MainWindow::eventFilter(QObject *watched, QEvent *event)
{
    // Whichever dialog closes (a screen, a question, a message), the keyboard goes
    // back to the calendar once no other dialog is left open. It is set as the
    // closing happens, so a screen that wants the focus elsewhere afterwards (the
    // nights box after "How many nights is the booking for?") still has its way.
    // Menus and date popups are not dialogs and leave the focus where it was.
    if (event->type() == QEvent::Hide && watched->isWidgetType()) {
        auto *widget = static_cast<QWidget *>(watched);
        QWidget *modal = QApplication::activeModalWidget();
        if (widget != this && widget->isWindow() && widget->windowType() == Qt::Dialog && (!modal || modal == widget))
            m_view->setFocus(Qt::OtherFocusReason);
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    // A database that fails the question does not keep the desk from closing.
    bool may = true;
    runGuarded([&] { may = mayExit(m_session->db(), m_exitFlag); });
    if (may) {
        event->accept();
    } else {
        m_exitFlag = false;
        event->ignore();
    }
}

} // namespace fenlark
