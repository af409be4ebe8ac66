#include "ctl/options.h"
#include "ctl/verb.h"

#include "accounts/accountmoves.h"
#include "accounts/accountrefusals.h"
#include "accounts/accounts.h"
#include "accounts/accountsearch.h"
#include "accounts/accountview.h"
#include "accounts/extras.h"
#include "accounts/extraqueries.h"
#include "accounts/invoices.h"
#include "accounts/ledger.h"
#include "accounts/payments.h"
#include "accounts/paymenttypes.h"
#include "accounts/statement.h"
#include "accounts/vat.h"
#include "bookings/bookingrecords.h"
#include "bookings/bookingsave.h"
#include "shell/money.h"
#include "shell/security.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonObject>

#include <cstdio>
#include <utility>

namespace fenlark::ctl {

namespace {

QJsonValue date(const QDate &d)
{
    return d.isValid() ? QJsonValue(d.toString(Qt::ISODate)) : QJsonValue();
}

QJsonObject extraJson(const Extra &e)
{
    return QJsonObject{{"BBExtraID", e.BBExtraID}, {"BBGuestID", e.BBGuestID}, {"ExtraDate", date(e.ExtraDate)},
                       {"Qty", e.Qty},             {"Price", e.Price},         {"BBStockID", e.BBStockID},
                       {"BBAccountID", e.BBAccountID}, {"total", roundMoney(e.Qty * e.Price)}};
}

QJsonObject paymentJson(const Payment &p)
{
    return QJsonObject{{"BBPaymentID", p.BBPaymentID},
                       {"BBAccountID", p.BBAccountID},
                       {"PaymentDate", date(p.PaymentDate)},
                       {"PaymentType", p.PaymentType},
                       {"typeName", paymentTypeName(p.PaymentType)},
                       {"Reference", p.Reference},
                       {"Amount", p.Amount},
                       {"CreateUser", p.CreateUser}};
}

QJsonObject tranJson(const ClientTran &t)
{
    return QJsonObject{{"BBClientTranID", t.BBClientTranID}, {"BBClientID", t.BBClientID}, {"TranDate", date(t.TranDate)},
                       {"TranType", t.TranType},             {"TranNo", t.TranNo},         {"Reference", t.Reference},
                       {"Amount", t.Amount},                 {"VAT", t.VAT},               {"Matched", t.Matched}};
}

// The leg an extra goes on: the one named, else the first room of the
// account's first booking.
std::optional<qint32> extraLeg(Database &db, const CommandLine &args, qint32 accountId)
{
    if (args.has(QStringLiteral("booking")) || args.has(QStringLiteral("room"))) {
        const auto booking = keyOption(args, QStringLiteral("booking"));
        if (!booking)
            return std::nullopt;
        const auto room = keyOption(args, QStringLiteral("room"));
        if (!room)
            return std::nullopt;
        Guest leg;
        if (!leg.fetchLeg(db, *booking, *room)) {
            fail(QStringLiteral("booking %1 has no leg in room %2").arg(*booking).arg(*room));
            return std::nullopt;
        }
        // As the booking editor does on opening: a booking without an account gets one.
        ensureBookingAccount(db, *booking);
        return leg.BBGuestID;
    }
    const QVariant leg = db.scalar(QStringLiteral("select guest.bbguestid from booking, guest where booking.bbbookingid = guest.bbbookingid "
                                                  "and booking.bbaccountid = ? order by booking.fromdate, booking.bbbookingid, guest.bbguestid "
                                                  "limit 1"),
                                   {accountId});
    if (!leg.isValid()) {
        fail(QStringLiteral("account %1 holds no booking: name the room with --booking and --room").arg(accountId));
        return std::nullopt;
    }
    return leg.toInt();
}

// What an entry on an account names: the account, and its day (today when not given).
struct AccountEntry {
    qint32 account;
    QDate date;
};

std::optional<AccountEntry> accountEntry(const CommandLine &args)
{
    const auto account = keyOption(args, QStringLiteral("account"));
    if (!account)
        return std::nullopt;
    const auto date = dateOption(args, QStringLiteral("date"), QDate::currentDate());
    if (!date)
        return std::nullopt;
    return AccountEntry{*account, *date};
}

int runExtra(const CommandLine &args)
{
    const QString what = subVerb(args);
    auto db = openDatabase(args);
    if (!db)
        return 1;
    const UserStruct user = UserStruct::autoAdmin();
    if (what == QLatin1String("add")) {
        const auto entry = accountEntry(args);
        if (!entry)
            return 1;
        const auto leg = extraLeg(*db, args, entry->account);
        if (!leg)
            return 1;
        ExtraInput input;
        input.guestId = *leg;
        input.date = entry->date;
        input.stockId = args.option(QStringLiteral("stock")).toInt();
        input.qtyText = args.option(QStringLiteral("qty"));
        input.priceText = args.option(QStringLiteral("price"));
        input.accountId = entry->account;
        const auto saved = saveExtra(*db, input, user);
        if (!saved)
            return refuse(saved.refusal());
        printJson(extraJson(saved->extra));
        return 0;
    }
    if (what == QLatin1String("list")) {
        const auto account = keyOption(args, QStringLiteral("account"));
        if (!account)
            return 1;
        QJsonArray rows;
        for (const Extra &extra : getExtras(*db, *account)) {
            Stock stock;
            QJsonObject row = extraJson(extra);
            row.insert(QStringLiteral("stockName"), stock.fetch(*db, extra.BBStockID) ? stock.StockName : QString());
            rows.append(row);
        }
        printJson(rows);
        return 0;
    }
    if (what == QLatin1String("delete")) {
        const auto id = keyOption(args, QStringLiteral("id"));
        if (!id)
            return 1;
        const auto deleted = deleteExtra(*db, *id, args.option(QStringLiteral("reason")), user);
        if (!deleted)
            return refuse(deleted.refusal());
        printJson(QJsonObject{{"deleted", *id}});
        return 0;
    }
    return fail(QStringLiteral("usage: extra add|list|delete ..."));
}

int runPayment(const CommandLine &args)
{
    const QString what = subVerb(args);
    auto db = openDatabase(args);
    if (!db)
        return 1;
    const UserStruct user = UserStruct::autoAdmin();
    if (what == QLatin1String("add")) {
        const auto entry = accountEntry(args);
        if (!entry)
            return 1;
        NewPayment request;
        request.accountId = entry->account;
        request.paymentDate = entry->date;
        request.paymentType = args.option(QStringLiteral("type"), paymenttype::Default);
        request.reference = args.option(QStringLiteral("reference"));
        request.amountText = args.option(QStringLiteral("amount"));
        const auto written = addPayment(*db, request, user);
        if (!written)
            return refuse(written.refusal());
        printJson(QJsonObject{{"payment", paymentJson(written->payment)}, {"ledger", tranJson(written->twin)}});
        return 0;
    }
    if (what == QLatin1String("allocate")) {
        const auto id = keyOption(args, QStringLiteral("id"));
        if (!id)
            return 1;
        bool ok = false;
        const int account = args.option(QStringLiteral("account")).toInt(&ok);
        if (!ok || account < 0)
            return fail(QStringLiteral("--account must be an account key, or 0 for no single account"));
        Payment payment;
        if (!payment.fetch(*db, *id))
            return fail(QStringLiteral("no payment %1").arg(*id));
        const auto changed =
            allocatePayment(*db, *id, account, args.option(QStringLiteral("reference"), payment.Reference), user);
        if (!changed)
            return refuse(changed.refusal());
        payment.fetch(*db, *id);
        printJson(QJsonObject{{"payment", paymentJson(payment)}, {"changed", *changed}});
        return 0;
    }
    return fail(QStringLiteral("usage: payment add|allocate ..."));
}

QJsonObject accountJson(const AccountSummary &s)
{
    QJsonArray items;
    for (const AccountItem &item : s.items)
        items.append(QJsonObject{{"kind", item.kindCode()},
                                 {"id", item.id},
                                 {"date", date(item.date)},
                                 {"description", item.description},
                                 {"amount", roundMoney(item.amount)},
                                 {"room", item.room}});
    const Account &a = s.account;
    return QJsonObject{{"BBAccountID", a.BBAccountID},
                       {"InvoiceTo", a.InvoiceTo},
                       {"invoiceToName", s.invoiceToName},
                       {"Reference", a.Reference},
                       {"Status", a.Status},
                       {"statusName", getAccountStatusName(a.Status)},
                       {"InvoiceNo", a.InvoiceNo},
                       {"ProformaNo", a.ProformaNo},
                       {"items", items},
                       {"accommodation", roundMoney(s.accommodation)},
                       {"extras", roundMoney(s.extras)},
                       {"payments", roundMoney(s.payments)},
                       {"outstanding", roundMoney(s.balance())}};
}

int runAccount(const CommandLine &args)
{
    const QString what = subVerb(args);
    auto db = openDatabase(args);
    if (!db)
        return 1;
    const UserStruct user = UserStruct::autoAdmin();
    if (what == QLatin1String("list")) {
        AccountSearchCriteria criteria;
        if (args.has(QStringLiteral("client"))) {
            const auto client = keyOption(args, QStringLiteral("client"));
            if (!client)
                return 1;
            criteria.clientId = *client;
        }
        criteria.status = args.option(QStringLiteral("status"));
        if (!criteria.status.isEmpty() && criteria.status != QLatin1String("O") && criteria.status != QLatin1String("C"))
            return fail(QStringLiteral("--status must be O or C"));
        const auto rows = searchAccounts(*db, criteria);
        if (!rows)
            return refuse(rows.refusal());
        QJsonArray out;
        for (const AccountListRow &row : *rows)
            out.append(QJsonObject{{"BBAccountID", row.accountId},
                                   {"InvoiceTo", row.clientId},
                                   {"client", row.client},
                                   {"Reference", row.reference},
                                   {"Status", row.status},
                                   {"statusName", row.statusName()}});
        printJson(out);
        return 0;
    }
    if (what == QLatin1String("move")) {
        AccountItemRef item;
        const bool booking = args.has(QStringLiteral("booking"));
        if (booking == args.has(QStringLiteral("extra")))
            return fail(QStringLiteral("name one item: --booking B or --extra E"));
        const auto id = keyOption(args, booking ? QStringLiteral("booking") : QStringLiteral("extra"));
        if (!id)
            return 1;
        item.kind = booking ? AccountItemRef::Booking : AccountItemRef::Extra;
        item.id = *id;
        qint32 target = 0;
        if (args.has(QStringLiteral("to"))) {
            const auto to = keyOption(args, QStringLiteral("to"));
            if (!to)
                return 1;
            const auto moved = moveItem(*db, item, *to);
            if (!moved)
                return refuse(moved.refusal());
            target = *to;
        } else if (args.has(QStringLiteral("to-client"))) {
            const auto client = keyOption(args, QStringLiteral("to-client"));
            if (!client)
                return 1;
            const auto moved = moveItemToClient(*db, item, *client);
            if (!moved)
                return refuse(moved.refusal());
            if (!moved->choices.empty()) {
                QStringList keys;
                for (const OpenAccountChoice &choice : moved->choices)
                    keys << QString::number(choice.accountId);
                return fail(QStringLiteral("client %1 has several open accounts (%2): name one with --to").arg(*client).arg(keys.join(QStringLiteral(", "))));
            }
            target = moved->moved.accountId;
        } else {
            return fail(QStringLiteral("name where it goes: --to ACCOUNT or --to-client CLIENT"));
        }
        printJson(QJsonObject{{"moved", item.kind == AccountItemRef::Booking ? QStringLiteral("booking") : QStringLiteral("extra")},
                              {"id", item.id},
                              {"account", target}});
        return 0;
    }
    const auto account = keyOption(args, QStringLiteral("account"));
    if (!account)
        return 1;
    if (what == QLatin1String("show")) {
        const auto summary = loadAccountSummary(*db, *account);
        if (!summary)
            return refuse(refusals::missingAccount(*account));
        printJson(accountJson(*summary));
        return 0;
    }
    if (what == QLatin1String("close")) {
        const auto closed = closeAccount(*db, *account);
        if (!closed)
            return refuse(closed.refusal());
        printJson(QJsonObject{{"BBAccountID", *account}, {"Status", accountstatus::Closed}});
        return 0;
    }
    if (what == QLatin1String("reopen")) {
        const auto reopened = reopenAccount(*db, *account, user);
        if (!reopened)
            return refuse(reopened.refusal());
        if (reopened->invoiceMissing)
            std::fprintf(stderr, "%s\n", qUtf8Printable(invoiceDataMissing().text()));
        printJson(QJsonObject{{"BBAccountID", *account},
                              {"Status", accountstatus::Open},
                              {"creditNote", reopened->creditNoteNo > 0 ? QJsonValue(reopened->creditNoteNo) : QJsonValue()},
                              {"invoiceMissing", reopened->invoiceMissing}});
        return 0;
    }
    return fail(QStringLiteral("usage: account show|list|close|reopen|move ..."));
}

// The first number of a series, from --first-number: one answer, then Cancel.
class OptionPrompter : public FirstNumberPrompter {
public:
    explicit OptionPrompter(const CommandLine &args)
    {
        if (args.has(QStringLiteral("first-number")))
            m_answer = args.option(QStringLiteral("first-number"));
    }
    std::optional<QString> askFirstNumber(const QString &, const QString &) override
    {
        asked = true;
        return std::exchange(m_answer, std::nullopt);
    }
    void refuseFirstNumber(const Refusal &why) override { std::fprintf(stderr, "fenlarkctl: %s\n", qUtf8Printable(why.text())); }
    bool asked = false;

private:
    std::optional<QString> m_answer;
};

int cancelled()
{
    return fail(QStringLiteral("this is the first document of its series: give its number with --first-number N (a whole number of at least 1)"));
}

int runInvoice(const CommandLine &args)
{
    const auto account = keyOption(args, QStringLiteral("account"));
    if (!account)
        return 1;
    auto db = openDatabase(args);
    if (!db)
        return 1;
    OptionPrompter prompter(args);
    const auto made = makeInvoice(*db, *account, UserStruct::autoAdmin(), prompter, VatRules::load(*db));
    if (!made)
        return refuse(made.refusal());
    if (!*made)
        return cancelled();
    const Invoice &invoice = (*made)->invoice;
    QJsonArray items;
    for (const InvoiceItem &item : (*made)->items)
        items.append(QJsonObject{{"itemType", item.itemType}, {"ItemID", item.ItemID},       {"ItemDate", item.ItemDate},
                                 {"Description", item.Description}, {"Qty", item.Qty}, {"Price", item.Price},
                                 {"VatCode", item.VatCode}});
    printJson(QJsonObject{{"InvoiceNo", invoice.InvoiceNo},
                          {"BBInvoiceID", invoice.BBInvoiceID},
                          {"BBAccountID", invoice.BBAccountID},
                          {"BBClientID", invoice.BBClientID},
                          {"Amount", invoice.Amount},
                          {"VAT", invoice.VAT},
                          {"items", items}});
    return 0;
}

int runProforma(const CommandLine &args)
{
    const auto account = keyOption(args, QStringLiteral("account"));
    if (!account)
        return 1;
    auto db = openDatabase(args);
    if (!db)
        return 1;
    OptionPrompter prompter(args);
    const auto made = makeProforma(*db, *account, prompter, VatRules::load(*db));
    if (!made)
        return refuse(made.refusal());
    if (!*made)
        return cancelled();
    printJson(QJsonObject{{"ProformaNo", (*made)->number},
                          {"existing", (*made)->existing},
                          {"Amount", (*made)->draft.amount},
                          {"VAT", (*made)->draft.vat}});
    return 0;
}

int runLedger(const CommandLine &args)
{
    const auto client = keyOption(args, QStringLiteral("client"));
    if (!client)
        return 1;
    auto db = openDatabase(args);
    if (!db)
        return 1;
    if (subVerb(args) == QLatin1String("add")) {
        const auto when = dateOption(args, QStringLiteral("date"), QDate::currentDate());
        if (!when)
            return 1;
        LedgerEntry entry;
        entry.clientId = *client;
        entry.tranType = args.option(QStringLiteral("type"));
        entry.paymentType = args.option(QStringLiteral("payment-type"), QStringLiteral("0"));
        entry.date = *when;
        entry.reference = args.option(QStringLiteral("reference"));
        entry.amountText = args.option(QStringLiteral("amount"));
        if (args.has(QStringLiteral("vat")))
            entry.vatText = entry.amountText;
        const auto written = addLedgerEntry(*db, entry, UserStruct::autoAdmin(), VatRules::load(*db));
        if (!written)
            return refuse(written.refusal());
        QJsonObject out = tranJson(written->row);
        if (written->paymentId > 0)
            out.insert(QStringLiteral("BBPaymentID"), written->paymentId);
        printJson(out);
        return 0;
    }
    if (!subVerb(args).isEmpty())
        return fail(QStringLiteral("usage: ledger [add] --client C ..."));
    QJsonArray rows;
    for (const ClientTran &row : ledgerOf(*db, *client))
        rows.append(tranJson(row));
    printJson(QJsonObject{{"BBClientID", *client}, {"rows", rows}, {"balance", clientBalance(*db, *client)}});
    return 0;
}

int runStatement(const CommandLine &args)
{
    const auto client = keyOption(args, QStringLiteral("client"));
    if (!client)
        return 1;
    const QString out = args.option(QStringLiteral("out"));
    const bool workbook = out.endsWith(QLatin1String(".xlsx"), Qt::CaseInsensitive);
    if (!workbook && !out.endsWith(QLatin1String(".tsv"), Qt::CaseInsensitive))
        return fail(QStringLiteral("--out must name a .xlsx or .tsv file"));
    auto db = openDatabase(args);
    if (!db)
        return 1;
    const auto statement = buildStatement(*db, *client);
    if (!statement)
        return refuse(statement.refusal());
    if (workbook) {
        const auto written = writeStatementWorkbook(*statement, out);
        if (!written)
            return refuse(written.refusal());
    } else {
        QFile file(out);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(statementText(*statement).toUtf8()) < 0)
            return fail(QStringLiteral("could not write %1: %2").arg(out, file.errorString()));
    }
    printJson(QJsonObject{{"file", out}, {"lines", static_cast<int>(statement->lines.size())}, {"balance", statement->balance()}});
    return 0;
}

} // namespace

