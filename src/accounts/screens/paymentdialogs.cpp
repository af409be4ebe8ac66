#include "accounts/screens/paymentdialogs.h"

#include "accounts/payments.h"
#include "accounts/paymenttypes.h"
#include "accounts/screens/accountwidgets.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/session.h"
#include "shell/strings.h"
#include "shell/textformat.h"

#include <QComboBox>
#include <QDateEdit>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

namespace fenlark {

namespace {

QString dateText(const QDate &date)
{
    return QLocale().toString(date, QLocale::ShortFormat);
}

} // namespace

PaymentForm::PaymentForm(Session &session, qint32 accountId, qint32 paymentId, QWidget *parent)
    : QDialog(parent), m_session(session), m_accountId(accountId), m_paymentId(paymentId)
{
    setObjectName(QStringLiteral("dlgPayment"));
    setWindowTitle(getString(6717, QStringLiteral("Payment Received")));
    cboPaymentType = makePaymentTypeBox(this, QStringLiteral("cboPaymentType"));
    cboPaymentType->setCurrentIndex(static_cast<int>(paymenttype::codes().indexOf(paymenttype::Default)));
    dpDate = new QDateEdit(QDate::currentDate(), this);
    dpDate->setObjectName(QStringLiteral("dpDate"));
    dpDate->setCalendarPopup(true);
    txtAmount = makeAmountBox(this, QStringLiteral("txtAmount"), true);
    txtReference = new QLineEdit(this);
    txtReference->setObjectName(QStringLiteral("txtReference"));
    cmdSaveButton = makeDialogButton(this, QStringLiteral("cmdSave"), getString(5139, QStringLiteral("&Save")));
    cmdCancel = makeDialogButton(this, QStringLiteral("cmdCancel"), getString(5120, QStringLiteral("Cancel")));

    auto *form = new QFormLayout;
    form->addRow(getString(5626, QStringLiteral("Type")), cboPaymentType);
    form->addRow(getString(6695, QStringLiteral("Date")), dpDate);
    form->addRow(getString(6723, QStringLiteral("Amount")), txtAmount);
    form->addRow(getString(5892, QStringLiteral("Reference")), txtReference);

    layOutAsking(this, form, cmdSaveButton, cmdCancel);
    connect(cmdSaveButton, &QPushButton::clicked, this, guarded(this, &PaymentForm::cmdSave));
}

bool PaymentForm::load()
{
    if (m_paymentId < 1)
        return true;
    Payment payment;
    if (!payment.fetch(m_session.db(), m_paymentId)) {
        messages::show(noPaymentFound(m_paymentId));
        return false;
    }
    cboPaymentType->setCurrentIndex(static_cast<int>(paymenttype::codes().indexOf(payment.PaymentType)));
    dpDate->setDate(payment.PaymentDate);
    txtAmount->setText(formatAmount(payment.Amount));
    txtReference->setText(payment.Reference);
    for (QWidget *fixed : std::initializer_list<QWidget *>{cboPaymentType, dpDate, txtAmount})
        fixed->setEnabled(false);
    return true;
}

void PaymentForm::cmdSave()
{
    Database &db = m_session.db();
    if (m_paymentId > 0) {
        const auto changed = changePaymentReference(db, m_paymentId, txtReference->text(), m_session.getUser());
        if (!changed) {
            messages::show(changed.refusal());
            return;
        }
        m_session.publish(*changed);
        accept();
        return;
    }
    NewPayment request;
    request.accountId = m_accountId;
    request.paymentDate = dpDate->date();
    request.paymentType = cboPaymentType->currentData().toString();
    request.reference = txtReference->text();
    request.amountText = txtAmount->text();
    const auto written = addPayment(db, request, m_session.getUser());
    if (!written) {
        messages::show(written.refusal());
        txtAmount->setFocus();
        return;
    }
    m_session.publish(written->changes);
    accept();
}

Payments::Payments(Session &session, qint32 accountId, QWidget *parent)
    : QDialog(parent),
      m_session(session),
      m_accountId(accountId),
      m_model({{getString(6719, QStringLiteral("Payment ID")), [](const Payment &p) { return QVariant(p.BBPaymentID); }, true},
               {getString(6695, QStringLiteral("Date")), [](const Payment &p) { return QVariant(dateText(p.PaymentDate)); }},
               {getString(5626, QStringLiteral("Type")), [](const Payment &p) { return QVariant(paymentTypeName(p.PaymentType)); }},
               {getString(5892, QStringLiteral("Reference")), [](const Payment &p) { return QVariant(p.Reference); }},
               {getString(6723, QStringLiteral("Amount")), [](const Payment &p) { return QVariant(formatAmount(p.Amount)); }, true}})
{
    setObjectName(QStringLiteral("dlgPayments"));
    setWindowTitle(getString(6718, QStringLiteral("Payments Received")));
    paymentForm = [this](QWidget *parent, qint32 paymentId) {
        PaymentForm form(m_session, m_accountId, paymentId, parent);
        return form.load() && form.exec() == QDialog::Accepted;
    };
    gdPayment = makeRowsView(this, QStringLiteral("gdPayment"), &m_model, 3);
    gdPayment->setToolTip(getString(6722, QStringLiteral("Double-click to change reference")));
    lblTotal = new QLabel(this);
    lblTotal->setObjectName(QStringLiteral("lblTotal"));
    cmdAdd = makeDialogButton(this, QStringLiteral("cmdAddPayment"), getString(6721, QStringLiteral("&Add Payment")));
    cmdExit = makeDialogButton(this, QStringLiteral("cmdExit"), getString(5643, QStringLiteral("E&xit")));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(gdPayment, 1);
    layout->addWidget(lblTotal, 0, Qt::AlignRight);
    layout->addLayout(buttonRow({cmdAdd}, {cmdExit}));
    resize(560, 320);

    connect(cmdAdd, &QPushButton::clicked, this, guarded(this, &Payments::cmdAddPayment));
    connect(cmdExit, &QPushButton::clicked, this, guarded(this, &QDialog::accept));
    connect(gdPayment, &QTableView::doubleClicked, this, guarded([this](const QModelIndex &index) { openRow(index.row()); }));
    fill();
}

void Payments::fill()
{
    std::vector<Payment> payments = Account::getPayments(m_session.db(), m_accountId);
    double total = 0;
    for (const Payment &p : payments)
        total += p.Amount;
    m_model.setRows(std::move(payments));
    lblTotal->setText(getString(6720, QStringLiteral("Total Payments: %1")).arg(formatAmount(total)));
}

void Payments::cmdAddPayment()
{
    if (paymentForm(this, 0))
        fill();
}

void Payments::openRow(int row)
{
    if (row < 0 || row >= m_model.rowCount())
        return;
    if (paymentForm(this, m_model.row(row).BBPaymentID))
        fill();
}

PaymentTranEdit::PaymentTranEdit(Session &session, qint32 clientId, qint32 paymentId, QWidget *parent)
    : QDialog(parent), m_session(session), m_clientId(clientId), m_paymentId(paymentId)
{
    setObjectName(QStringLiteral("dlgPaymentTranEdit"));
    setWindowTitle(getString(6724, QStringLiteral("Payment")));
    lblDate = new QLabel(this);
    lblType = new QLabel(this);
    lblAmount = new QLabel(this);
    txtReference = new QLineEdit(this);
    txtReference->setObjectName(QStringLiteral("txtReference"));
    cboAccounts = new QComboBox(this);
    cboAccounts->setObjectName(QStringLiteral("cboAccounts"));
    cmdSaveButton = makeDialogButton(this, QStringLiteral("cmdSave"), getString(5139, QStringLiteral("&Save")));
    cmdCancel = makeDialogButton(this, QStringLiteral("cmdCancel"), getString(5120, QStringLiteral("Cancel")));
    auto *form = new QFormLayout;
    form->addRow(getString(6695, QStringLiteral("Date")), lblDate);
    form->addRow(getString(5626, QStringLiteral("Type")), lblType);
    form->addRow(getString(6723, QStringLiteral("Amount")), lblAmount);
    form->addRow(getString(5892, QStringLiteral("Reference")), txtReference);
    form->addRow(getString(5901, QStringLiteral("Account")), cboAccounts);
    layOutAsking(this, form, cmdSaveButton, cmdCancel);
    connect(cmdSaveButton, &QPushButton::clicked, this, guarded(this, &PaymentTranEdit::cmdSave));
}

bool PaymentTranEdit::load()
{
    Database &db = m_session.db();
    Payment payment;
    if (!payment.fetch(db, m_paymentId)) {
        messages::show(noPaymentFound(m_paymentId));
        return false;
    }
    lblDate->setText(QLocale().toString(payment.PaymentDate, QLocale::LongFormat));
    lblType->setText(paymentTypeName(payment.PaymentType));
    lblAmount->setText(formatAmount(payment.Amount));
    txtReference->setText(payment.Reference);
    cboAccounts->clear();
    for (const AllocationChoice &choice : allocationChoices(db, m_clientId, payment)) {
        cboAccounts->addItem(choice.text, choice.accountId);
        if (choice.accountId == payment.BBAccountID)
            cboAccounts->setCurrentIndex(cboAccounts->count() - 1);
    }
    return true;
}

void PaymentTranEdit::cmdSave()
{
    const auto changed = allocatePayment(m_session.db(), m_paymentId, cboAccounts->currentData().toInt(), txtReference->text(),
                                         m_session.getUser());
    if (!changed) {
        messages::show(changed.refusal());
        return;
    }
    m_changed = *changed;
    accept();
}

} // namespace fenlark
