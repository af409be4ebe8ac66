#include "desk/screens/mainwindow.h"

#include "accounts/accountvalidator.h"
#include "accounts/screens/accountsearchdialogs.h"
#include "accounts/screens/ledgerdialogs.h"
#include "bookings/screens/reminderbar.h"
#include "desk/screens/deskstartuphost.h"
#include "shell/calendar.h"
#include "shell/calendargrid.h"
#include "shell/config.h"
#include "shell/databasechoice.h"
#include "shell/databasefiles.h"
#include "shell/home.h"
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

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDateEdit>
#include <QDesktopServices>
#include <QFile>
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

// A caption and tool tip by string id; id 0 means none.
struct Text {
    const char *name;
    int id;
    const char *caption;
    int tipId = 0;
    const char *tip = nullptr;
};

const Text ButtonTexts[] = {
    {"cmdBook", 1324, "&Book", 1322, "Make a booking"},
    {"cmdCheck", 1325, "Select Room(s)", 1326, "See available rooms for these dates"},
    {"cmdQuote", 1323, "&Quote"},
    {"cmdCloseBox", 5185, "Close"},
    {"cmdView", 1320, "&View/Cancel  Booking", 1321, "View a booking"},
    {"cmdSearch", 1318, "&Search", 1319, "Search for a booking"},
    {"cmdCheckIn", 5155, "Check-In"},
    {"cmdCheckOut", 5156, "Check-Out"},
    {"cmdSwapRoom", 5157, "Swap Room"},
    {"cmdChangeUser", 5158, "Change User"},
    {"cmdRefresh", 1309, "Refresh Calendar"},
    {"cmdToday", 1308, "&Today"},
    {"cmdPrevWeek", 1317, "Previous Week"},
    {"cmdNextWeek", 1315, "Next Week"},
    {"cmdPrevMonth", 1313, "Previous Month"},
    {"cmdNextMonth", 1311, "Next Month"},
    {"cmdSynch", 1332, "&Synchronise", 1333, "Synchronise with veldmoor server"},
    {"cmdExit", 1330, "&Exit", 1331, "Exit program"},
};

const Text MenuTexts[] = {
    {"m1File", 1335, "&File"},
    {"m1Templates", 5160, "Templates"},
    {"m1Synch", 1340, "&Synchronisation"},
    {"m1Reports", 1343, "Reports"},
    {"m1Tools", 1354, "Tools"},
    {"m1Client", 1361, "Clients"},
    {"m1Accounts", 5179, "Accounts"},
    {"m1Transactions", 5182, "Transactions"},
    {"m1Help", 1365, "&Help"},
};

