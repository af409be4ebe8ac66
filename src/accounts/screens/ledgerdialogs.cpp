#include "accounts/screens/ledgerdialogs.h"

#include "accounts/screens/accountwidgets.h"
#include "accounts/vat.h"
#include "shell/amounttext.h"
#include "shell/money.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/session.h"
#include "shell/strings.h"
#include "shell/textformat.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QEvent>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

namespace fenlark {

ClientTranForm::ClientTranForm(Session &session, qint32 clientId, QWidget *parent)
    : QDialog(parent), m_session(session), m_clientId(clientId)
{
    setObjectName(QStringLiteral("dlgClientTran"));
    setWindowTitle(getString(6752, QStringLiteral("Client Transaction")));
    cboTranType = new QComboBox(this);
    cboTranType->setObjectName(QStringLiteral("cboTranType"));
    cboTranType->addItems({trantype::CreditNote, trantype::Payment, trantype::Journal});
    cboPaymentType = makePaymentTypeBox(this, QStringLiteral("cboPaymentType"));
    dpDate = new QDateEdit(QDate::currentDate(), this);
    dpDate->setObjectName(QStringLiteral("dpDate"));
    dpDate->setCalendarPopup(true);
    txtReference = new QLineEdit(this);
    txtReference->setObjectName(QStringLiteral("txtReference"));
    txtAmount = makeAmountBox(this, QStringLiteral("txtAmount"), true);
    txtVAT = makeAmountBox(this, QStringLiteral("txtVAT"), true);
    txtVAT->installEventFilter(this);
    cmdSaveButton = makeDialogButton(this, QStringLiteral("cmdSave"), getString(5139, QStringLiteral("&Save")));
    cmdCancel = makeDialogButton(this, QStringLiteral("cmdCancel"), getString(5120, QStringLiteral("Cancel")));

    m_paymentTypeLabel = new QLabel(getString(6753, QStringLiteral("Payment type")), this);
    m_vatLabel = new QLabel(getString(6754, QStringLiteral("VAT")), this);
    auto *form = new QFormLayout;
    form->addRow(getString(5626, QStringLiteral("Type")), cboTranType);
    form->addRow(m_paymentTypeLabel, cboPaymentType);
    form->addRow(getString(6695, QStringLiteral("Date")), dpDate);
    form->addRow(getString(5892, QStringLiteral("Reference")), txtReference);
    form->addRow(getString(6723, QStringLiteral("Amount")), txtAmount);
    form->addRow(m_vatLabel, txtVAT);

    connect(cboTranType, &QComboBox::currentIndexChanged, this, guarded(this, &ClientTranForm::typeChanged));
    layOutAsking(this, form, cmdSaveButton, cmdCancel);
    connect(cmdSaveButton, &QPushButton::clicked, this, guarded(this, &ClientTranForm::cmdSave));
    typeChanged();
}

void ClientTranForm::typeChanged()
{
    const bool payment = cboTranType->currentText() == trantype::Payment;
    m_paymentTypeLabel->setHidden(!payment);
    cboPaymentType->setHidden(!payment);
    const bool vat = !payment && isVat(m_session.setup());
    m_vatLabel->setHidden(!vat);
    txtVAT->setHidden(!vat);
}

bool ClientTranForm::eventFilter(QObject *watched, QEvent *event)
{
    // An empty VAT box offers the VAT within the amount at the default rate.
    if (watched == txtVAT && event->type() == QEvent::FocusIn && txtVAT->text().isEmpty() && !txtAmount->text().trimmed().isEmpty()) {
        if (const auto amount = parseAmount(txtAmount->text(), deskLocale())) {
            const VatCode *code = m_session.property().getVatCode(VatRules::getDefaultVATCode());
            if (code)
                txtVAT->setText(formatAmount(calculateVAT(*code, *amount)));
        }
    }
    return QDialog::eventFilter(watched, event);
}

void ClientTranForm::cmdSave()
{
    LedgerEntry entry;
    entry.clientId = m_clientId;
    entry.tranType = cboTranType->currentText();
    entry.paymentType = cboPaymentType->currentData().toString();
    entry.date = dpDate->date();
    entry.reference = txtReference->text();
    entry.amountText = txtAmount->text();
    entry.vatText = txtVAT->isHidden() ? QString() : txtVAT->text();
    const auto written = addLedgerEntry(m_session.db(), entry, m_session.getUser(), VatRules::load(m_session.db()));
    if (!written) {
        messages::show(written.refusal());
        (written.refusal().id() == 6606 ? txtVAT : txtAmount)->setFocus();
        return;
    }
    m_session.publish(written->changes);
    m_saved = true;
    accept();
}

ClientTranList::ClientTranList(QWidget *parent)
    : QDialog(parent),
      m_model({{getString(5630, QStringLiteral("ID")), [](const LedgerListRow &r) { return QVariant(r.tran.BBClientTranID); }, true},
               {getString(6762, QStringLiteral("Tran Date")),
                [](const LedgerListRow &r) { return QVariant(QLocale().toString(r.tran.TranDate, QLocale::ShortFormat)); }},
               {getString(6757, QStringLiteral("Tran Type")), [](const LedgerListRow &r) { return QVariant(r.tran.TranType); }},
               {getString(6758, QStringLiteral("Tran No")), [](const LedgerListRow &r) { return QVariant(r.tran.TranNo); }, true},
               {getString(5967, QStringLiteral("Client")), [](const LedgerListRow &r) { return QVariant(r.client); }},
               {getString(6723, QStringLiteral("Amount")), [](const LedgerListRow &r) { return QVariant(formatAmount(r.tran.Amount)); }, true},
               {getString(5892, QStringLiteral("Reference")), [](const LedgerListRow &r) { return QVariant(r.tran.Reference); }}})
{
    setObjectName(QStringLiteral("dlgClientTranList"));
    setWindowTitle(getString(6761, QStringLiteral("Transactions")));
    gdTransactions = makeRowsView(this, QStringLiteral("gdTransactions"), &m_model, 4);
    cmdExit = makeDialogButton(this, QStringLiteral("cmdExit"), getString(5643, QStringLiteral("E&xit")));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(gdTransactions, 1);
    layout->addLayout(buttonRow({}, {cmdExit}));
    resize(760, 420);
    connect(cmdExit, &QPushButton::clicked, this, guarded(this, &QDialog::accept));
    connect(gdTransactions, &QTableView::doubleClicked, this, guarded([this](const QModelIndex &index) {
        if (editClient && index.isValid())
            editClient(this, m_model.row(index.row()).tran.BBClientID);
    }));
}

void ClientTranList::setRows(std::vector<LedgerListRow> rows)
{
    m_model.setRows(std::move(rows));
}

ClientTranSearch::ClientTranSearch(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("dlgClientTranSearch"));
    setWindowTitle(getString(6755, QStringLiteral("Transaction Search")));
    cboTranType = new QComboBox(this);
    cboTranType->setObjectName(QStringLiteral("cboTranType"));
    cboTranType->addItem(getString(6756, QStringLiteral("All")), QString());
    for (const QString &type : {trantype::Invoice, trantype::Payment, trantype::CreditNote, trantype::Journal})
        cboTranType->addItem(type, type);
    txtTranNo = new QLineEdit(this);
    txtTranNo->setObjectName(QStringLiteral("txtTranNo"));
    ckStart = new QCheckBox(getString(6759, QStringLiteral("From")), this);
    dpStart = new QDateEdit(QDate::currentDate().addMonths(-1), this);
    dpStart->setObjectName(QStringLiteral("dpStart"));
    ckEnd = new QCheckBox(getString(6760, QStringLiteral("To")), this);
    dpEnd = new QDateEdit(QDate::currentDate(), this);
    dpEnd->setObjectName(QStringLiteral("dpEnd"));
    for (QDateEdit *d : {dpStart, dpEnd})
        d->setCalendarPopup(true);
    txtReference = new QLineEdit(this);
    txtReference->setObjectName(QStringLiteral("txtReference"));
    txtAmount = makeAmountBox(this, QStringLiteral("txtAmount"), false);
    cmdSearch = makeDialogButton(this, QStringLiteral("cmdSearch"), getString(1318, QStringLiteral("&Search")));
    cmdSearch->setDefault(true);
    cmdCancel = makeDialogButton(this, QStringLiteral("cmdCancel"), getString(5120, QStringLiteral("Cancel")));

