#include "accounts/statement.h"

#include "accounts/accountrecords.h"
#include "accounts/accountrefusals.h"
#include "accounts/ledger.h"
#include "clients/clientrecords.h"
#include "shell/money.h"
#include "shell/strings.h"
#include "shell/textformat.h"

namespace fenlark {

QString Statement::title() const
{
    return getString(6702, QStringLiteral("Statement for: %1 (%2)")).arg(clientName, QString::number(clientId));
}

QStringList Statement::headings()
{
    return {getString(6695, QStringLiteral("Date")),      getString(5626, QStringLiteral("Type")),
            getString(6697, QStringLiteral("Tran No.")),  getString(5892, QStringLiteral("Reference")),
            getString(6699, QStringLiteral("DR Amount")), getString(6700, QStringLiteral("CR Amount")),
            getString(6701, QStringLiteral("Total"))};
}

Result<Statement> buildStatement(Database &db, qint32 clientId)
{
    Client client;
    if (!client.fetch(db, clientId))
        return refusals::missingClient(clientId);
    matchTransactions(db, clientId);

    Statement statement;
    statement.clientId = clientId;
    statement.clientName = client.FullName();
    double running = 0;
    auto add = [&](StatementLine line) {
        running = roundMoney(running + line.amount);
        line.total = running;
        statement.lines.push_back(std::move(line));
    };
    QSqlQuery q = db.query(QStringLiteral("select * from clienttran where bbclientid = ? and not matched order by trandate, bbclienttranid"),
                           {clientId});
    std::vector<ClientTran> rows;
    while (q.next()) {
        ClientTran row;
        row.fillFields(q.record());
        rows.push_back(std::move(row));
    }
    for (const ClientTran &row : rows) {
        Invoice invoice;
        std::vector<InvoiceItem> items;
        if (row.TranType == trantype::Invoice && invoice.fetchByNumber(db, row.TranNo))
            items = InvoiceItem::forInvoice(db, invoice.BBInvoiceID);
        if (items.empty()) {
            add({row.TranDate, row.TranType, row.TranNo, row.Reference, row.Amount, 0});
            continue;
        }
        for (const InvoiceItem &item : items)
            add({QDate::fromString(item.ItemDate.left(10), Qt::ISODate), row.TranType, row.TranNo, item.Description,
                 item.lineTotal(), 0});
    }
    if (statement.lines.empty())
        return Refusal(6703, QStringLiteral("No transactions to display for this client. Balance must be zero."), 6704,
                       QStringLiteral("Empty client statement"))
            .asInformation();
    return statement;
}

QString statementText(const Statement &statement)
{
    auto cell = [](QString text) { return text.replace(QLatin1Char('\t'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' ')); };
    QString text = cell(statement.title()) + QLatin1Char('\n') + Statement::headings().join(QLatin1Char('\t')) + QLatin1Char('\n');
    for (const StatementLine &line : statement.lines) {
        const QStringList cells = {line.date.toString(Qt::ISODate),
                                   line.type,
                                   QString::number(line.tranNo),
                                   cell(line.reference),
                                   line.debit() != 0 ? formatAmount(line.debit()) : QString(),
                                   line.credit() != 0 ? formatAmount(line.credit()) : QString(),
                                   formatAmount(line.total)};
        text += cells.join(QLatin1Char('\t')) + QLatin1Char('\n');
    }
    return text;
}

} // namespace fenlark