const Text ActionTexts[] = {
    {"m2ChooseDB", 1336, "&Choose Database"},
    {"m2Config", 1337, "&View Config file"},
    {"m2Language", 2254, "Choose &Language"},
    {"m2InvoiceFolder", 1338, "Open &Invoice Folder"},
    {"m2vmfolder", 1339, "Open &Veldmoor Folder"},
    {"m2Exit", 1330, "&Exit"},
    {"m2Invoice", 5161, "Invoice"},
    {"m2Proforma", 5162, "Proforma"},
    {"m2CreditNote", 5163, "Credit Note"},
    {"m2Registration", 5164, "Registration"},
    {"m2Confirmation", 5165, "Confirmation"},
    {"m2SynchLD", 1341, "Latest Data"},
    {"m2SynchFull", 1342, "Emergency Synch"},
    {"m2xl1", 5166, "Calendar Printout"},
    {"m2xl2", 5167, "Booking Summary"},
    {"m2xl3", 5168, "Extras Report"},
    {"m2xl4", 1347, "Client Report"},
    {"m2xl5", 5170, "Arrivals/Departures"},
    {"m2xl6", 5171, "In-House Report"},
    {"m2xl7", 5172, "Outstanding Accounts"},
    {"m2xl8", 5173, "Debtors"},
    {"m2xl9", 5174, "Transaction Report"},
    {"m2xl10", 5175, "Marketing Report"},
    {"m2xl11", 5176, "Payments Report"},
    {"m2xl12", 5177, "Security Audit"},
    {"m2Occupancy", 1355, "Occupancy"},
    {"m2Cancellations", 1356, "Cancellations"},
    {"m2DoubleBooking", 1357, "Double Bookings"},
    {"m2Source", 1359, "Replace Marketing Source"},
    {"m2Options", 1360, "Options"},
    {"m2Client", 1362, "Client Search"},
    {"m2ClientReport", 1347, "Client Report"},
    {"m2ClientHistory", 1363, "Client History"},
    {"m2ClientRetire", 5178, "Client Retire"},
    {"m2AccountsSearch", 5180, "Search"},
    {"m2AccountsCloseEmpty", 5181, "Close empty"},
    {"m2Transactions", 5182, "Transactions"},
    {"m2Upgrade", 5183, "&Upgrade"},
    {"m2About", 1366, "&About"},
};

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

    for (const Text &t : ButtonTexts) {
        auto *b = new QPushButton(central);
        b->setObjectName(QString::fromLatin1(t.name));
        b->setAutoDefault(false);
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
    connect(m_view, &QAbstractItemView::doubleClicked, this, guarded(this, &MainWindow::cellDoubleClicked));
    connect(m_view->calendarHeader(), &CalendarHeader::bandDoubleClicked, this, guarded(this, &MainWindow::headerDoubleClicked));
    connect(m_view->selectionModel(), &QItemSelectionModel::selectionChanged, this, guarded(this, &MainWindow::selectionChanged));
    connect(m_model, &QAbstractItemModel::modelReset, this, guarded([this] {
        // A new model reset replaces the selection model's contents, not the object.
        m_view->fitColumns();
    }));
    connect(m_reminderBar, &ReminderBar::reminderShown, this, guarded(this, &MainWindow::restoreWindow));
    auto *colours = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_P), m_view, nullptr, nullptr, Qt::WidgetShortcut);
    connect(colours, &QShortcut::activated, this, guarded(this, &MainWindow::openColourPicker));

    connect(button(QStringLiteral("cmdToday")), &QPushButton::clicked, this, guarded([this] { setFromDate(QDate::currentDate().addDays(-7)); }));
    connect(button(QStringLiteral("cmdPrevWeek")), &QPushButton::clicked, this, guarded([this] { setFromDate(fromDate().addDays(-7)); }));
    connect(button(QStringLiteral("cmdNextWeek")), &QPushButton::clicked, this, guarded([this] { setFromDate(fromDate().addDays(7)); }));
    connect(button(QStringLiteral("cmdPrevMonth")), &QPushButton::clicked, this, guarded([this] { setFromDate(fromDate().addMonths(-1)); }));
    connect(button(QStringLiteral("cmdNextMonth")), &QPushButton::clicked, this, guarded([this] { setFromDate(fromDate().addMonths(1)); }));
    connect(button(QStringLiteral("cmdRefresh")), &QPushButton::clicked, this, guarded(this, &MainWindow::refresh));
    connect(button(QStringLiteral("cmdCheck")), &QPushButton::clicked, this, guarded(this, &MainWindow::checkRooms));
    connect(button(QStringLiteral("cmdBook")), &QPushButton::clicked, this, guarded(this, &MainWindow::book));
    connect(button(QStringLiteral("cmdCloseBox")), &QPushButton::clicked, this, guarded([this] {
        button(QStringLiteral("cmdCloseBox"))->setVisible(false);
        m_roomsBox->setVisible(false);
    }));
    connect(button(QStringLiteral("cmdView")), &QPushButton::clicked, this, guarded(this, &MainWindow::cellDoubleClicked));
    connect(button(QStringLiteral("cmdChangeUser")), &QPushButton::clicked, this, guarded(this, &MainWindow::changeUser));
    for (const auto &[name, mode] : {std::pair{"cmdCheckIn", 1}, std::pair{"cmdCheckOut", 2}}) {
        connect(button(QString::fromLatin1(name)), &QPushButton::clicked, this, guarded([this, mode = mode] {
            if (m_seams.checkInOut)
                m_seams.checkInOut(*this, mode);
        }));
    }
    connect(button(QStringLiteral("cmdSwapRoom")), &QPushButton::clicked, this, guarded([this] {
        if (m_seams.swapRoom)
            m_seams.swapRoom(*this);
    }));
    connect(button(QStringLiteral("cmdSearch")), &QPushButton::clicked, this, guarded([this] {
        if (m_seams.search)
            m_seams.search(*this);
    }));
    connect(button(QStringLiteral("cmdQuote")), &QPushButton::clicked, this, guarded([this] {
        if (m_seams.quickQuote)
            m_seams.quickQuote(*this, m_inDate->date(), m_nights->text().toInt());
    }));
    connect(button(QStringLiteral("cmdSynch")), &QPushButton::clicked, this, guarded(this, &MainWindow::manualSynch));
    connect(button(QStringLiteral("cmdExit")), &QPushButton::clicked, this, guarded(this, &QWidget::close));
}

