#include "support/moneysimulation.h"

#include "accounts/accountmoves.h"
#include "accounts/accountrecords.h"
#include "accounts/accountvalidator.h"
#include "accounts/accountview.h"
#include "accounts/extras.h"
#include "accounts/invoices.h"
#include "accounts/ledger.h"
#include "accounts/payments.h"
#include "accounts/statement.h"
#include "accounts/vat.h"
#include "bookings/bookingrecords.h"
#include "bookings/bookingsave.h"
#include "bookings/newbooking.h"
#include "rates/ratedata.h"
#include "rates/roomrates.h"
#include "shell/database.h"
#include "shell/home.h"
#include "shell/messages.h"
#include "shell/money.h"
#include "desk/propertygenerator.h"
#include "shell/security.h"
#include "shell/setuprecords.h"
#include "synch/json.h"
#include "synch/serverupdates.h"
#include "support/writefaults.h"

#include <QFile>
#include <QMap>
#include <QMultiMap>
#include <QRandomGenerator>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>

#include <cmath>
#include <cstdio>
#include <memory>

using namespace fenlark;

namespace moneysim {

namespace {

enum Kind {
    NewBookingStep,
    MoveDatesStep,
    ChangeRoomStep,
    AddExtraStep,
    EditExtraStep,
    DeleteExtraStep,
    MoveItemStep,
    AddPaymentStep,
    AllocateStep,
    InvoiceStep,
    ProformaStep,
    ReopenStep,
    CloseStep,
    LedgerEntryStep,
    InvoiceToStep,
    ValidateStep,
    ServerExtraStep,
    ServerDeletesClientStep,
    KindCount
};

const char *const KindNames[KindCount] = {"new booking",     "move dates",   "change room",  "add extra",
                                          "edit extra",      "delete extra", "move item",    "add payment",
                                          "allocate payment", "invoice",     "pro forma",    "re-open",
                                          "close by hand",   "ledger entry", "invoice to",   "validate",
                                          "server extra",    "server deletes client"};
const int Weights[KindCount] = {8, 4, 3, 12, 6, 3, 7, 10, 4, 6, 2, 4, 2, 5, 2, 3, 3, 1};

// Operations that move money between accounts but never change what all
// accounts together are owed.
bool conservesAccountTotals(int kind)
{
    switch (kind) {
    case MoveItemStep:
    case AllocateStep:
    case InvoiceStep:
    case ProformaStep:
    case ReopenStep:
    case CloseStep:
    case InvoiceToStep:
    case ValidateStep:
        return true;
    default:
        return false;
    }
}

const QDate Base(2031, 3, 1);

class QuietSink : public MessageSink {
public:
    void show(const UserMessage &) override {}
    bool ask(const UserMessage &) override { return false; }
};

class YesToAll : public SaveQuestions {
public:
    bool acceptOverLimit(const QString &, int, int, int, int) override { return true; }
    bool acceptPastStart(const QDate &) override { return true; }
    bool changeAllLegs() override { return true; }
    bool changeLinkedBookings() override { return true; }
    bool checkRates() override { return false; }
    bool repriceAtNewRoom(const QString &) override { return false; }
};

class FirstNumber : public FirstNumberPrompter {
public:
    std::optional<QString> askFirstNumber(const QString &, const QString &) override { return QStringLiteral("1000"); }
    void refuseFirstNumber(const Refusal &) override {}
};

// The demo property without any booking or money, generated once per process.
QString templateDatabase()
{
    static QTemporaryDir dir;
    static const QString path = [] {
        const QString p = dir.filePath(QStringLiteral("template.db"));
        Home::setPath(dir.path());
        auto db = Database::open(p);
        PropertyGenerator(PropertyGenerator::demo()).generate(*db);
        for (const char *table : {"booking", "guest", "dailyrate", "account", "extra", "payment", "clienttran", "invoice",
                                  "invoiceitem", "creditnote", "trantype", "dblog", "audit", "bookingdel", "guestdel",
                                  "newbooking"})
            db->execute(QStringLiteral("delete from ") + QString::fromLatin1(table));
        db->execute(QStringLiteral("delete from client where bbclientid > 24"));
        return p;
    }();
    return path;
}

void copyProperty(const QString &path)
{
    QFile::copy(templateDatabase(), path);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
}

double cents(QRandomGenerator &rng, int most)
{
    return static_cast<double>(rng.bounded(100 * most)) / 100.0;
}

QString amountText(double amount)
{
    return QString::number(amount, 'f', 2);
}

// What must never change once written: documents and payment amounts.
struct Frozen {
    QMap<QString, QString> rows;

