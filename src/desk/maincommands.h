#pragma once

#include <QDate>
#include <QString>

#include <vector>

namespace fenlark {

class Session;

// What the desk's commands need from the window they sit in: its calendar, its
// booking panel and the screens it opens. The main window answers with its
// dialogs; tests answer without any widget.
class DeskUi {
public:
    virtual ~DeskUi() = default;

    // The calendar.
    virtual QDate fromDate() const = 0;
    virtual void setFromDate(QDate date) = 0;
    virtual void drawCalendar() = 0;
    // The cache emptied and read again, the calendar drawn and given the focus.
    virtual void refreshCalendar() = 0;

    // The booking panel beside the calendar.
    virtual void checkRooms() = 0;
    virtual void bookSelectedRooms() = 0;
    virtual void closeRoomList() = 0;
    virtual void viewSelectedBooking() = 0;
    // The quick quote, preset from the panel's stay.
    virtual void quickQuote() = 0;

    // Opens a file or folder with the desktop's default application; false when
    // nothing could.
    virtual bool openPath(const QString &path) = 0;
    // The wait cursor over the desk.
    virtual void setHourglass(bool on) = 0;
    // Leaves the program: with the unsent-changes question, or without it once
    // the user has chosen to leave.
    virtual void exitDesk() = 0;
    virtual void endDesk() = 0;

    // The screens, each modal: they return when closed.
    virtual void searchBookings() = 0;
    // Today's arrivals (mode 1) or departures (mode 2).
    virtual void checkInOut(int mode) = 0;
    virtual void swapRooms() = 0;
    virtual void changeUser() = 0;
    // A synchronisation (manual: with its dialog); true when data changed.
    virtual bool synchronise(bool manual) = 0;
    // The emergency synchronisation's access code; true when it was right.
    virtual bool emergencyAccessGranted() = 0;
    // The check for rooms sold twice (onStart: silent when all is clear); false
    // when the user chose to leave the program instead of repairing them.
    virtual bool doubleBookings(bool onStart) = 0;
    // Another database chosen and opened under the desk.
    virtual void chooseDatabase() = 0;
    virtual void chooseLanguage() = 0;
    // Report 1 to 12: its criteria, then the workbook.
    virtual void runReport(int number) = 0;
    virtual void occupancy() = 0;
    virtual void cancellations() = 0;
    virtual void replaceSource() = 0;
    virtual void options() = 0;
    virtual void clientSearch() = 0;
    virtual void clientHistory() = 0;
    virtual void clientRetire() = 0;
    virtual void accountSearch() = 0;
    virtual void transactions() = 0;
    // The check for a newer Fenlark, its backups and download.
    virtual void upgrade() = 0;
    virtual void about() = 0;
};

// A button or menu entry of the main window, its texts in the current language.
struct DeskCommand {
    enum Place { Button, MenuBar, InMenu };
    QString name;      // the control's object name, also what run() takes
    Place place = Button;
    QString menu;      // the menu it sits in, for InMenu
    QString caption;   // with its mnemonic
    QString toolTip;
};

// A menu of the main window's menu bar, in order.
struct DeskMenu {
    QString name;
    QString title;
};

// The main window's commands: what each button and menu entry does, and who may.
// Each command checks the user's rights before any screen is built, asks what
// must be asked, opens its screen through the DeskUi, and brings the desk up to
// date after it.
class MainCommands {
public:
    MainCommands(Session &session, DeskUi &ui);

    // Every command, buttons first, then the menu entries in menu order.
    static std::vector<DeskCommand> commands();
    static std::vector<DeskMenu> menus();

    // Whether the command is offered now: Choose Database only with more than one
    // database listed, Change User only when the property has users.
    bool isShown(const QString &name) const;
    // Runs the command of that name; false when there is none.
    bool run(const QString &name);

    // "veldmoor", followed by the database's name when databases are listed.
    QString windowCaption() const;

    // What follows a synchronisation that changed data: the desk reads its setup
    // and calendar again, then the check for rooms the server's changes sold twice.
    void afterSynchronisation();

private:
    struct Entry;
    static const std::vector<Entry> &entries();

    void manualSynch();
    void emergencySynch();
    void checkDoubleBookings();
    void cancellations();
    void runReport(int number);
    void options();
    void viewConfig();
    void openFolder(const QString &path);
    void openTemplate(const QString &stem);
    void chooseLanguage();
    void closeEmptyAccounts();

    Session &m_session;
    DeskUi &m_ui;
};

} // namespace fenlark