void MainWindow::buildMenus()
{
    auto addMenu = [this](const char *name) {
        QMenu *menu = menuBar()->addMenu(QString());
        menu->setObjectName(QString::fromLatin1(name));
        m_menus.push_back(menu);
        return menu;
    };
    auto addAction = [this](QMenu *menu, const char *name) {
        QAction *action = menu->addAction(QString());
        action->setObjectName(QString::fromLatin1(name));
        m_actions.push_back(action);
        return action;
    };
    QMenu *file = addMenu("m1File");
    for (const char *n : {"m2ChooseDB", "m2Config", "m2Language", "m2InvoiceFolder", "m2vmfolder", "m2Exit"})
        addAction(file, n);
    QMenu *templates = addMenu("m1Templates");
    for (const char *n : {"m2Invoice", "m2Proforma", "m2CreditNote", "m2Registration", "m2Confirmation"})
        addAction(templates, n);
    QMenu *synch = addMenu("m1Synch");
    addAction(synch, "m2SynchLD");
    addAction(synch, "m2SynchFull");
    QMenu *reports = addMenu("m1Reports");
    for (int i = 1; i <= 12; ++i)
        addAction(reports, qPrintable(QStringLiteral("m2xl%1").arg(i)));
    QMenu *tools = addMenu("m1Tools");
    for (const char *n : {"m2Occupancy", "m2Cancellations", "m2DoubleBooking", "m2Source", "m2Options"})
        addAction(tools, n);
    QMenu *clients = addMenu("m1Client");
    for (const char *n : {"m2Client", "m2ClientReport", "m2ClientHistory", "m2ClientRetire"})
        addAction(clients, n);
    QMenu *accounts = addMenu("m1Accounts");
    addAction(accounts, "m2AccountsSearch");
    addAction(accounts, "m2AccountsCloseEmpty");
    QMenu *transactions = addMenu("m1Transactions");
    addAction(transactions, "m2Transactions");
    QMenu *help = addMenu("m1Help");
    addAction(help, "m2Upgrade");
    addAction(help, "m2About");

    menuAction(QStringLiteral("m2ChooseDB"))->setVisible(m_session->multipleDatabases());
    connect(menuAction(QStringLiteral("m2Config")), &QAction::triggered, this, guarded(this, &MainWindow::viewConfig));
    connect(menuAction(QStringLiteral("m2Language")), &QAction::triggered, this, guarded(this, &MainWindow::chooseLanguage));
    connect(menuAction(QStringLiteral("m2InvoiceFolder")), &QAction::triggered, this,
            guarded([this] { openFolder(config::invoiceDir(m_session->dbNumber())); }));
    connect(menuAction(QStringLiteral("m2vmfolder")), &QAction::triggered, this, guarded([this] { openFolder(Home::path()); }));
    connect(menuAction(QStringLiteral("m2AccountsCloseEmpty")), &QAction::triggered, this, guarded(this, &MainWindow::closeEmptyAccounts));
    connect(menuAction(QStringLiteral("m2AccountsSearch")), &QAction::triggered, this,
            guarded([this] { AccountsList::initialise(*m_session, this); }));
    connect(menuAction(QStringLiteral("m2Transactions")), &QAction::triggered, this,
            guarded([this] { ClientTranSearch::initialise(*m_session, this); }));
    connect(menuAction(QStringLiteral("m2Exit")), &QAction::triggered, this, guarded(this, &QWidget::close));
    connect(menuAction(QStringLiteral("m2SynchLD")), &QAction::triggered, this, guarded(this, &MainWindow::manualSynch));
    connect(menuAction(QStringLiteral("m2SynchFull")), &QAction::triggered, this, guarded([this] {
        if (m_seams.emergencySynch && m_seams.emergencySynch(*this))
            afterSynchronisation();
    }));
    connect(menuAction(QStringLiteral("m2DoubleBooking")), &QAction::triggered, this, guarded([this] {
        const QString ask = getString(2299, QStringLiteral("Check for double bookings?"));
        if (m_seams.doubleBookings && messages::ask(2299, ask, 2299, ask) && !checkDoubleBookings(false))
            endNicely();
    }));
    const std::pair<const char *, std::function<void(MainWindow &)> DeskSeams::*> clientScreens[] = {
        {"m2Client", &DeskSeams::clientMaintenance},
        {"m2ClientHistory", &DeskSeams::clientHistory},
        {"m2ClientRetire", &DeskSeams::clientRetire},
        {"m2Source", &DeskSeams::replaceSource},
    };
    for (const auto &[name, seam] : clientScreens) {
        connect(menuAction(QString::fromLatin1(name)), &QAction::triggered, this, guarded([this, seam = seam] {
            if (m_seams.*seam)
                (m_seams.*seam)(*this);
        }));
    }
    for (int number = 1; number <= 12; ++number) {
        connect(menuAction(QStringLiteral("m2xl%1").arg(number)), &QAction::triggered, this, guarded([this, number] {
            if (m_seams.runReport)
                m_seams.runReport(*this, number);
        }));
    }
    // The Clients menu's own entry for the Client Report.
    connect(menuAction(QStringLiteral("m2ClientReport")), &QAction::triggered, this, guarded([this] {
        if (m_seams.runReport)
            m_seams.runReport(*this, 4);
    }));
    connect(menuAction(QStringLiteral("m2Occupancy")), &QAction::triggered, this, guarded([this] {
        if (m_seams.occupancy)
            m_seams.occupancy(*this);
    }));
    connect(menuAction(QStringLiteral("m2Cancellations")), &QAction::triggered, this, guarded([this] {
        if (m_seams.cancellations && !m_seams.cancellations(*this))
            endNicely();
    }));
    connect(menuAction(QStringLiteral("m2ChooseDB")), &QAction::triggered, this, guarded(this, &MainWindow::chooseDatabase));
    connect(menuAction(QStringLiteral("m2Options")), &QAction::triggered, this, guarded(this, &MainWindow::openOptions));
    connect(menuAction(QStringLiteral("m2About")), &QAction::triggered, this, guarded(this, &MainWindow::showAbout));
    connect(menuAction(QStringLiteral("m2Upgrade")), &QAction::triggered, this, guarded([this] {
        if (m_seams.upgrade)
            m_seams.upgrade(*this);
    }));
}