    static Frozen take(Database &db)
    {
        Frozen f;
        for (const char *table : {"invoice", "invoiceitem", "creditnote"}) {
            QSqlQuery q = db.query(QStringLiteral("select * from ") + QString::fromLatin1(table));
            while (q.next()) {
                QStringList values;
                const QSqlRecord record = q.record();
                for (int i = 0; i < record.count(); ++i)
                    values << record.value(i).toString();
                f.rows.insert(QString::fromLatin1(table) + QLatin1Char('#') + values.front(), values.join(QLatin1Char('|')));
            }
        }
        QSqlQuery q = db.query(QStringLiteral("select bbpaymentid, amount from payment"));
        while (q.next())
            f.rows.insert(QStringLiteral("payment#") + q.value(0).toString(), q.value(1).toString());
        return f;
    }
};

class World {
public:
    // A fresh copy of the property, or the database already at path.
    explicit World(QString path = {})
    {
        if (path.isEmpty()) {
            Home::setPath(m_dir.path());
            path = m_dir.filePath(QStringLiteral("sim.db"));
            copyProperty(path);
        }
        m_db = Database::open(path);
        m_rates = RateData::load(*m_db);
        m_setup.fetch(*m_db);
        m_vat = VatRules::load(*m_db);
        messages::setSink(&m_sink);
    }
    ~World() { messages::setSink(nullptr); }

    Database &db() { return *m_db; }

    // Runs one step; false when the core refused it.
    bool run(const Step &step)
    {
        QRandomGenerator rng(step.seed);
        switch (step.kind) {
        case NewBookingStep: return newBooking(rng);
        case MoveDatesStep: return moveDates(rng);
        case ChangeRoomStep: return changeRoom(rng);
        case AddExtraStep: return saveExtraStep(rng, false);
        case EditExtraStep: return saveExtraStep(rng, true);
        case DeleteExtraStep: return deleteExtraStep(rng);
        case MoveItemStep: return moveItemStep(rng);
        case AddPaymentStep: return addPaymentStep(rng);
        case AllocateStep: return allocateStep(rng);
        case InvoiceStep: return invoiceStep(rng);
        case ProformaStep: return proformaStep(rng);
        case ReopenStep: return reopenStep(rng);
        case CloseStep: return closeStep(rng);
        case LedgerEntryStep: return ledgerEntryStep(rng);
        case InvoiceToStep: return invoiceToStep(rng);
        case ValidateStep: return validateStep(rng);
        case ServerExtraStep: return serverExtraStep(rng);
        case ServerDeletesClientStep: return serverDeletesClientStep(rng);
        default: return false;
        }
    }

    double accountTotals()
    {
        // Accommodation and extras on existing accounts, less every payment
        // (those on no account are the unallocated ones).
        const double accommodation =
            m_db->scalar(QStringLiteral("select coalesce(sum(dailyrate.roomrate), 0) from booking, dailyrate "
                                        "where dailyrate.bbbookingid = booking.bbbookingid and dailyrate.bbroomid in "
                                        "(select guest.bbroomid from guest where guest.bbbookingid = booking.bbbookingid) "
                                        "and booking.bbaccountid in (select bbaccountid from account)"))
                .toDouble();
        const double extras = m_db->scalar(QStringLiteral("select coalesce(sum(qty * price), 0) from extra "
                                                          "where bbaccountid in (select bbaccountid from account)"))
                                  .toDouble();
        const double payments = m_db->scalar(QStringLiteral("select coalesce(sum(amount), 0) from payment")).toDouble();
        return accommodation + extras - payments;
    }

    std::optional<QString> check(const Step &step, const Frozen &before, double totalsBefore, QRandomGenerator &rng);

private:
    std::vector<qint32> ids(const QString &sql, const QVariantList &values = {})
    {
        std::vector<qint32> list;
        QSqlQuery q = m_db->query(sql, values);
        while (q.next())
            list.push_back(q.value(0).toInt());
        return list;
    }
    static std::optional<qint32> pick(const std::vector<qint32> &list, QRandomGenerator &rng)
    {
        if (list.empty())
            return std::nullopt;
        return list[rng.bounded(static_cast<quint32>(list.size()))];
    }
    std::optional<qint32> anyOf(const char *sql, QRandomGenerator &rng) { return pick(ids(QString::fromLatin1(sql)), rng); }

    bool newBooking(QRandomGenerator &rng)
    {
        NewBookingRequest request;
        request.FromDate = Base.addDays(static_cast<int>(rng.bounded(120u)));
        request.ToDate = request.FromDate.addDays(1 + static_cast<int>(rng.bounded(5u)));
        const std::vector<qint32> rooms = ids(QStringLiteral("select bbroomid from room order by bbroomid"));
        const int count = 1 + static_cast<int>(rng.bounded(2u));
        for (int i = 0; i < count; ++i) {
            const qint32 room = *pick(rooms, rng);
            const std::vector<qint32> offered = getRoomRates(m_rates, request.FromDate, request.ToDate, room);
            request.rooms.push_back({room, offered.empty() ? 0 : offered.front(), 2, 0, 0});
        }
        if (rng.bounded(10u) < 7)
            request.BBClientID = *anyOf("select bbclientid from client order by bbclientid", rng);
        else
            request.surname = QStringLiteral("Guest%1").arg(rng.bounded(1000u));
        return BookingWriter(*m_db, m_rates, m_setup, m_user).save(request, m_questions).ok();
    }