const std::vector<Verb> &accountsVerbs()
{
    static const std::vector<Verb> verbs = {
        {"extra", "extra add --account A --stock S --qty Q --price P [--booking B --room G] [--date D]   an extra on an account\n"
                  "  extra list --account A                 the extras of an account\n"
                  "  extra delete --id N --reason R         delete an extra (audited)",
         runExtra},
        {"payment", "payment add --account A --amount X [--type 0-4] [--reference R] [--date D]   a payment and its ledger row\n"
                    "  payment allocate --id N --account A [--reference R]   put a payment on another account (0: none)",
         runPayment},
        {"account", "account show --account A                an account: items, totals, status, numbers\n"
                    "  account list [--client C] [--status O|C]   accounts, newest first\n"
                    "  account close|reopen --account A       close by hand, or re-open (a credit note for an invoice)\n"
                    "  account move --booking B|--extra E --to A|--to-client C   move an item to another account",
         runAccount},
        {"invoice", "invoice --account A [--first-number N]   invoice an account (N: the first number of the series)", runInvoice},
        {"proforma", "proforma --account A [--first-number N]   the account's pro forma number, amount and VAT", runProforma},
        {"ledger", "ledger --client C                       a client's ledger with matched flags and balance\n"
                   "  ledger add --client C --type JNL|CRN|PMT --amount X [--vat] [--reference R] [--date D]   an entry by hand",
         runLedger},
        {"statement", "statement --client C --out FILE.xlsx|FILE.tsv   a client's statement", runStatement},
    };
    return verbs;
}

} // namespace fenlark::ctl