void MainWindow::retranslate()
{
    QString caption = text(1307, "veldmoor");
    if (m_session->dbNumber() > 0)
        caption += QStringLiteral(" - ") + getDBName(m_session->dbNumber());
    setWindowTitle(caption);
    for (const Text &t : ButtonTexts) {
        QPushButton *b = button(QString::fromLatin1(t.name));
        b->setText(text(t.id, t.caption));
        if (t.tipId)
            b->setToolTip(text(t.tipId, t.tip));
    }
    for (QMenu *menu : m_menus)
        for (const Text &t : MenuTexts)
            if (menu->objectName() == QLatin1String(t.name))
                menu->setTitle(text(t.id, t.caption));
    for (QAction *action : m_actions)
        for (const Text &t : ActionTexts)
            if (action->objectName() == QLatin1String(t.name))
                action->setText(text(t.id, t.caption));
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
    if (event->type() == QEvent::LanguageChange) {
        retranslate();
        m_session->loadStatusColours();
        drawCalendar();
    }
    QMainWindow::changeEvent(event);
}

void MainWindow::setSeams(DeskSeams seams)
{
    m_seams = std::move(seams);
    updateCommandStates();
}

void MainWindow::updateCommandStates()
{
    // A command whose screen is not connected stays visible but disabled.
    button(QStringLiteral("cmdView"))->setEnabled(bool(m_seams.viewBooking));
    button(QStringLiteral("cmdBook"))->setEnabled(bool(m_seams.confirmBooking) && m_rooms->count() > 0);
    button(QStringLiteral("cmdQuote"))->setEnabled(bool(m_seams.quickQuote) && m_rooms->count() > 0);
    button(QStringLiteral("cmdSearch"))->setEnabled(bool(m_seams.search));
    button(QStringLiteral("cmdSwapRoom"))->setEnabled(bool(m_seams.swapRoom));
    button(QStringLiteral("cmdSynch"))->setEnabled(bool(m_seams.synchronise));
    button(QStringLiteral("cmdCheckIn"))->setEnabled(bool(m_seams.checkInOut));
    button(QStringLiteral("cmdCheckOut"))->setEnabled(bool(m_seams.checkInOut));

    static const char *activeActions[] = {"m2ChooseDB", "m2Config", "m2Language", "m2InvoiceFolder", "m2vmfolder",
                                          "m2Exit", "m2Options", "m2About", "m2AccountsCloseEmpty", "m2AccountsSearch",
                                          "m2Transactions"};
    for (QAction *action : m_actions) {
        bool on = false;
        for (const char *name : activeActions)
            on = on || action->objectName() == QLatin1String(name);
        action->setEnabled(on);
    }
    menuAction(QStringLiteral("m2SynchLD"))->setEnabled(bool(m_seams.synchronise));
    menuAction(QStringLiteral("m2SynchFull"))->setEnabled(bool(m_seams.emergencySynch));
    menuAction(QStringLiteral("m2DoubleBooking"))->setEnabled(bool(m_seams.doubleBookings));
    menuAction(QStringLiteral("m2Client"))->setEnabled(bool(m_seams.clientMaintenance));
    menuAction(QStringLiteral("m2ClientHistory"))->setEnabled(bool(m_seams.clientHistory));
    menuAction(QStringLiteral("m2ClientRetire"))->setEnabled(bool(m_seams.clientRetire));
    menuAction(QStringLiteral("m2Source"))->setEnabled(bool(m_seams.replaceSource));
    for (int number = 1; number <= 12; ++number)
        menuAction(QStringLiteral("m2xl%1").arg(number))->setEnabled(bool(m_seams.runReport));
    menuAction(QStringLiteral("m2ClientReport"))->setEnabled(bool(m_seams.runReport));
    menuAction(QStringLiteral("m2Occupancy"))->setEnabled(bool(m_seams.occupancy));
    menuAction(QStringLiteral("m2Cancellations"))->setEnabled(bool(m_seams.cancellations));
    menuAction(QStringLiteral("m2Upgrade"))->setEnabled(bool(m_seams.upgrade));
    button(QStringLiteral("cmdChangeUser"))->setVisible(!UserLogin::userList(m_session->db()).empty());
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
        refresh();
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
    button(QStringLiteral("cmdBook"))->setEnabled(bool(m_seams.confirmBooking) && m_rooms->count() > 0);
    button(QStringLiteral("cmdQuote"))->setEnabled(bool(m_seams.quickQuote) && m_rooms->count() > 0);
}

