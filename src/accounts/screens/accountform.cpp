#include "accounts/screens/accountform.h"

#include "accounts/accountmoves.h"
#include "accounts/accountrefusals.h"
#include "accounts/accounts.h"
#include "accounts/invoices.h"
#include "accounts/screens/clientaccounts.h"
#include "accounts/screens/paymentdialogs.h"
#include "accounts/vat.h"
#include "shell/config.h"
#include "shell/money.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/session.h"
#include "shell/strings.h"
#include "shell/textformat.h"
#include "synch/transport.h"

#include <QApplication>
#include <QClipboard>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

namespace fenlark {

namespace {

AccountDeskHooks &deskHooks()
{
    static AccountDeskHooks hooks;
    return hooks;
}

QString numberText(qint32 number)
{
    return number > 0 ? QString::number(number) : QString();
}

} // namespace

void AccountDeskHooks::install(AccountDeskHooks hooks)
{
    deskHooks() = std::move(hooks);
}

const AccountDeskHooks &AccountDeskHooks::installed()
{
    return deskHooks();
}

AccountForm::AccountForm(Session &session, qint32 accountId, QWidget *parent)
    : QDialog(parent),
      m_session(session),
      m_accountId(accountId),
      m_model({{getString(5630, QStringLiteral("ID")),
                [](const AccountItem &i) { return i.kind == AccountItem::ExtraItem ? QVariant(i.id) : QVariant(); }, true},
               {getString(6695, QStringLiteral("Date")),
                [](const AccountItem &i) { return QVariant(QLocale().toString(i.date, QLocale::ShortFormat)); }},
               {getString(6743, QStringLiteral("Description")), [](const AccountItem &i) { return QVariant(i.description); }},
               {getString(6723, QStringLiteral("Amount")), [](const AccountItem &i) { return QVariant(formatAmount(i.amount)); }, true},
               {getString(6789, QStringLiteral("BK ID")),
                [](const AccountItem &i) { return i.kind == AccountItem::BookingItem ? QVariant(i.id) : QVariant(); }, true},
               {getString(5958, QStringLiteral("Room")), [](const AccountItem &i) { return QVariant(i.room); }}})
{
    setObjectName(QStringLiteral("dlgAccount"));
    chooseClient = [this](QWidget *parent) {
        ClientSearch search(m_session.db(), parent);
        search.exec();
        return search.BBClientID();
    };
    payments = [this](QWidget *parent, qint32 account) {
        Payments dialog(m_session, account, parent);
        dialog.exec();
    };
    moveItem = [this](QWidget *parent, const AccountItem &item) -> std::optional<qint32> {
        ClientAccounts dialog(m_session, m_accountId,
                              {item.kind == AccountItem::BookingItem ? AccountItemRef::Booking : AccountItemRef::Extra, item.id}, parent);
        dialog.exec();
        return dialog.newAccountChosen() ? std::optional<qint32>(dialog.newAccountID()) : std::nullopt;
    };

    auto button = [this](const char *name, int id, const char *text) {
        return makeDialogButton(this, QLatin1String(name), getString(id, QString::fromUtf8(text)));
    };
    auto readOnly = [this](const char *name) {
        auto *box = new QLineEdit(this);
        box->setObjectName(QLatin1String(name));
        box->setReadOnly(true);
        return box;
    };
    auto label = [this](const char *name) {
        auto *l = new QLabel(this);
        l->setObjectName(QLatin1String(name));
        return l;
    };
    lblInvoiceToName = label("lblInvoiceToName");
    cmdInvoiceToButton = button("cmdInvoiceTo", 5866, "View");
    cmdInvoiceToChangeButton = button("cmdInvoiceToChange", 5867, "Change");
    txtProforma = readOnly("txtProforma");
    cmdProformaButton = button("cmdProforma", 6785, "Pro forma");
    cmdProformaOpen = button("cmdProformaOpen", 5703, "Open");
    txtInvoice = readOnly("txtInvoice");
    cmdInvoiceButton = button("cmdInvoice", 6786, "Generate");
    cmdInvoiceOpen = button("cmdInvoiceOpen", 5703, "Open");
    txtReference = new QLineEdit(this);
    txtReference->setObjectName(QStringLiteral("txtReference"));
    cmdSaveReferenceButton = button("cmdSaveReference", 5139, "&Save");
    cmdOpenCloseButton = button("cmdOpenClose", 5702, "Close");
    lblStatus = label("lblStatus");
    gdItems = makeRowsView(this, QStringLiteral("gdItems"), &m_model, 2);
    lblAccommodationTotal = label("lblAccommodationTotal");
    lblExtrasTotal = label("lblExtrasTotal");
    lblPaymentsTotal = label("lblPaymentsTotal");
    lblBalance = label("lblBalance");
    cmdPaymentsButton = button("cmdPayments", 6787, "Payments");
    cmdCreditCardButton = button("cmdCreditCard", 6788, "Card payment link");
    cmdExit = button("cmdExit", 5643, "E&xit");

    auto *top = new QGridLayout;
    top->addWidget(new QLabel(getString(6777, QStringLiteral("Invoice To:")), this), 0, 0);
    top->addWidget(lblInvoiceToName, 0, 1);
    top->addWidget(cmdInvoiceToButton, 0, 2);
    top->addWidget(cmdInvoiceToChangeButton, 0, 3);
    top->addWidget(new QLabel(getString(6778, QStringLiteral("Pro forma No.")), this), 1, 0);
    top->addWidget(txtProforma, 1, 1);
    top->addWidget(cmdProformaButton, 1, 2);
    top->addWidget(cmdProformaOpen, 1, 3);
    top->addWidget(new QLabel(getString(6779, QStringLiteral("Invoice No.")), this), 2, 0);
    top->addWidget(txtInvoice, 2, 1);
    top->addWidget(cmdInvoiceButton, 2, 2);
    top->addWidget(cmdInvoiceOpen, 2, 3);
    top->addWidget(new QLabel(getString(5892, QStringLiteral("Reference")), this), 3, 0);
    top->addWidget(txtReference, 3, 1);
    top->addWidget(cmdSaveReferenceButton, 3, 2);
    top->addWidget(cmdOpenCloseButton, 3, 3);
    top->setColumnStretch(1, 1);
    auto *totals = new QHBoxLayout;
    totals->addStretch(1);
    for (QLabel *total : {lblAccommodationTotal, lblExtrasTotal, lblPaymentsTotal, lblBalance})
        totals->addWidget(total);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(lblStatus);
    layout->addWidget(gdItems, 1);
    layout->addLayout(totals);
    layout->addLayout(buttonRow({cmdPaymentsButton, cmdCreditCardButton}, {cmdExit}));
    resize(760, 480);

    connect(cmdInvoiceToButton, &QPushButton::clicked, this, guarded(this, &AccountForm::cmdInvoiceTo));
    connect(cmdInvoiceToChangeButton, &QPushButton::clicked, this, guarded(this, &AccountForm::cmdInvoiceToChange));
    connect(cmdProformaButton, &QPushButton::clicked, this, guarded(this, &AccountForm::cmdProforma));
    connect(cmdProformaOpen, &QPushButton::clicked, this, guarded([this] { hooks.openDocument(m_session, this, QStringLiteral("P"), m_accountId); }));
    connect(cmdInvoiceButton, &QPushButton::clicked, this, guarded(this, &AccountForm::cmdInvoice));
    connect(cmdInvoiceOpen, &QPushButton::clicked, this, guarded([this] { hooks.openDocument(m_session, this, QStringLiteral("I"), m_accountId); }));
    connect(cmdSaveReferenceButton, &QPushButton::clicked, this, guarded(this, &AccountForm::cmdSaveReference));
    connect(cmdOpenCloseButton, &QPushButton::clicked, this, guarded(this, &AccountForm::cmdOpenClose));
    connect(cmdPaymentsButton, &QPushButton::clicked, this, guarded(this, &AccountForm::cmdPayments));
    connect(cmdCreditCardButton, &QPushButton::clicked, this, guarded(this, &AccountForm::cmdCreditCard));
    connect(cmdExit, &QPushButton::clicked, this, guarded(this, &QDialog::accept));
    connect(gdItems, &QTableView::doubleClicked, this, guarded([this](const QModelIndex &index) { openItem(index.row()); }));
}

void AccountForm::initialise(Session &session, qint32 accountId, QWidget *parent)
{
    AccountForm form(session, accountId, parent);
    if (form.reload())
        form.exec();
}

bool AccountForm::reload()
{
    auto summary = loadAccountSummary(m_session.db(), m_accountId);
    if (!summary) {
        messages::show(refusals::missingAccount(m_accountId));
        return false;
    }
    m_summary = std::move(*summary);
    setWindowTitle(getString(6776, QStringLiteral("Invoice Account ID %1")).arg(m_accountId));
    lblInvoiceToName->setText(m_summary.invoiceToName);
    txtReference->setText(m_summary.account.Reference);
    m_model.setRows(m_summary.items);
    // The balance is worked from the totals as shown, to the cent.
    const double accommodation = roundMoney(m_summary.accommodation);
    const double extras = roundMoney(m_summary.extras);
    const double paid = roundMoney(m_summary.payments);
    lblAccommodationTotal->setText(getString(6780, QStringLiteral("Accom:")) + QLatin1Char(' ') + formatAmount(accommodation));
    lblExtrasTotal->setText(getString(6781, QStringLiteral("Extras:")) + QLatin1Char(' ') + formatAmount(extras));
    lblPaymentsTotal->setText(getString(6782, QStringLiteral("Payments:")) + QLatin1Char(' ') + formatAmount(paid));
    lblBalance->setText(getString(6783, QStringLiteral("O/S:")) + QLatin1Char(' ') + formatAmount(accommodation + extras - paid));
    refreshStatus();
    return true;
}

void AccountForm::refreshStatus()
{
    const Account &account = m_summary.account;
    const bool open = account.Status == accountstatus::Open;
    lblStatus->setText(open ? QString()
                            : getString(6784, QStringLiteral("- Account is %1 -")).arg(getAccountStatusName(account.Status)));
    txtProforma->setText(numberText(account.ProformaNo));
    txtInvoice->setText(numberText(account.InvoiceNo));
    const bool printer = static_cast<bool>(hooks.printDocument);
    cmdProformaButton->setEnabled((open && account.ProformaNo == 0) || (account.ProformaNo > 0 && printer));
    cmdInvoiceButton->setEnabled(open || (account.InvoiceNo > 0 && printer));
    cmdOpenCloseButton->setText(getAccountStatusAction(account.Status));
    cmdProformaOpen->setVisible(static_cast<bool>(hooks.openDocument));
    cmdInvoiceOpen->setVisible(static_cast<bool>(hooks.openDocument));
    cmdProformaOpen->setEnabled(account.ProformaNo > 0);
    cmdInvoiceOpen->setEnabled(account.InvoiceNo > 0);
    cmdInvoiceToButton->setVisible(static_cast<bool>(hooks.editClient) && !m_summary.invoiceToMissing);
}

void AccountForm::applyChanges(const Changes &changes)
{
    m_session.publish(changes);
    reload();
}

void AccountForm::print(const QString &type)
{
    if (hooks.printDocument)
        hooks.printDocument(m_session, this, type, m_accountId);
}

void AccountForm::cmdProforma()
{
    if (m_summary.account.ProformaNo > 0
        && !messages::ask(6798, QStringLiteral("Are you sure you want to re-generate the Pro-forma?"), 6791,
                          QStringLiteral("Generate invoice?")))
        return;
    const auto made = makeProforma(m_session.db(), m_accountId, *prompter, VatRules::load(m_session.db()));
    if (!made) {
        messages::show(made.refusal());
        reload();
        return;
    }
    if (!*made)
        return;
    reload();
    print(QStringLiteral("P"));
}

void AccountForm::generateInvoice(bool ask)
{
    if (ask && !messages::ask(6790, QStringLiteral("Are you sure you want to generate an invoice?"), 6791, QStringLiteral("Generate invoice?")))
        return;
    const auto made = makeInvoice(m_session.db(), m_accountId, m_session.getUser(), *prompter, VatRules::load(m_session.db()));
    if (!made) {
        messages::show(made.refusal());
        reload();
        return;
    }
    if (!*made)
        return;
    applyChanges((*made)->changes);
    print(QStringLiteral("I"));
}

void AccountForm::cmdInvoice()
{
    if (m_summary.account.InvoiceNo == 0) {
        generateInvoice(true);
        return;
    }
    if (messages::ask(6792,
                      QStringLiteral("The account is closed and accounting entries have been generated.\n\nIf underlying booking data has "
                                     "changed, then you should re-Open the account, which generates a Credit Note.\nIf you just added a "
                                     "payment and want the statement to reflect, then a re-print is fine.\n\nAre you re-generating this "
                                     "invoice because a new invoice is required?"),
                      6793, QStringLiteral("New invoice is required?"))) {
        messages::inform(6794, QStringLiteral("You have stated that booking/invoice data changed. Rather re-open the account and then press Generate"),
                         6795, QStringLiteral("Please re-open account"));
        return;
    }
    if (messages::ask(6796, QStringLiteral("Are you happy to continue with just a re-print of invoice/statement, without updating accounting entries?"),
                      6797, QStringLiteral("Re-print only?")))
        print(QStringLiteral("I"));
}

void AccountForm::cmdOpenClose()
{
    Database &db = m_session.db();
    if (m_summary.account.Status == accountstatus::Open) {
        if (!messages::ask(6615, QStringLiteral("Closing an account manually means you do not want to invoice this customer. Are you sure you want to close this account?"),
                           6672, QStringLiteral("Open/Close Account?")))
            return;
        const auto closed = closeAccount(db, m_accountId);
        if (!closed) {
            messages::show(closed.refusal());
            reload();
            return;
        }
        applyChanges(*closed);
        return;
    }
    if (!messages::ask(6614, QStringLiteral("Are you sure you wish to re-open this account?"), 6672, QStringLiteral("Open/Close Account?")))
        return;
    const auto reopened = reopenAccount(db, m_accountId, m_session.getUser());
    if (!reopened) {
        messages::show(reopened.refusal());
        reload();
        return;
    }
    if (reopened->invoiceMissing)
        messages::show(invoiceDataMissing());
    applyChanges(reopened->changes);
}

void AccountForm::cmdPayments()
{
    payments(this, m_accountId);
    reload();
    if (isSettledInFull(m_session.db(), m_accountId)
        && messages::ask(6799, QStringLiteral("This account is settled in full. Would you like to generate the invoice?"), 6791,
                         QStringLiteral("Generate invoice?")))
        generateInvoice(false);
}

void AccountForm::cmdCreditCard()
{
    const auto link = cardPaymentLink(m_session.db(), m_accountId, serverBase(config::server()), m_session.BBID());
    if (!link) {
        messages::show(link.refusal());
        if (link.refusal().id() == 6687)
            cmdInvoiceToChangeButton->setFocus();
        return;
    }
    QApplication::clipboard()->setText(*link);
    messages::inform(6616, QStringLiteral("This link is now on your Windows clipboard. Paste the link into an email or the address bar of your internet browser."),
                     6617, QStringLiteral("Credit card link copied to clipboard."));
}

void AccountForm::cmdSaveReference()
{
    const auto saved = saveAccountReference(m_session.db(), m_accountId, txtReference->text());
    if (!saved) {
        messages::show(saved.refusal());
        return;
    }
    m_session.publish(*saved);
    m_summary.account.Reference = txtReference->text();
    messages::inform(6618, QStringLiteral("Account reference was saved."), 6619, QStringLiteral("Reference saved"));
}

void AccountForm::cmdInvoiceTo()
{
    if (!hooks.editClient)
        return;
    if (hooks.editClient(m_session, this, m_summary.account.InvoiceTo).ChangesMade)
        reload();
}

void AccountForm::cmdInvoiceToChange()
{
    const qint32 chosen = chooseClient(this);
    if (chosen < 0 || chosen == m_summary.account.InvoiceTo)
        return;
    qint32 client = chosen;
    // With the client editor at hand the choice is confirmed (or made) there.
    if (hooks.editClient) {
        const ClientEditorOpener::Outcome outcome = hooks.editClient(m_session, this, chosen);
        if (!outcome.ChangesMade)
            return;
        client = outcome.NewClientID > 0 ? outcome.NewClientID : chosen;
    } else if (chosen == 0) {
        return;
    }
    const auto changed = changeInvoiceTo(m_session.db(), m_accountId, client);
    if (!changed) {
        messages::show(changed.refusal());
        return;
    }
    applyChanges(*changed);
}

void AccountForm::openItem(int row)
{
    if (row < 0 || row >= m_model.rowCount())
        return;
    if (m_summary.account.Status != accountstatus::Open) {
        messages::show(itemOnClosedAccount());
        return;
    }
    if (!moveItem(this, m_model.row(row)))
        return;
    if (!reload() || Account::getItemCount(m_session.db(), m_accountId) == 0)
        accept();
}

} // namespace fenlark
