#pragma once

#include "desk/maincommands.h"
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
class ReminderBar;


// frmMain: the desk's main window. It owns the session and the rate data and is
// where every screen gets the shared data from: the database, the user, rooms,
// the calendar. It is the one listener to what the core's writes changed, and
// brings the calendar up to date from that. Its buttons and menu entries run
// through MainCommands, which the window serves as its DeskUi.
class MainWindow : public QMainWindow, public ChangeListener, private TickHooks, private DeskUi {
    Q_OBJECT

public:
    explicit MainWindow(std::unique_ptr<Session> session, QWidget *parent = nullptr);
    ~MainWindow() override;

    Session &session() { return *m_session; }
    // The property's rate data, loaded once and again only when the setup changes.
    const RateData &rates() const { return m_rates; }
    const UserStruct &getUser() const { return m_session->getUser(); }

    // Patches the calendar cache from what a write changed, then redraws.
    void applyChanges(const Changes &changes) override;

    // Opens a file or folder with the desktop's default application; false when
    // none could. Tests put their own in.
    std::function<bool(const QUrl &)> openUrl;

    // The calendar: loads the setup, empties the cache, draws from dpFrom.
    void initialise();
    void initCalendar() { m_session->calendar().initCalendar(); }
    void drawCalendar() override;
    void setFromDate(QDate date) override;
    QDate fromDate() const override;
    // The check for rooms sold twice; false when the user chose to leave the program.
    bool checkDoubleBookings(bool onStart);
    // Opens the booking editor on one room of a booking (for the lists that do).
    std::function<void(qint32, qint32)> bookingOpener();
    // The screen a booking opens in: the booking editor unless a test puts its own here.
    void setBookingScreen(std::function<void(qint32 bbBookingId, qint32 bbRoomId)> open) { m_bookingScreen = std::move(open); }
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

    // cmdCheck: the free rooms for dpInDate and txtNights.
    void checkRooms() override;

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
    // DeskUi
    void refreshCalendar() override;
    void bookSelectedRooms() override;
    void closeRoomList() override;
    void viewSelectedBooking() override;
    void quickQuote() override;
    bool openPath(const QString &path) override;
    void setHourglass(bool on) override;
    void exitDesk() override;
    void endDesk() override { endNicely(); }
    void searchBookings() override;
    void checkInOut(int mode) override;
    void swapRooms() override;
    void changeUser() override;
    bool synchronise(bool manual) override;
    bool emergencyAccessGranted() override;
    bool doubleBookings(bool onStart) override;
    void chooseDatabase() override;
    void chooseLanguage() override;
    void runReport(int number) override;
    void occupancy() override;
    void cancellations() override;
    void replaceSource() override;
    void options() override;
    void clientSearch() override;
    void clientHistory() override;
    void clientRetire() override;
    void accountSearch() override;
    void transactions() override;
    void upgrade() override;
    void about() override;

    void buildControls();
    void buildMenus();
    void retranslate();
    void updateCommandStates();

    void fromDateChanged();
    void inDateChanged();
    void leavingChanged();
    void nightsEdited();
    void selectionChanged();
    void headerDoubleClicked(int column, int band);
    void fillDetails(int row, int column);
    void clearRoomList();
    void openColourPicker();

    std::unique_ptr<Session> m_session;
    RateData m_rates;
    std::unique_ptr<MainCommands> m_commands;
    bool m_exitFlag = false;
    bool m_roomListActive = false;
    bool m_updating = false;
    int m_selTop = -1, m_selBottom = -1;
    std::vector<qint32> m_lastMissing;

    CalendarModel *m_model = nullptr;
    CalendarView *m_view = nullptr;
    CalendarLegend *m_legend = nullptr;
    ReminderBar *m_reminderBar = nullptr;
    std::function<void(qint32, qint32)> m_bookingScreen;
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