void MainWindow::book()
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
    if (!m_seams.confirmBooking || m_seams.confirmBooking(*this, rooms, m_inDate->date(), m_nights->text().toInt()) == 0)
        return;
    // A booking was made: the room list has served and closes.
    button(QStringLiteral("cmdCloseBox"))->setVisible(false);
    m_roomsBox->setVisible(false);
    clearRoomList();
}

bool MainWindow::checkDoubleBookings(bool onStart)
{
    return !m_seams.doubleBookings || m_seams.doubleBookings(*this, onStart);
}

std::function<void(qint32, qint32)> MainWindow::bookingOpener()
{
    return [this](qint32 booking, qint32 room) { openBooking(booking, room); };
}

void MainWindow::cellDoubleClicked()
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
    if (!m_seams.viewBooking)
        return;
    m_seams.viewBooking(*this, cell.data(CalendarModel::BookingIdRole).toInt(), cell.data(CalendarModel::RoomIdRole).toInt());
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

void MainWindow::refresh()
{
    initCalendar();
    drawCalendar();
    m_view->setFocus();
}

void MainWindow::manualSynch()
{
    if (!m_seams.synchronise)
        return;
    if (m_seams.synchronise(*this, true))
        afterSynchronisation();
    else
        refresh();
}

void MainWindow::afterSynchronisation()
{
    // A run starts with the setup download, so the rate data may have changed too.
    applyChanges(Changes().setup());
    m_view->setFocus();
    // What the server delivered may have sold a room twice.
    if (!checkDoubleBookings(true))
        endNicely();
}