    bool moveDates(QRandomGenerator &rng)
    {
        const auto booking = anyOf("select bbbookingid from booking order by bbbookingid", rng);
        if (!booking)
            return false;
        auto edit = loadBookingEdit(*m_db, *booking, Guest::legsOf(*m_db, *booking).front().BBRoomID);
        if (!edit)
            return false;
        const int shift = static_cast<int>(rng.bounded(7u)) - 3;
        edit->fromDate = edit->fromDate.addDays(shift);
        edit->toDate = std::max(edit->fromDate.addDays(1), edit->toDate.addDays(shift + static_cast<int>(rng.bounded(4u)) - 1));
        return BookingSave(*m_db, m_rates, m_setup, m_user, m_questions).save(*edit).ok();
    }

    bool changeRoom(QRandomGenerator &rng)
    {
        const auto leg = anyOf("select bbguestid from guest order by bbguestid", rng);
        if (!leg)
            return false;
        Guest guest;
        guest.fetch(*m_db, *leg);
        auto edit = loadBookingEdit(*m_db, guest.BBBookingID, guest.BBRoomID);
        if (!edit)
            return false;
        edit->roomId = *anyOf("select bbroomid from room order by bbroomid", rng);
        return BookingSave(*m_db, m_rates, m_setup, m_user, m_questions).save(*edit).ok();
    }

    bool saveExtraStep(QRandomGenerator &rng, bool existing)
    {
        ExtraInput input;
        if (existing) {
            const auto extra = anyOf("select bbextraid from extra order by bbextraid", rng);
            if (!extra)
                return false;
            input.extraId = *extra;
        } else {
            const auto leg = anyOf("select bbguestid from guest order by bbguestid", rng);
            if (!leg)
                return false;
            input.guestId = *leg;
        }
        input.date = Base.addDays(static_cast<int>(rng.bounded(120u)));
        input.stockId = *anyOf("select bbstockid from stock order by bbstockid", rng);
        static const char *const quantities[] = {"1", "2", "3", "1.5", "0.25"};
        input.qtyText = QString::fromLatin1(quantities[rng.bounded(5u)]);
        const double price = cents(rng, 400);
        input.priceText = amountText(rng.bounded(8u) == 0 ? -price : price);
        input.onRoomAccount = rng.bounded(4u) == 0;
        return saveExtra(*m_db, input, m_user).ok();
    }

    bool deleteExtraStep(QRandomGenerator &rng)
    {
        const auto extra = anyOf("select bbextraid from extra order by bbextraid", rng);
        return extra && deleteExtra(*m_db, *extra, QStringLiteral("simulated"), m_user).ok();
    }

    bool moveItemStep(QRandomGenerator &rng)
    {
        AccountItemRef item;
        const bool booking = rng.bounded(2u) == 0;
        item.kind = booking ? AccountItemRef::Booking : AccountItemRef::Extra;
        const auto id = booking ? anyOf("select bbbookingid from booking order by bbbookingid", rng)
                                : anyOf("select bbextraid from extra order by bbextraid", rng);
        if (!id)
            return false;
        item.id = *id;
        const qint32 from = accountOfItem(*m_db, item);
        const qint32 client = m_db->scalar(QStringLiteral("select invoiceto from account where bbaccountid = ?"), {from}).toInt();
        switch (rng.bounded(3u)) {
        case 0: {
            std::vector<qint32> targets;
            for (const OpenAccountChoice &choice : otherOpenAccounts(*m_db, client, from))
                targets.push_back(choice.accountId);
            const auto target = pick(targets, rng);
            return target && moveItem(*m_db, item, *target).ok();
        }
        case 1:
            return moveItemToNewAccount(*m_db, item).ok();
        default: {
            const qint32 other = *anyOf("select bbclientid from client order by bbclientid", rng);
            auto moved = moveItemToClient(*m_db, item, other);
            if (!moved)
                return false;
            if (moved->choices.empty())
                return true;
            return moveItem(*m_db, item, moved->choices[rng.bounded(static_cast<quint32>(moved->choices.size()))].accountId).ok();
        }
        }
    }

    bool addPaymentStep(QRandomGenerator &rng)
    {
        const auto account = anyOf("select bbaccountid from account order by bbaccountid", rng);
        if (!account)
            return false;
        NewPayment payment;
        payment.accountId = *account;
        payment.paymentDate = Base.addDays(static_cast<int>(rng.bounded(120u)));
        payment.paymentType = QString::number(rng.bounded(5u));
        const double amount = 1 + cents(rng, 900);
        payment.amountText = amountText(rng.bounded(7u) == 0 ? -amount : amount);
        payment.reference = QStringLiteral("P%1").arg(rng.bounded(100u));
        return addPayment(*m_db, payment, m_user).ok();
    }

