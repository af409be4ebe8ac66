#include "desk/maincommands.h"

#include "accounts/accountvalidator.h"
#include "reports/accountsdocument.h"
#include "reports/templates.h"
#include "shell/changelog.h"
#include "shell/changes.h"
#include "shell/config.h"
#include "shell/databasefiles.h"
#include "shell/home.h"
#include "shell/messages.h"
#include "shell/refusal.h"
#include "shell/security.h"
#include "shell/session.h"
#include "shell/strings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <functional>

namespace fenlark {

namespace {

// An empty translation keeps the English caption.
QString text(int id, const char *english)
{
    const QString fallback = QString::fromUtf8(english);
    const QString value = getString(id, fallback);
    return value.isEmpty() ? fallback : value;
}

// The wait cursor for the length of a scope.
class Hourglass {
public:
    explicit Hourglass(DeskUi &ui) : m_ui(ui) { m_ui.setHourglass(true); }
    ~Hourglass() { m_ui.setHourglass(false); }
    Hourglass(const Hourglass &) = delete;
    Hourglass &operator=(const Hourglass &) = delete;

private:
    DeskUi &m_ui;
};

struct MenuTitle {
    const char *name;
    int id;
    const char *title;
};

const MenuTitle MenuTitles[] = {
    {"m1File", 1335, "&File"},       {"m1Templates", 5160, "Templates"}, {"m1Synch", 1340, "&Synchronisation"},
    {"m1Reports", 1343, "Reports"},  {"m1Tools", 1354, "Tools"},         {"m1Client", 1361, "Clients"},
    {"m1Accounts", 5179, "Accounts"}, {"m1Help", 1365, "&Help"},
};

} // namespace

struct MainCommands::Entry {
    const char *name;
    DeskCommand::Place place;
    const char *menu;
    int id;
    const char *caption;
    int tipId;
    const char *tip;
    std::function<void(MainCommands &)> run;
};

const std::vector<MainCommands::Entry> &MainCommands::entries()
{
    using P = DeskCommand::Place;
    static const std::vector<Entry> all = [] {
        std::vector<Entry> e = {
            {"cmdBook", P::Button, nullptr, 1324, "&Book", 1322, "Make a booking", [](MainCommands &c) { c.m_ui.bookSelectedRooms(); }},
            {"cmdCheck", P::Button, nullptr, 1325, "Select Room(s)", 1326, "See available rooms for these dates",
             [](MainCommands &c) { c.m_ui.checkRooms(); }},
            {"cmdQuote", P::Button, nullptr, 1323, "&Quote", 0, nullptr, [](MainCommands &c) { c.m_ui.quickQuote(); }},
            {"cmdCloseBox", P::Button, nullptr, 5185, "Close", 0, nullptr, [](MainCommands &c) { c.m_ui.closeRoomList(); }},
            {"cmdView", P::Button, nullptr, 1320, "&View/Cancel  Booking", 1321, "View a booking",
             [](MainCommands &c) { c.m_ui.viewSelectedBooking(); }},
            {"cmdSearch", P::Button, nullptr, 1318, "&Search", 1319, "Search for a booking", [](MainCommands &c) { c.m_ui.searchBookings(); }},
            {"cmdCheckIn", P::Button, nullptr, 5155, "Check-In", 0, nullptr, [](MainCommands &c) { c.m_ui.checkInOut(1); }},
            {"cmdCheckOut", P::Button, nullptr, 5156, "Check-Out", 0, nullptr, [](MainCommands &c) { c.m_ui.checkInOut(2); }},
            {"cmdSwapRoom", P::Button, nullptr, 5157, "Swap Room", 0, nullptr, [](MainCommands &c) { c.m_ui.swapRooms(); }},
            {"cmdChangeUser", P::Button, nullptr, 5158, "Change User", 0, nullptr, [](MainCommands &c) { c.m_ui.changeUser(); }},
            {"cmdRefresh", P::Button, nullptr, 1309, "Refresh Calendar", 0, nullptr, [](MainCommands &c) { c.m_ui.refreshCalendar(); }},
            // The calendar opens a week before today, so the days just gone stay in sight.
            {"cmdToday", P::Button, nullptr, 1308, "&Today", 0, nullptr,
             [](MainCommands &c) { c.m_ui.setFromDate(QDate::currentDate().addDays(-7)); }},
            {"cmdPrevWeek", P::Button, nullptr, 1317, "Previous Week", 0, nullptr,
             [](MainCommands &c) { c.m_ui.setFromDate(c.m_ui.fromDate().addDays(-7)); }},
            {"cmdNextWeek", P::Button, nullptr, 1315, "Next Week", 0, nullptr,
             [](MainCommands &c) { c.m_ui.setFromDate(c.m_ui.fromDate().addDays(7)); }},
            {"cmdPrevMonth", P::Button, nullptr, 1313, "Previous Month", 0, nullptr,
             [](MainCommands &c) { c.m_ui.setFromDate(c.m_ui.fromDate().addMonths(-1)); }},
            {"cmdNextMonth", P::Button, nullptr, 1311, "Next Month", 0, nullptr,
             [](MainCommands &c) { c.m_ui.setFromDate(c.m_ui.fromDate().addMonths(1)); }},
            {"cmdSynch", P::Button, nullptr, 1332, "&Synchronise", 1333, "Synchronise with veldmoor server",
             [](MainCommands &c) { c.manualSynch(); }},
            {"cmdExit", P::Button, nullptr, 1330, "&Exit", 1331, "Exit program", [](MainCommands &c) { c.m_ui.exitDesk(); }},

            {"m2ChooseDB", P::InMenu, "m1File", 1336, "&Choose Database", 0, nullptr, [](MainCommands &c) { c.m_ui.chooseDatabase(); }},
            {"m2Config", P::InMenu, "m1File", 1337, "&View Config file", 0, nullptr, [](MainCommands &c) { c.viewConfig(); }},
            {"m2Language", P::InMenu, "m1File", 2254, "Choose &Language", 0, nullptr, [](MainCommands &c) { c.chooseLanguage(); }},
            {"m2InvoiceFolder", P::InMenu, "m1File", 1338, "Open &Invoice Folder", 0, nullptr,
             [](MainCommands &c) { c.openFolder(config::invoiceDir(c.m_session.dbNumber())); }},
            {"m2vmfolder", P::InMenu, "m1File", 1339, "Open &Veldmoor Folder", 0, nullptr,
             [](MainCommands &c) { c.openFolder(Home::path()); }},
            {"m2Exit", P::InMenu, "m1File", 1330, "&Exit", 0, nullptr, [](MainCommands &c) { c.m_ui.exitDesk(); }},

            {"m2Invoice", P::InMenu, "m1Templates", 5161, "Invoice", 0, nullptr,
             [](MainCommands &c) { c.openTemplate(templateStem(DocumentType::Invoice)); }},
            {"m2Proforma", P::InMenu, "m1Templates", 5162, "Proforma", 0, nullptr,
             [](MainCommands &c) { c.openTemplate(templateStem(DocumentType::ProForma)); }},
            {"m2CreditNote", P::InMenu, "m1Templates", 5163, "Credit Note", 0, nullptr,
             [](MainCommands &c) { c.openTemplate(templateStem(DocumentType::CreditNote)); }},
            {"m2Registration", P::InMenu, "m1Templates", 5164, "Registration", 0, nullptr,
             [](MainCommands &c) { c.openTemplate(QStringLiteral("Registration")); }},
            {"m2Confirmation", P::InMenu, "m1Templates", 5165, "Confirmation", 0, nullptr,
             [](MainCommands &c) { c.openTemplate(QStringLiteral("Confirmation")); }},

            {"m2SynchLD", P::InMenu, "m1Synch", 1341, "Latest Data", 0, nullptr, [](MainCommands &c) { c.manualSynch(); }},
            {"m2SynchFull", P::InMenu, "m1Synch", 1342, "Emergency Synch", 0, nullptr, [](MainCommands &c) { c.emergencySynch(); }},
        };

        static const std::pair<int, const char *> reports[] = {
            {5166, "Calendar Printout"},    {5167, "Booking Summary"}, {5168, "Extras Report"},     {1347, "Client Report"},
            {5170, "Arrivals/Departures"},  {5171, "In-House Report"}, {5172, "Outstanding Accounts"}, {5173, "Debtors"},
            {5174, "Transaction Report"},   {5175, "Marketing Report"}, {5176, "Payments Report"},  {5177, "Security Audit"},
        };
        static const char *reportNames[] = {"m2xl1", "m2xl2", "m2xl3",  "m2xl4",  "m2xl5",  "m2xl6",
                                            "m2xl7", "m2xl8", "m2xl9", "m2xl10", "m2xl11", "m2xl12"};
        for (int number = 1; number <= 12; ++number) {
            const auto &[id, caption] = reports[number - 1];
            e.push_back({reportNames[number - 1], P::InMenu, "m1Reports", id, caption, 0, nullptr,
                         [number](MainCommands &c) { c.runReport(number); }});
        }

        const std::vector<Entry> rest = {
            {"m2Occupancy", P::InMenu, "m1Tools", 1355, "Occupancy", 0, nullptr, [](MainCommands &c) { c.m_ui.occupancy(); }},
            {"m2Cancellations", P::InMenu, "m1Tools", 1356, "Cancellations", 0, nullptr, [](MainCommands &c) { c.cancellations(); }},
            {"m2DoubleBooking", P::InMenu, "m1Tools", 1357, "Double Bookings", 0, nullptr,
             [](MainCommands &c) { c.checkDoubleBookings(); }},
            {"m2Source", P::InMenu, "m1Tools", 1359, "Replace Marketing Source", 0, nullptr,
             [](MainCommands &c) { c.m_ui.replaceSource(); }},
            {"m2Options", P::InMenu, "m1Tools", 1360, "Options", 0, nullptr, [](MainCommands &c) { c.options(); }},

            {"m2Client", P::InMenu, "m1Client", 1362, "Client Search", 0, nullptr, [](MainCommands &c) { c.m_ui.clientSearch(); }},
            // The Clients menu's own way to the Client Report, under the same right.
            {"m2ClientReport", P::InMenu, "m1Client", 1347, "Client Report", 0, nullptr, [](MainCommands &c) { c.runReport(4); }},
            {"m2ClientHistory", P::InMenu, "m1Client", 1363, "Client History", 0, nullptr,
             [](MainCommands &c) { c.m_ui.clientHistory(); }},
            {"m2ClientRetire", P::InMenu, "m1Client", 5178, "Client Retire", 0, nullptr, [](MainCommands &c) { c.m_ui.clientRetire(); }},

            {"m2AccountsSearch", P::InMenu, "m1Accounts", 5180, "Search", 0, nullptr, [](MainCommands &c) { c.m_ui.accountSearch(); }},
            {"m2AccountsCloseEmpty", P::InMenu, "m1Accounts", 5181, "Close empty", 0, nullptr,
             [](MainCommands &c) { c.closeEmptyAccounts(); }},

            // A menu-bar entry that is a command itself, not a menu.
            {"m1Transactions", P::MenuBar, nullptr, 5182, "Transactions", 0, nullptr, [](MainCommands &c) { c.m_ui.transactions(); }},

            {"m2Upgrade", P::InMenu, "m1Help", 5183, "&Upgrade", 0, nullptr, [](MainCommands &c) { c.m_ui.upgrade(); }},
            {"m2About", P::InMenu, "m1Help", 1366, "&About", 0, nullptr, [](MainCommands &c) { c.m_ui.about(); }},
        };
        e.insert(e.end(), rest.begin(), rest.end());
        return e;
    }();
    return all;
}

MainCommands::MainCommands(Session &session, DeskUi &ui) : m_session(session), m_ui(ui) {}

std::vector<DeskCommand> MainCommands::commands()
{
    std::vector<DeskCommand> result;
    for (const Entry &e : entries()) {
        DeskCommand command;
        command.name = QString::fromLatin1(e.name);
        command.place = e.place;
        command.menu = e.menu ? QString::fromLatin1(e.menu) : QString();
        command.caption = text(e.id, e.caption);
        if (e.tipId)
            command.toolTip = text(e.tipId, e.tip);
        result.push_back(command);
    }
    return result;
}

std::vector<DeskMenu> MainCommands::menus()
{
    std::vector<DeskMenu> result;
    for (const MenuTitle &m : MenuTitles)
        result.push_back({QString::fromLatin1(m.name), text(m.id, m.title)});
    return result;
}

bool MainCommands::isShown(const QString &name) const
{
    if (name == QLatin1String("m2ChooseDB"))
        return databaseCount() > 1;
    if (name == QLatin1String("cmdChangeUser"))
        return !UserLogin::userList(m_session.db()).empty();
    return true;
}

bool MainCommands::run(const QString &name)
{
    for (const Entry &e : entries()) {
        if (name == QLatin1String(e.name)) {
            if (isShown(name))
                e.run(*this);
            return true;
        }
    }
    return false;
}

QString MainCommands::windowCaption() const
{
    QString caption = text(1307, "veldmoor");
    if (m_session.dbNumber() > 0)
        caption += QStringLiteral(" - ") + getDBName(m_session.dbNumber());
    return caption;
}

void MainCommands::manualSynch()
{
    if (m_ui.synchronise(true))
        afterSynchronisation();
    else
        m_ui.refreshCalendar();
}

void MainCommands::afterSynchronisation()
{
    // A run starts with the setup download, so the rates and rooms may have changed
    // too: the desk reads everything again.
    m_session.publish(Changes().setup());
    if (!m_ui.doubleBookings(true))
        m_ui.endDesk();
}

void MainCommands::emergencySynch()
{
    if (!m_ui.emergencyAccessGranted())
        return;
    // Sending everything again is heavy on the server; a careless Enter must not start it.
    if (!messages::ask(6027, QStringLiteral("Are you sure you want to synchronise your entire database?"), 6028,
                       QStringLiteral("Synchronise entire database?"), true))
        return;
    {
        Hourglass wait(m_ui);
        ChangeLog::markAllChanged(m_session.db());
    }
    manualSynch();
}

void MainCommands::checkDoubleBookings()
{
    const QString question = getString(2299, QStringLiteral("Check for double bookings?"));
    if (!messages::ask(2299, question, 2299, question))
        return;
    if (!m_ui.doubleBookings(false))
        m_ui.endDesk();
}

void MainCommands::cancellations()
{
    m_ui.cancellations();
    // A restore may have put a guest in a room sold meanwhile.
    if (!m_ui.doubleBookings(true))
        m_ui.endDesk();
}

void MainCommands::runReport(int number)
{
    if (checkPermission(m_session.getUser(), SecurityAction::RunReports))
        return;
    m_ui.runReport(number);
}

void MainCommands::options()
{
    if (checkPermission(m_session.getUser(), SecurityAction::AdminOnly))
        return;
    m_ui.options();
}

void MainCommands::viewConfig()
{
    if (m_ui.openPath(configPath()))
        return;
    // Without a text editor the file is shown in a message of its own.
    QFile file(configPath());
    const QString contents = file.open(QIODevice::ReadOnly | QIODevice::Text) ? QString::fromUtf8(file.readAll()) : QString();
    messages::inform(0, contents, 0, QStringLiteral("vmConfig.ini"));
}

void MainCommands::openFolder(const QString &path)
{
    if (path.isEmpty() || m_ui.openPath(path))
        return;
    messages::show(Refusal(1263, QStringLiteral("Could not open the file manager."), 1264,
                           QStringLiteral("Could not open the file manager")));
}

void MainCommands::openTemplate(const QString &stem)
{
    const bool letter = stem == QLatin1String("Registration") || stem == QLatin1String("Confirmation");
    const QStringList extensions = letter ? QStringList{QStringLiteral("docx"), QStringLiteral("dotx")} : QStringList{QStringLiteral("xlsx")};
    const QString path = findTemplate(stem, m_session.dbNumber(), extensions);
    const QString shown = QDir::toNativeSeparators(path);
    if (!QFileInfo::exists(path)) {
        messages::show(Refusal(5300, QStringLiteral("Could not find the template:\n\n%1\n\nContact veldmoor to receive an example."),
                               1931, QStringLiteral("Template not found."))
                           .arg(shown));
        return;
    }
    if (!m_ui.openPath(path)) {
        messages::show(Refusal(5301, QStringLiteral("Could not open %1."), 5302, QStringLiteral("Could not open the template"))
                           .arg(shown));
        return;
    }
    if (letter)
        m_ui.drawCalendar();
}

void MainCommands::chooseLanguage()
{
    m_ui.chooseLanguage();
    // The status names are translated, and the calendar's hints show them.
    m_session.loadStatusColours();
    m_ui.drawCalendar();
}

void MainCommands::closeEmptyAccounts()
{
    if (!messages::ask(5186, QStringLiteral("Close off all empty accounts?"), 5187, QStringLiteral("Close empty accounts")))
        return;
    Hourglass wait(m_ui);
    AccountValidator().closeAllEmptyAccounts(m_session.db());
}

} // namespace fenlark