void MainWindow::chooseDatabase()
{
    const int chosen = ChooseDatabaseDialog::choose(m_session->dbNumber(), this);
    DeskStartupHost host;
    if (DatabaseChoice::change(*m_session, chosen, host) == DatabaseChoice::Changed) {
        setWindowTitle(QStringLiteral("veldmoor - ") + getDBName(m_session->dbNumber()));
        initialise();
    }
}

void MainWindow::chooseLanguage()
{
    LanguageDialog::showDialog(this);
}

void MainWindow::viewConfig()
{
    if (openUrl(QUrl::fromLocalFile(configPath())))
        return;
    // Without a text editor the file is shown in a message of its own.
    QFile file(configPath());
    const QString text = file.open(QIODevice::ReadOnly | QIODevice::Text) ? QString::fromUtf8(file.readAll()) : QString();
    messages::inform(0, text, 0, QStringLiteral("vmConfig.ini"));
}

void MainWindow::openFolder(const QString &path)
{
    if (path.isEmpty() || openUrl(QUrl::fromLocalFile(path)))
        return;
    messages::show(Refusal(1263, QStringLiteral("Could not open the file manager."), 1264,
                           QStringLiteral("Could not open the file manager")));
}

void MainWindow::closeEmptyAccounts()
{
    if (!messages::ask(5186, QStringLiteral("Close off all empty accounts?"), 5187, QStringLiteral("Close empty accounts")))
        return;
    WaitCursor wait;
    AccountValidator().closeAllEmptyAccounts(m_session->db());
}

void MainWindow::openColourPicker()
{
    ColourPickerDialog dialog(*m_session, this);
    connect(&dialog, &ColourPickerDialog::coloursChanged, this, guarded(this, &MainWindow::drawCalendar));
    dialog.exec();
}

void MainWindow::openOptions()
{
    if (checkPermission(m_session->getUser(), SecurityAction::AdminOnly))
        return;
    PreferencesDialog dialog(*m_session, this);
    dialog.exec();
}

void MainWindow::showAbout()
{
    AboutDialog dialog(true, this);
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
    if (!m_seams.synchronise)
        return;
    bool changed = false;
    QPushButton *synch = button(QStringLiteral("cmdSynch"));
    synch->setEnabled(false);
    {
        WaitCursor wait;
        runGuarded([&] { changed = m_seams.synchronise(*this, false); });
    }
    synch->setEnabled(true);
    if (changed)
        afterSynchronisation();
}

void MainWindow::restoreWindow()
{
    if (isMinimized())
        showMaximized();
}

void MainWindow::openBooking(qint32 bbBookingId, qint32 bbRoomId)
{
    if (m_seams.viewBooking)
        m_seams.viewBooking(*this, bbBookingId, bbRoomId);
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