    bool allocateStep(QRandomGenerator &rng)
    {
        const auto id = anyOf("select bbpaymentid from payment order by bbpaymentid", rng);
        if (!id)
            return false;
        Payment payment;
        payment.fetch(*m_db, *id);
        const auto twin = payment.getClientTran(*m_db);
        if (!twin)
            return false;
        const auto choices = allocationChoices(*m_db, twin->BBClientID, payment);
        const qint32 target = choices[rng.bounded(static_cast<quint32>(choices.size()))].accountId;
        return allocatePayment(*m_db, *id, target, QStringLiteral("A%1").arg(rng.bounded(10u)), m_user).ok();
    }

    bool invoiceStep(QRandomGenerator &rng)
    {
        const auto account = anyOf("select bbaccountid from account where status = 'O' order by bbaccountid", rng);
        FirstNumber prompter;
        return account && makeInvoice(*m_db, *account, m_user, prompter, m_vat).ok();
    }

    bool proformaStep(QRandomGenerator &rng)
    {
        const auto account = anyOf("select bbaccountid from account order by bbaccountid", rng);
        FirstNumber prompter;
        return account && makeProforma(*m_db, *account, prompter, m_vat).ok();
    }

    bool reopenStep(QRandomGenerator &rng)
    {
        const auto account = anyOf("select bbaccountid from account where status = 'C' order by bbaccountid", rng);
        return account && reopenAccount(*m_db, *account, m_user).ok();
    }

    bool closeStep(QRandomGenerator &rng)
    {
        const auto account = anyOf("select bbaccountid from account where status = 'O' order by bbaccountid", rng);
        return account && closeAccount(*m_db, *account).ok();
    }

    bool ledgerEntryStep(QRandomGenerator &rng)
    {
        LedgerEntry entry;
        entry.clientId = *anyOf("select bbclientid from client order by bbclientid", rng);
        static const char *const types[] = {"JNL", "CRN", "PMT"};
        entry.tranType = QString::fromLatin1(types[rng.bounded(3u)]);
        entry.paymentType = QString::number(rng.bounded(5u));
        entry.date = Base.addDays(static_cast<int>(rng.bounded(120u)));
        const double amount = 1 + cents(rng, 300);
        entry.amountText = amountText(rng.bounded(5u) == 0 ? -amount : amount);
        entry.vatText = rng.bounded(2u) == 0 ? QString() : entry.amountText;
        return addLedgerEntry(*m_db, entry, m_user, m_vat).ok();
    }

    bool invoiceToStep(QRandomGenerator &rng)
    {
        const auto account = anyOf("select bbaccountid from account order by bbaccountid", rng);
        const auto client = anyOf("select bbclientid from client order by bbclientid", rng);
        return account && client && changeInvoiceTo(*m_db, *account, *client).ok();
    }

    bool validateStep(QRandomGenerator &rng)
    {
        AccountValidator validator;
        switch (rng.bounded(3u)) {
        case 0:
            validator.closeAllEmptyAccounts(*m_db);
            return true;
        case 1: {
            const auto client = anyOf("select invoiceto from account order by bbaccountid", rng);
            if (client)
                validator.closeEmptyAccountsForClient(*m_db, *client);
            return client.has_value();
        }
        default: {
            const auto leg = anyOf("select bbguestid from guest order by bbguestid", rng);
            if (leg)
                validator.validateGuestAccount(*m_db, *leg);
            return leg.has_value();
        }
        }
    }

    // The server sends an extra for a room with no account, as the web does;
    // the booking editor then opens the booking and gives it one.
    // The server's keys are made up on the spot; with the reply and the account
    // the desk then gives the extra, that is one step, which stands or falls whole.
    bool serverExtraStep(QRandomGenerator &rng)
    {
        Transaction step(*m_db);
        m_db->execute(QStringLiteral("update guest set guestid = bbguestid where guestid = 0"));
        const auto leg = anyOf("select bbguestid from guest order by bbguestid", rng);
        if (!leg)
            return false;
        const qint32 serverId = m_db->scalar(QStringLiteral("select coalesce(max(extraid), 0) + 1000 from extra")).toInt();
        const QString text = QStringLiteral(R"([{"tablename":"extra","logtype":"U","dblogid":1,"tableid":%1,"values":{)"
                                            R"("ExtraID":%1,"BBGuestID":{"table":"guest","tableid":%2},"ExtraDate":"2031-04-01",)"
                                            R"("Qty":%3,"Price":%4,"BBStockID":1,"BBAccountID":{"table":"account","tableid":0}}}])")
                                 .arg(serverId)
                                 .arg(*leg)
                                 .arg(1 + rng.bounded(3u))
                                 .arg(amountText(cents(rng, 200)));
        {
            Transaction transaction(*m_db);
            ServerUpdateApplier(*m_db).applyServerUpdates(*json::parse(text).array());
            transaction.commit();
        }
        Guest guest;
        guest.fetch(*m_db, *leg);
        Booking booking;
        booking.fetch(*m_db, guest.BBBookingID);
        const qint32 roomAccount = guest.BBAccountID >= 1 ? guest.BBAccountID : booking.BBAccountID;
        Extra::updateExtraWithAccount(*m_db, booking.BBBookingID, booking.BBAccountID, guest.BBGuestID, roomAccount);
        step.commit();
        return true;
    }

