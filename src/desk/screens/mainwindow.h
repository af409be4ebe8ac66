#pragma once

#include "rates/ratedata.h"
#include "shell/changes.h"
#include "shell/session.h"
#include "shell/ticker.h"

#include <QDate>
#include <QMainWindow>

#include <functional>
#include <memory>
#include <vector>

class QAction;
class QDateEdit;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QMenu;
class QPlainTextEdit;
class QPushButton;
class QTimer;
class QUrl;

namespace fenlark {

class CalendarLegend;
class CalendarModel;
class CalendarView;
class MainWindow;
class ReminderBar;

// The screens of the subsystems that the desk opens, each replaceable by tests.
// Until one is connected its buttons and menu entries stay disabled.
struct DeskSeams {
    // The booking editor on one room of a booking.
    std::function<void(MainWindow &, qint32 bbBookingId, qint32 bbRoomId)> viewBooking;
    // The new-booking screen for the chosen rooms and dates; the booking made, 0 for none.
    std::function<qint32(MainWindow &, const std::vector<qint32> &roomIds, QDate inDate, int nights)> confirmBooking;
    // A synchronisation (manual: with its dialog); true when data changed.
    std::function<bool(MainWindow &, bool manual)> synchronise;
    // Everything logged again and sent (the emergency synchronisation); true when data changed.
    std::function<bool(MainWindow &)> emergencySynch;
    // The check for rooms sold twice (onStart: silent when all is clear); false
    // when the user chose to leave the program instead of repairing them.
    std::function<bool(MainWindow &, bool onStart)> doubleBookings;
    // Today's arrivals (mode 1) or departures.
    std::function<void(MainWindow &, int mode)> checkInOut;
    // Clients > Client Search: the client browser, from which the client editor opens.
    std::function<void(MainWindow &)> clientMaintenance;
    // Clients > Client History: every booking a chosen client had a part in.
    std::function<void(MainWindow &)> clientHistory;
    // Clients > Client Retire: one client retired into another.
    std::function<void(MainWindow &)> clientRetire;
    // Tools > Replace Marketing Source: a source renamed on the desk's bookings.
    std::function<void(MainWindow &)> replaceSource;
    // Report number 1 to 12: its permission, its criteria and the report.
    std::function<void(MainWindow &, int number)> runReport;
    // Two rooms staying on a date exchange their guests.
    std::function<void(MainWindow &)> swapRoom;
    // The booking search; it may open bookings and move the calendar.
    std::function<void(MainWindow &)> search;
    // The free room types and their prices for a stay, preset from the new-booking panel.
    std::function<void(MainWindow &, QDate arrival, int nights)> quickQuote;
    // How full chosen rooms were between two dates.
    std::function<void(MainWindow &)> occupancy;
    // The cancelled rooms, to restore; false when the check for rooms sold
    // twice that follows it ended with the user leaving the program.
    std::function<bool(MainWindow &)> cancellations;
    // The software upgrade dialog.
    std::function<void(MainWindow &)> upgrade;
};

// frmMain: the desk's main window. It owns the session and the rate data and is
// where every screen gets the shared data from: the database, the user, rooms,
// the calendar. It is the one listener to what the core's writes changed, and
// brings the calendar up to date from that.
class MainWindow : public QMainWindow, public ChangeListener, private TickHooks {
    Q_OBJECT

public:
    explicit MainWindow(std::unique_ptr<Session> session, QWidget *parent = nullptr);
    ~MainWindow() override;

    Session &session() { return *m_session; }
    // The property's rate data, loaded once and again only when the setup changes.
    const RateData &rates() const { return m_rates; }
    const UserStruct &getUser() const { return m_session->getUser(); }
    void setSeams(DeskSeams seams);

    // Patches the calendar cache from what a write changed, then redraws.
    void applyChanges(const Changes &changes) override;

    // Opens a file or folder with the desktop's default application; false when
    // none could. Tests put their own in.
    std::function<bool(const QUrl &)> openUrl;

