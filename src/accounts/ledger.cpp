#include "accounts/ledger.h"

#include "accounts/accountrefusals.h"
#include "accounts/vat.h"
#include "clients/clientnames.h"
#include "clients/clientrecords.h"
#include "shell/amounttext.h"
#include "shell/money.h"
#include "shell/strings.h"
#include "shell/security.h"

namespace fenlark {

qint32 getMaxTranNo(Database &db, const QString &tranType)
{
    return db.scalar(QStringLiteral("select max(tranno) as lastnumber from clienttran where trantype = ?"), {tranType}).toInt();
}

qint32 lastNumber(Database &db, const QString &tranType)
{
    return db.scalar(QStringLiteral("select lastNumber from trantype where trantype = ?"), {tranType}).toInt();
}

qint32 getNextNumber(Database &db, const QString &tranType)
{
    Transaction transaction(db);
    const QVariant last = db.scalar(QStringLiteral("select lastNumber from trantype where trantype = ?"), {tranType});
    const qint32 next = (last.isValid() ? last.toInt() : getMaxTranNo(db, tranType)) + 1;
    setLastNumber(db, tranType, next);
    transaction.commit();
    return next;
}

void setLastNumber(Database &db, const QString &tranType, qint32 number)
{
    Transaction transaction(db);
    if (db.execute(QStringLiteral("update trantype set lastNumber = ? where trantype = ?"), {number, tranType}) == 0)
        db.execute(QStringLiteral("insert into trantype (TranType, lastNumber) values(?, ?)"), {tranType, number});
    transaction.commit();
}

void matchTransactions(Database &db, qint32 clientId)
{
    // The groups are consecutive from the first row, so the matched rows are
    // exactly those up to the end of the last group: two statements set the
    // flags, touching only rows whose flag changes.
    QSqlQuery q = db.query(QStringLiteral("select bbclienttranid, amount from clienttran where bbclientid = ? "
                                          "and bbclienttranid < (select max(bbclienttranid) from clienttran where bbclientid = ?) "
                                          "order by bbclienttranid"),
                           {clientId, clientId});
    double sum = 0.0;
    qint32 lastMatched = 0;
    while (q.next()) {
        sum += q.value(1).toDouble();
        if (roundMoney(sum) == 0.0) {
            lastMatched = q.value(0).toInt();
            sum = 0.0;
        }
    }
    Transaction transaction(db);
    db.execute(QStringLiteral("update clienttran set matched = 0 where bbclientid = ? and bbclienttranid > ? and matched <> 0"),
               {clientId, lastMatched});
    db.execute(QStringLiteral("update clienttran set matched = 1 where bbclientid = ? and bbclienttranid <= ? and matched = 0"),
               {clientId, lastMatched});
    transaction.commit();
}

double clientBalance(Database &db, qint32 clientId)
{
    return roundMoney(db.scalar(QStringLiteral("select sum(amount) from clienttran where bbclientid = ?"), {clientId}).toDouble());
}

std::vector<ClientTran> ledgerOf(Database &db, qint32 clientId)
{
    std::vector<ClientTran> rows;
    QSqlQuery q = db.query(QStringLiteral("select * from clienttran where bbclientid = ? order by bbclienttranid"), {clientId});
    while (q.next()) {
        ClientTran row;
        row.fillFields(q.record());
        rows.push_back(std::move(row));
    }
    return rows;
}

Result<LedgerEntryWritten> addLedgerEntry(Database &db, const LedgerEntry &entry, const UserStruct &user, const VatRules &vat)
{
    const bool isPayment = entry.tranType == trantype::Payment;
    if (!isPayment && entry.tranType != trantype::CreditNote && entry.tranType != trantype::Journal)
        return Refusal(6602, QStringLiteral("Unknown transaction type %1: use CRN, PMT or JNL."), 6605,
                       QStringLiteral("Invalid transaction type"))
            .arg(entry.tranType);
    const auto amount = parseAmount(entry.amountText, deskLocale());
    if (!amount || roundMoney(*amount) == 0.0)
        return Refusal(6603, QStringLiteral("Please enter a valid amount."), 6604, QStringLiteral("Invalid amount"));
    const bool vatTyped = !entry.vatText.trimmed().isEmpty();
    if (vatTyped) {
        const auto typedVat = parseAmount(entry.vatText, deskLocale());
        if (!typedVat)
            return refusals::notAnAmount(entry.vatText);
        if (*amount * *typedVat < 0)
            return Refusal(6606, QStringLiteral("The amount and Vat should be the same sign (debit/credit)."), 6607,
                           QStringLiteral("Error on amount/vat"));
    }
    Client client;
    if (!client.fetch(db, entry.clientId))
        return refusals::missingClient(entry.clientId);

    Transaction transaction(db);
    LedgerEntryWritten written;
    ClientTran &row = written.row;
    row.BBClientID = entry.clientId;
    row.TranDate = entry.date;
    row.TranType = entry.tranType;
    row.Reference = entry.reference;
    if (isPayment) {
        Payment payment;
        payment.CreateDate = QDateTime::currentDateTime();
        payment.CreateUser = user.UserName;
        payment.PaymentDate = entry.date;
        payment.PaymentType = entry.paymentType.isEmpty() ? QStringLiteral("0") : entry.paymentType;
        payment.Reference = entry.reference;
        payment.Amount = roundMoney(*amount);
        payment.update(db);
        written.paymentId = payment.BBPaymentID;
        row.TranNo = payment.BBPaymentID;
    } else {
        row.TranNo = getNextNumber(db, entry.tranType);
    }
    row.Amount = roundMoney(*amount) * (entry.tranType == trantype::Journal ? 1 : -1);
    row.VAT = vatTyped && !isPayment && vat.isVat() ? vat.lineVAT(VatRules::getDefaultVATCode(), row.Amount) : 0;
    row.update(db);
    matchTransactions(db, entry.clientId);
    transaction.commit();
    row.Matched = false;
    return written;
}

Result<std::vector<LedgerListRow>> searchLedger(Database &db, const LedgerSearch &search)
{
    if (search.start.isValid() && search.end.isValid() && search.start > search.end)
        return Refusal(6610, QStringLiteral("Start date is after the end date."), 6611, QStringLiteral("Date error"));
    QString sql = QStringLiteral("select clienttran.*, client.title, client.firstname, client.surname, client.company "
                                 "from clienttran left join client on clienttran.bbclientid = client.bbclientid where 1 = 1");
    QVariantList values;
    if (!search.tranType.isEmpty()) {
        sql += QStringLiteral(" and clienttran.trantype = ?");
        values << search.tranType;
    }
    if (!search.tranNo.trimmed().isEmpty()) {
        bool ok = false;
        const int number = search.tranNo.trimmed().toInt(&ok);
        if (!ok)
            return Refusal(6608, QStringLiteral("The transaction number must be a whole number."), 6609,
                           QStringLiteral("Invalid transaction number"));
        sql += QStringLiteral(" and clienttran.tranno = ?");
        values << number;
    }
    if (search.start.isValid()) {
        sql += QStringLiteral(" and clienttran.trandate >= ?");
        values << sqlDate(search.start);
    }
    if (search.end.isValid()) {
        sql += QStringLiteral(" and clienttran.trandate <= ?");
        values << sqlDate(search.end);
    }
    if (!search.reference.isEmpty()) {
        sql += QStringLiteral(" and clienttran.reference like ?");
        values << search.reference + QLatin1Char('%');
    }
    if (!search.amount.trimmed().isEmpty()) {
        const auto amount = parseAmount(search.amount, deskLocale());
        if (!amount)
            return refusals::notAnAmount(search.amount);
        sql += QStringLiteral(" and abs(clienttran.amount - ?) < 0.005");
        values << roundMoney(*amount);
    }
    sql += QStringLiteral(" order by clienttran.trandate desc, clienttran.bbclienttranid desc");

    std::vector<LedgerListRow> rows;
    QSqlQuery q = db.query(sql, values);
    while (q.next()) {
        LedgerListRow row;
        row.tran.fillFields(q.record());
        row.client = QStringLiteral("(%1) ").arg(row.tran.BBClientID)
                     + clientName(q.value(QStringLiteral("title")).toString(), q.value(QStringLiteral("firstname")).toString(),
                                  q.value(QStringLiteral("surname")).toString(), q.value(QStringLiteral("company")).toString());
        rows.push_back(std::move(row));
    }
    return rows;
}

Refusal noTransactionsFound()
{
    return Refusal(6612, QStringLiteral("No transactions found with this search criteria"), 6613, QStringLiteral("No Records found"))
        .asInformation();
}

} // namespace fenlark