    bool serverDeletesClientStep(QRandomGenerator &rng)
    {
        Transaction step(*m_db);
        m_db->execute(QStringLiteral("update client set clientid = bbclientid where clientid = 0"));
        const auto client = anyOf("select distinct invoiceto from account where status = 'O' "
                                  "and invoiceto in (select bbclientid from client) order by invoiceto",
                                  rng);
        if (!client)
            return false;
        const QString text =
            QStringLiteral(R"([{"tablename":"client","logtype":"D","dblogid":1,"tableid":%1}])").arg(*client);
        Transaction transaction(*m_db);
        ServerUpdateApplier(*m_db).applyServerUpdates(*json::parse(text).array());
        transaction.commit();
        step.commit();
        return true;
    }

    QTemporaryDir m_dir;
    std::unique_ptr<Database> m_db;
    RateData m_rates;
    BBSetup m_setup;
    VatRules m_vat;
    UserStruct m_user = UserStruct::autoAdmin();
    YesToAll m_questions;
    QuietSink m_sink;
};

bool sameCents(double a, double b)
{
    return roundMoney(a - b) == 0.0;
}

QString money(double amount)
{
    return QString::number(amount, 'f', 4);
}

std::optional<QString> World::check(const Step &step, const Frozen &before, double totalsBefore, QRandomGenerator &rng)
{
    Database &db = *m_db;

    // Payments and their ledger twins, one to one.
    QMap<qint32, double> payments;
    {
        QSqlQuery q = db.query(QStringLiteral("select bbpaymentid, amount from payment"));
        while (q.next())
            payments.insert(q.value(0).toInt(), q.value(1).toDouble());
    }
    QMap<qint32, int> twins;
    {
        QSqlQuery q = db.query(QStringLiteral("select tranno, amount, vat from clienttran where trantype = 'PMT'"));
        while (q.next()) {
            const qint32 payment = q.value(0).toInt();
            if (!payments.contains(payment))
                return QStringLiteral("PMT row %1 has no payment").arg(payment);
            if (!sameCents(q.value(1).toDouble(), -payments.value(payment)) || q.value(2).toDouble() != 0.0)
                return QStringLiteral("PMT row of payment %1 is %2 (VAT %3), the payment %4")
                    .arg(payment)
                    .arg(money(q.value(1).toDouble()), money(q.value(2).toDouble()), money(payments.value(payment)));
            twins[payment] += 1;
        }
    }
    for (auto it = payments.cbegin(); it != payments.cend(); ++it) {
        if (twins.value(it.key()) != 1)
            return QStringLiteral("payment %1 has %2 PMT rows").arg(it.key()).arg(twins.value(it.key()));
    }

    // Invoices: their items, their ledger row, their numbers.
    std::vector<Invoice> invoices;
    {
        QSqlQuery q = db.query(QStringLiteral("select * from invoice order by bbinvoiceid"));
        while (q.next()) {
            Invoice invoice;
            invoice.fillFields(q.record());
            invoices.push_back(invoice);
        }
    }
    QMap<qint32, std::pair<double, double>> itemTotals;   // invoice key: amount, VAT
    {
        QSqlQuery q = db.query(QStringLiteral("select * from invoiceitem"));
        while (q.next()) {
            InvoiceItem item;
            item.fillFields(q.record());
            auto &totals = itemTotals[item.BBInvoiceID];
            totals.first += item.lineTotal();
            totals.second += m_vat.lineVAT(item.VatCode, item.Qty * item.Price);
        }
    }
    QMultiMap<qint32, ClientTran> invoiceRows;
    {
        QSqlQuery q = db.query(QStringLiteral("select * from clienttran where trantype = 'INV'"));
        while (q.next()) {
            ClientTran row;
            row.fillFields(q.record());
            invoiceRows.insert(row.TranNo, row);
        }
    }
    QMap<qint32, Invoice> byNumber;
    qint32 lastInvoiceNo = 0;
    for (const Invoice &invoice : invoices) {
        if (invoice.InvoiceNo <= lastInvoiceNo)
            return QStringLiteral("invoice number %1 follows %2").arg(invoice.InvoiceNo).arg(lastInvoiceNo);
        lastInvoiceNo = invoice.InvoiceNo;
        byNumber.insert(invoice.InvoiceNo, invoice);
        const auto [amount, vat] = itemTotals.value(invoice.BBInvoiceID);
        if (!sameCents(amount, invoice.Amount) || !sameCents(vat, invoice.VAT))
            return QStringLiteral("invoice %1 is %2 (VAT %3), its items %4 (VAT %5)")
                .arg(invoice.InvoiceNo)
                .arg(money(invoice.Amount), money(invoice.VAT), money(amount), money(vat));
        const QList<ClientTran> rows = invoiceRows.values(invoice.InvoiceNo);
        if (rows.size() != 1)
            return QStringLiteral("invoice %1 has %2 INV rows").arg(invoice.InvoiceNo).arg(rows.size());
        const ClientTran &row = rows.front();
        if (!sameCents(row.Amount, invoice.Amount) || !sameCents(row.VAT, invoice.VAT) || row.BBClientID != invoice.BBClientID)
            return QStringLiteral("the INV row of invoice %1 disagrees with it").arg(invoice.InvoiceNo);
    }
    if (invoiceRows.size() != static_cast<qsizetype>(invoices.size()))
        return QStringLiteral("an INV row has no invoice");
    if (lastNumber(db, trantype::Invoice) < lastInvoiceNo)
        return QStringLiteral("the INV series stands at %1 below invoice %2").arg(lastNumber(db, trantype::Invoice)).arg(lastInvoiceNo);

    // Credit notes reverse their invoice exactly.
    {
        QSqlQuery q = db.query(QStringLiteral("select creditnoteno, invoiceno from creditnote order by bbcreditnoteid"));
        while (q.next()) {
            const qint32 number = q.value(0).toInt();
            const Invoice invoice = byNumber.value(q.value(1).toInt());
            ClientTran row;
            if (!row.fetchByTranNo(db, trantype::CreditNote, number))
                return QStringLiteral("credit note %1 has no CRN row").arg(number);
            if (!sameCents(row.Amount, -invoice.Amount) || !sameCents(row.VAT, -invoice.VAT) || row.BBClientID != invoice.BBClientID)
                return QStringLiteral("credit note %1 does not reverse invoice %2").arg(number).arg(invoice.InvoiceNo);
        }
    }
    // Ledger numbers of each series are unique and increasing; the series stands at least at them.
    for (const QString &type : {trantype::CreditNote, trantype::Journal}) {
        QSqlQuery q = db.query(QStringLiteral("select tranno from clienttran where trantype = ? order by bbclienttranid"), {type});
        qint32 last = 0;
        while (q.next()) {
            if (q.value(0).toInt() <= last)
                return QStringLiteral("%1 number %2 follows %3").arg(type).arg(q.value(0).toInt()).arg(last);
            last = q.value(0).toInt();
        }
        if (lastNumber(db, type) < last)
            return QStringLiteral("the %1 series stands below %2").arg(type).arg(last);
    }
    {
        QSqlQuery q = db.query(QStringLiteral("select proformano, count(*) from account where proformano > 0 group by proformano"));
        while (q.next()) {
            if (q.value(1).toInt() != 1)
                return QStringLiteral("pro forma %1 is on %2 accounts").arg(q.value(0).toInt()).arg(q.value(1).toInt());
            if (q.value(0).toInt() > lastNumber(db, trantype::Proforma))
                return QStringLiteral("pro forma %1 is beyond its series").arg(q.value(0).toInt());
        }
    }

    // Account states.
    {
        QSqlQuery q = db.query(QStringLiteral("select bbaccountid, status, invoiceno from account"));
        while (q.next()) {
            const qint32 account = q.value(0).toInt();
            const QString status = q.value(1).toString();
            const qint32 invoiceNo = q.value(2).toInt();
            if (status == QLatin1String("O") && invoiceNo != 0)
                return QStringLiteral("open account %1 has invoice %2").arg(account).arg(invoiceNo);
            if (invoiceNo > 0 && (status != QLatin1String("C") || byNumber.value(invoiceNo).BBAccountID != account))
                return QStringLiteral("account %1 names invoice %2, which is not its own").arg(account).arg(invoiceNo);
        }
    }

    // Matching: the newest row of each client is open, the matched rows are the
    // rows up to the last point where the balance came back to zero.
    QMap<qint32, std::vector<ClientTran>> ledgers;
    {
        QSqlQuery q = db.query(QStringLiteral("select * from clienttran order by bbclienttranid"));
        while (q.next()) {
            ClientTran row;
            row.fillFields(q.record());
            ledgers[row.BBClientID].push_back(row);
        }
    }
    for (auto ledger = ledgers.cbegin(); ledger != ledgers.cend(); ++ledger) {
        const qint32 client = ledger.key();
        const std::vector<ClientTran> &rows = ledger.value();
        double sum = 0, total = 0, open = 0;
        std::size_t lastZero = 0;   // rows before this index form the matched groups
        for (std::size_t i = 0; i + 1 < rows.size(); ++i) {
            sum += rows[i].Amount;
            if (roundMoney(sum) == 0.0) {
                lastZero = i + 1;
                sum = 0;
            }
        }
        for (std::size_t i = 0; i < rows.size(); ++i) {
            total += rows[i].Amount;
            if (rows[i].Matched != (i < lastZero))
                return QStringLiteral("client %1: row %2 is %3matched").arg(client).arg(rows[i].BBClientTranID).arg(rows[i].Matched ? "" : "not ");
            if (!rows[i].Matched)
                open += rows[i].Amount;
        }
        if (!sameCents(open, total))
            return QStringLiteral("client %1: the open rows come to %2, the balance %3").arg(client).arg(money(open), money(total));
    }
    // The statement of one client runs to its balance.
    if (const auto client = pick(ids(QStringLiteral("select distinct bbclientid from clienttran where bbclientid in "
                                                     "(select bbclientid from client) order by bbclientid")),
                                 rng)) {
        const auto statement = buildStatement(db, *client);
        if (!statement)
            return QStringLiteral("client %1 with ledger rows has no statement").arg(*client);
        if (!sameCents(statement->balance(), clientBalance(db, *client)))
            return QStringLiteral("client %1: the statement ends at %2, the balance is %3")
                .arg(*client)
                .arg(money(statement->balance()), money(clientBalance(db, *client)));
    }

    if (conservesAccountTotals(step.kind) && !sameCents(accountTotals(), totalsBefore))
        return QStringLiteral("the accounts together came to %1 and now to %2").arg(money(totalsBefore), money(accountTotals()));

    const Frozen after = Frozen::take(db);
    for (auto it = before.rows.cbegin(); it != before.rows.cend(); ++it) {
        if (after.rows.value(it.key()) != it.value())
            return QStringLiteral("%1 changed after it was written").arg(it.key());
    }
    return std::nullopt;
}

// Runs steps on a fresh world; the step index and message of the first broken invariant.
std::optional<std::pair<int, QString>> runSteps(const std::vector<Step> &steps, Outcome *tally = nullptr)
{
    World world;
    QRandomGenerator checks(1);
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const Frozen before = Frozen::take(world.db());
        const double totals = world.accountTotals();
        try {
            const bool done = world.run(steps[i]);
            if (tally) {
                (done ? tally->done : tally->refusedByKind)[static_cast<std::size_t>(steps[i].kind)] += 1;
                tally->refused += done ? 0 : 1;
            }
        } catch (const DatabaseError &e) {
            return std::pair(static_cast<int>(i), QStringLiteral("database error: ") + e.message());
        } catch (const std::exception &e) {
            return std::pair(static_cast<int>(i), QString::fromUtf8(e.what()));
        }
        if (auto broken = world.check(steps[i], before, totals, checks))
            return std::pair(static_cast<int>(i), *broken);
    }
    return std::nullopt;
}

} // namespace