    // The calendar: loads the setup, empties the cache, draws from dpFrom.
    void initialise();
    void initCalendar() { m_session->calendar().initCalendar(); }
    void drawCalendar();
    void setFromDate(QDate date);
    QDate fromDate() const;
    // The check for rooms sold twice; false when the user chose to leave the program.
    bool checkDoubleBookings(bool onStart);
    // Opens the booking editor on one room of a booking (for the lists that do).
    std::function<void(qint32, qint32)> bookingOpener();
    // The user's log-on (start-up and Change User); false when cancelled.
    bool enterPassword();
    // Closes without the unsent-changes question.
    void endNicely();

    // One tick of the ten-second timer.
    Ticker::Result tick();

    // Controls reached by tests.
    CalendarView *calendarView() const { return m_view; }
    CalendarModel *calendarModel() const { return m_model; }
    CalendarLegend *calendarLegend() const { return m_legend; }
    ReminderBar *reminderBar() const { return m_reminderBar; }
    QListWidget *roomList() const { return m_rooms; }
    QLineEdit *nightsEdit() const { return m_nights; }
    QDateEdit *inDateEdit() const { return m_inDate; }
    QPlainTextEdit *detailsBox() const { return m_details; }
    QPushButton *button(const QString &objectName) const;
    QAction *menuAction(const QString &objectName) const;
    bool roomListActive() const { return m_roomListActive; }

public Q_SLOTS:
    // cmdCheck: the free rooms for dpInDate and txtNights.
    void checkRooms();
    void refresh();

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // TickHooks
    bool deskIdle() override;
    void checkExpired() override;
    void synchronise() override;

    // Brings a minimised window back when a reminder comes up.
    void restoreWindow();
    void openBooking(qint32 bbBookingId, qint32 bbRoomId);

    void buildControls();
    void buildMenus();
    void retranslate();
    void updateCommandStates();

    void fromDateChanged();
    void inDateChanged();
    void leavingChanged();
    void nightsEdited();
    void selectionChanged();
    void cellDoubleClicked();
    void headerDoubleClicked(int column, int band);
    void fillDetails(int row, int column);
    void clearRoomList();
    void book();
    // Redraws, then checks for rooms the delivered changes sold twice.
    void afterSynchronisation();
    void manualSynch();
    void chooseLanguage();
    void viewConfig();
    void openFolder(const QString &path);
    void closeEmptyAccounts();
    void chooseDatabase();
    void openColourPicker();
    void openOptions();
    void showAbout();
    void changeUser();

    std::unique_ptr<Session> m_session;
    RateData m_rates;
    DeskSeams m_seams;
    bool m_exitFlag = false;
    bool m_roomListActive = false;
    bool m_updating = false;
    int m_selTop = -1, m_selBottom = -1;
    std::vector<qint32> m_lastMissing;

    CalendarModel *m_model = nullptr;
    CalendarView *m_view = nullptr;
    CalendarLegend *m_legend = nullptr;
    ReminderBar *m_reminderBar = nullptr;
    QTimer *m_timer = nullptr;
    QLabel *m_viewFromLabel = nullptr;
    QDateEdit *m_from = nullptr;
    QLabel *m_userName = nullptr;
    QGroupBox *m_bookBox = nullptr;
    QLabel *m_inDateLabel = nullptr;
    QLabel *m_leavingLabel = nullptr;
    QLabel *m_nightsLabel = nullptr;
    QDateEdit *m_inDate = nullptr;
    QDateEdit *m_leaving = nullptr;
    QLineEdit *m_nights = nullptr;
    QWidget *m_roomsBox = nullptr;
    QListWidget *m_rooms = nullptr;
    QLabel *m_out = nullptr;
    QPlainTextEdit *m_details = nullptr;
    std::vector<QPushButton *> m_buttons;
    std::vector<QMenu *> m_menus;
    std::vector<QAction *> m_actions;
};

} // namespace fenlark
