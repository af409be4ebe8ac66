#include "bookings/bookingsave.h"
#include "bookings/cancellation.h"
#include "bookings/newbooking.h"
#include "bookings/roommoves.h"
#include "clients/clientretirement.h"
#include "rates/ratedata.h"
#include "shell/security.h"
#include "support/moneyfixture.h"
#include "support/recordingsink.h"
#include "support/writefaults.h"

#include <QtTest>

using namespace fenlark;
using namespace moneyfixture;

namespace {

const QDate Arrival(2031, 7, 1);

class Agreeable : public SaveQuestions, public CancelQuestions, public RetireQuestions {
public:
    bool acceptOverLimit(const QString &, int, int, int, int) override { return true; }
    bool acceptPastStart(const QDate &) override { return true; }
    bool changeAllLegs() override { return true; }
    bool changeLinkedBookings() override { return true; }
    bool checkRates() override { return false; }
    bool repriceAtNewRoom(const QString &) override { return false; }
    bool cancelBooking(bool) override { return true; }
    bool cancelRoom() override { return true; }
    std::optional<QString> reason() override { return QStringLiteral("guest rang"); }
    bool readyToRetire() override { return true; }
};

class StayYes : public StayQuestions {
public:
    bool acceptOverLimit(const QString &, int, int, int, int) override { return true; }
    bool acceptPastStart(const QDate &) override { return true; }
};

// A second desk on the same file that books a room while this desk's question
// waits for an answer, then says Yes.
class AnotherDeskMeanwhile : public StayQuestions {
public:
    std::function<void()> meanwhile;
    bool acceptOverLimit(const QString &, int, int, int, int) override { return true; }
    bool acceptPastStart(const QDate &) override
    {
        meanwhile();
        return true;
    }
};

} // namespace

// The booking operations that write many rows, each broken at every one of its
// writes in turn: every failure leaves the database exactly as it was, and the
// operation then goes through as if nothing had happened.
class TestBookingWriteFailures : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestDatabase> m_t;
    RecordingSink m_sink;
    UserStruct m_user = UserStruct::autoAdmin();
    Agreeable m_answers;
    RateData m_rates;
    BBSetup m_setup;
    qint32 m_client = 0;
    qint32 m_other = 0;
    BookingMade m_twoRooms;
    BookingMade m_oneRoom;

    Database &db() { return m_t->db(); }

    void expectEveryWriteUndone(const char *what, const std::function<void()> &op, int atLeast)
    {
        const EveryWrite result = failEachWrite(db(), op);
        qInfo("%s: %d writes, each failed once", what, result.writes);
        QVERIFY2(result.failure.isEmpty(), qPrintable(QString::fromLatin1(what) + QStringLiteral(": ") + result.failure));
        QVERIFY2(result.writes >= atLeast, qPrintable(QStringLiteral("%1 wrote only %2 rows").arg(what).arg(result.writes)));
    }