QString Step::name() const
{
    return QStringLiteral("%1 (seed %2)").arg(QString::fromLatin1(kind >= 0 && kind < KindCount ? KindNames[kind] : "?")).arg(seed);
}

QString Outcome::summary() const
{
    QStringList parts;
    for (std::size_t kind = 0; kind < done.size(); ++kind)
        parts << QStringLiteral("%1 %2/%3").arg(QString::fromLatin1(KindNames[kind])).arg(done[kind]).arg(refusedByKind[kind]);
    return parts.join(QStringLiteral(", "));
}

QString Failure::report() const
{
    QStringList lines;
    lines << QStringLiteral("money simulation seed %1 broke after %2 steps: %3").arg(seed).arg(failedAt).arg(message);
    lines << QStringLiteral("shortest failing sequence (%1 steps):").arg(shortest.size());
    for (const Step &step : shortest)
        lines << QStringLiteral("  {%1, %2u},  // %3").arg(step.kind).arg(step.seed).arg(step.name());
    return lines.join(QLatin1Char('\n'));
}

std::optional<QString> replay(const std::vector<Step> &steps)
{
    if (auto broken = runSteps(steps))
        return broken->second;
    return std::nullopt;
}

namespace {

std::vector<Step> sequenceOf(unsigned seed, int steps)
{
    QRandomGenerator master(seed);
    int weightSum = 0;
    for (int w : Weights)
        weightSum += w;
    std::vector<Step> sequence;
    for (int i = 0; i < steps; ++i) {
        int roll = static_cast<int>(master.bounded(static_cast<quint32>(weightSum)));
        int kind = 0;
        while (roll >= Weights[kind])
            roll -= Weights[kind++];
        sequence.push_back({kind, master.generate()});
    }
    return sequence;
}

} // namespace