    auto *form = new QFormLayout;
    form->addRow(getString(6757, QStringLiteral("Tran Type")), cboTranType);
    form->addRow(getString(6758, QStringLiteral("Tran No")), txtTranNo);
    form->addRow(ckStart, dpStart);
    form->addRow(ckEnd, dpEnd);
    form->addRow(getString(5892, QStringLiteral("Reference")), txtReference);
    form->addRow(getString(6723, QStringLiteral("Amount")), txtAmount);
    layOutAsking(this, form, cmdSearch, cmdCancel);
    connect(cmdSearch, &QPushButton::clicked, this, guarded(this, &QDialog::accept));
}

LedgerSearch ClientTranSearch::search() const
{
    LedgerSearch s;
    s.tranType = cboTranType->currentData().toString();
    s.tranNo = txtTranNo->text();
    if (ckStart->isChecked())
        s.start = dpStart->date();
    if (ckEnd->isChecked())
        s.end = dpEnd->date();
    s.reference = txtReference->text();
    s.amount = txtAmount->text();
    return s;
}

void ClientTranSearch::initialise(Session &session, QWidget *parent, std::function<void(QWidget *, qint32)> editClient)
{
    ClientTranSearch dialog(parent);
    while (dialog.exec() == QDialog::Accepted) {
        const auto rows = searchLedger(session.db(), dialog.search());
        if (!rows) {
            messages::show(rows.refusal());
            continue;
        }
        if (rows->empty()) {
            messages::show(noTransactionsFound());
            return;
        }
        ClientTranList list(parent);
        list.editClient = std::move(editClient);
        list.setRows(*rows);
        list.exec();
        return;
    }
}

} // namespace fenlark