private Q_SLOTS:
    void init()
    {
        m_t = std::make_unique<TestDatabase>();
        setUpProperty(db());
        m_rates = RateData::load(db());
        m_setup.fetch(db());
        m_client = addClient(db(), QStringLiteral("Walker"));
        m_other = addClient(db(), QStringLiteral("Okafor"));
        m_twoRooms = addBooking(db(), m_client, {1, 2}, Arrival, 3, 95);
        m_oneRoom = addBooking(db(), m_other, {3}, Arrival, 2, 70);
    }

    // The check itself: two writes outside one transaction are caught.
    void twoWritesWithoutATransactionAreCaught()
    {
        const EveryWrite result = failEachWrite(db(), [&] {
            db().execute("insert into preference (prefcode, prefvalue) values ('A', '1')");
            db().execute("insert into preference (prefcode, prefvalue) values ('B', '1')");
        });
        QVERIFY(result.failure.contains("preference"));
    }

    void cancellingAndRestoringABooking()
    {
        BookingCancel cancel(db(), m_user);
        expectEveryWriteUndone("cancel a booking of two rooms", [&] { (void)cancel.cancelBooking(m_twoRooms.booking, m_answers); }, 4);
        QCOMPARE(db().scalar("select count(*) from booking where BBBookingID = ?", {m_twoRooms.booking}).toInt(), 0);
        expectEveryWriteUndone("restore a room and its booking",
                               [&] { (void)restoreLeg(db(), m_rates, m_user, m_twoRooms.legs.front()); }, 2);
        expectEveryWriteUndone("cancel one room", [&] { (void)cancel.cancelRoom(m_oneRoom.booking, 3, m_answers); }, 2);
    }

    void editingSplittingAndMovingRooms()
    {
        expectEveryWriteUndone("move a booking's dates", [&] {
            auto edit = loadBookingEdit(db(), m_twoRooms.booking, 1);
            edit->fromDate = Arrival.addDays(10);
            edit->toDate = Arrival.addDays(14);
            (void)BookingSave(db(), m_rates, m_setup, m_user, m_answers).save(*edit);
        }, 6);
        expectEveryWriteUndone("split a room off",
                               [&] { (void)BookingSave(db(), m_rates, m_setup, m_user, m_answers).split(m_twoRooms.booking, 2); }, 3);
        expectEveryWriteUndone("swap two rooms",
                               [&] { (void)RoomSwap(db(), m_user).swap(m_twoRooms.legs.front(), m_oneRoom.legs.front()); }, 2);
        StayYes yes;
        expectEveryWriteUndone("add a room", [&] {
            AddRoomRequest request;
            request.BBBookingID = m_oneRoom.booking;
            request.BBRoomID = 2;
            request.adults = 2;
            (void)RoomAdder(db(), m_rates, m_user).add(request, yes);
        }, 1);
    }

    // A booking's rooms are checked before its questions; while a question
    // waits another desk may book one. The save then refuses and writes nothing.
    void aRoomBookedByAnotherDeskDuringTheQuestionIsRefused()
    {
        const QDate past(2020, 3, 1);
        AnotherDeskMeanwhile questions;
        questions.meanwhile = [&] {
            auto other = Database::open(db().path());
            addBooking(*other, m_other, {2}, past.addDays(1), 1, 50);
        };
        NewBookingRequest request;
        request.FromDate = past;
        request.ToDate = past.addDays(3);
        request.BBClientID = m_client;
        request.rooms.push_back({2, 0, 2, 0, 0});
        const int bookings = db().scalar("select count(*) from booking").toInt();
        const auto saved = BookingWriter(db(), m_rates, m_setup, m_user).save(request, questions);
        QVERIFY(!saved);
        QCOMPARE(saved.refusal().id(), 5836);
        // Only the other desk's booking was added.
        QCOMPARE(db().scalar("select count(*) from booking").toInt(), bookings + 1);
        QCOMPARE(db().scalar("select count(*) from guest where BBRoomID = 2 and BBClientID = ?", {m_client}).toInt(), 1);
    }

    void anEditOverlappingWhatAnotherDeskBookedMeanwhileIsRefused()
    {
        class Meanwhile : public Agreeable {
        public:
            std::function<void()> meanwhile;
            bool changeAllLegs() override
            {
                meanwhile();
                return true;
            }
        } questions;
        questions.meanwhile = [&] {
            auto other = Database::open(db().path());
            addBooking(*other, m_other, {1}, Arrival.addDays(20), 2, 50);
        };
        auto edit = loadBookingEdit(db(), m_twoRooms.booking, 1);
        edit->fromDate = Arrival.addDays(19);
        edit->toDate = Arrival.addDays(22);
        const auto saved = BookingSave(db(), m_rates, m_setup, m_user, questions).save(*edit);
        QVERIFY(!saved);
        QCOMPARE(saved.refusal().id(), 5815);
        QCOMPARE(db().scalar("select min(CalDate) from dailyrate where BBBookingID = ?", {m_twoRooms.booking}).toString(),
                 Arrival.toString(Qt::ISODate));
    }

    void retiringAClient()
    {
        expectEveryWriteUndone("retire a client",
                               [&] { (void)retireClient(db(), m_user, m_client, m_other, m_answers); }, 4);
    }
};

QTEST_GUILESS_MAIN(TestBookingWriteFailures)
#include "test_bookingwritefailures.moc"