void prepareProperty(const QString &path)
{
    const QString home = Home::path();
    copyProperty(path);
    Home::setPath(home);
}

void writeUntilKilled(const QString &path, unsigned seed)
{
    World world(path);
    std::printf("writing\n");
    std::fflush(stdout);
    for (unsigned round = 0;; ++round) {
        for (const Step &step : sequenceOf(seed + round, 50)) {
            try {
                world.run(step);
            } catch (const std::exception &) {
                // Nothing of a failed operation stays; the next one goes on.
            }
        }
    }
}

Outcome runOn(const QString &path, unsigned seed, int steps, const std::function<void(Database &, int)> &synchronise)
{
    World world(path);
    Outcome outcome;
    outcome.done.assign(KindCount, 0);
    outcome.refusedByKind.assign(KindCount, 0);
    for (const Step &step : sequenceOf(seed, steps)) {
        if (synchronise && step.kind >= ServerExtraStep)
            continue;
        bool done = false;
        try {
            done = world.run(step);
        } catch (const DatabaseError &e) {
            outcome.errors << e.message();
        }
        (done ? outcome.done : outcome.refusedByKind)[static_cast<std::size_t>(step.kind)] += 1;
        outcome.refused += done ? 0 : 1;
        ++outcome.stepsRun;
        if (synchronise)
            synchronise(world.db(), outcome.stepsRun);
    }
    return outcome;
}

std::optional<QString> checkProperty(const QString &path)
{
    World world(path);
    QRandomGenerator checks(1);
    return world.check(Step{NewBookingStep, 0}, Frozen::take(world.db()), world.accountTotals(), checks);
}

QString WriteFailureRun::summary() const
{
    QStringList parts;
    for (std::size_t kind = 0; kind < operations.size(); ++kind) {
        parts << QStringLiteral("%1: %2 ops, up to %3 writes, %4 failures")
                     .arg(QString::fromLatin1(KindNames[kind]))
                     .arg(operations[kind])
                     .arg(mostWrites[kind])
                     .arg(failures[kind]);
    }
    return parts.join(QStringLiteral("\n"));
}

WriteFailureRun failEveryWrite(unsigned seed, int steps)
{
    WriteFailureRun run;
    run.operations.assign(KindCount, 0);
    run.mostWrites.assign(KindCount, 0);
    run.failures.assign(KindCount, 0);
    World world;
    WriteFaults faults(world.db());
    QRandomGenerator checks(1);
    for (const Step &step : sequenceOf(seed, steps)) {
        const auto kind = static_cast<std::size_t>(step.kind);
        const QMap<QString, QByteArray> content = databaseContent(world.db());
        const Frozen frozen = Frozen::take(world.db());
        const double totals = world.accountTotals();
        for (int n = 1;; ++n) {
            faults.failAt(n);
            try {
                world.run(step);
            } catch (const std::exception &) {
                // A failed write is allowed to end the operation any way it likes.
            }
            if (!faults.fired()) {
                const int writes = n - 1;
                if (writes > 0)
                    ++run.operations[kind];
                run.mostWrites[kind] = std::max(run.mostWrites[kind], writes);
                run.failures[kind] += writes;
                break;
            }
            faults.failAt(0);
            const QStringList changed = differingTables(content, databaseContent(world.db()));
            if (!changed.isEmpty() || !noOpenTransaction(world.db())) {
                run.failure = QStringLiteral("%1 failed at write %2 and left %3")
                                  .arg(step.name())
                                  .arg(n)
                                  .arg(changed.isEmpty() ? QStringLiteral("a transaction open")
                                                         : QStringLiteral("changes in ") + changed.join(QStringLiteral(", ")));
                return run;
            }
        }
        faults.failAt(0);
        if (auto broken = world.check(step, frozen, totals, checks)) {
            run.failure = step.name() + QStringLiteral(": ") + *broken;
            return run;
        }
    }
    return run;
}

Outcome simulate(unsigned seed, int steps)
{
    const std::vector<Step> sequence = sequenceOf(seed, steps);

    Outcome outcome;
    outcome.done.assign(KindCount, 0);
    outcome.refusedByKind.assign(KindCount, 0);
    const auto broken = runSteps(sequence, &outcome);
    outcome.stepsRun = broken ? broken->first + 1 : steps;
    if (!broken)
        return outcome;

    // Cut the sequence down: drop each step in turn while the failure stays.
    Failure failure;
    failure.seed = seed;
    failure.failedAt = broken->first + 1;
    failure.message = broken->second;
    std::vector<Step> shortest(sequence.begin(), sequence.begin() + broken->first + 1);
    int budget = 400;
    for (std::size_t i = shortest.size(); i-- > 0 && budget > 0;) {
        std::vector<Step> candidate = shortest;
        candidate.erase(candidate.begin() + static_cast<std::ptrdiff_t>(i));
        --budget;
        if (candidate.empty())
            continue;
        if (const auto still = runSteps(candidate)) {
            candidate.resize(static_cast<std::size_t>(still->first) + 1);
            shortest = std::move(candidate);
            failure.message = still->second;
            if (i > shortest.size())
                i = shortest.size();
        }
    }
    failure.shortest = std::move(shortest);
    outcome.failure = std::move(failure);
    return outcome;
}

} // namespace moneysim
