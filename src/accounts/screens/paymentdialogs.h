#pragma once

#include "accounts/accountrecords.h"
#include "shell/rowsmodel.h"

#include <QDialog>

#include <functional>

class QComboBox;
class QDateEdit;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

namespace fenlark {

class Session;

// dlgPayment: a payment received on an account. A new one takes type, date,
// amount and reference; an existing one shows them and lets only the reference
// change: money is reversed by a new entry, never edited.
class PaymentForm : public QDialog {
    Q_OBJECT
public:
    PaymentForm(Session &session, qint32 accountId, qint32 paymentId, QWidget *parent = nullptr);
    // False (after saying why) when the payment to change cannot be read.
    bool load();

public Q_SLOTS:
    void cmdSave();

public:
    QComboBox *cboPaymentType = nullptr;
    QDateEdit *dpDate = nullptr;
    QLineEdit *txtAmount = nullptr;
    QLineEdit *txtReference = nullptr;
    QPushButton *cmdSaveButton = nullptr;
    QPushButton *cmdCancel = nullptr;

private:
    Session &m_session;
    qint32 m_accountId;
    qint32 m_paymentId;
};

// dlgPayments: the payments of an account with their total.
class Payments : public QDialog {
    Q_OBJECT
public:
    Payments(Session &session, qint32 accountId, QWidget *parent = nullptr);
    void fill();

    // Opens the payment form (0 for a new payment); true when it saved.
    // Modal unless replaced, as tests do.
    std::function<bool(QWidget *parent, qint32 paymentId)> paymentForm;

public Q_SLOTS:
    void cmdAddPayment();
    void openRow(int row);

public:
    QTableView *gdPayment = nullptr;
    QLabel *lblTotal = nullptr;
    QPushButton *cmdAdd = nullptr;
    QPushButton *cmdExit = nullptr;

private:
    Session &m_session;
    qint32 m_accountId;
    RowsModel<Payment> m_model;
};

// dlgPaymentTranEdit: a payment seen from the client's ledger. Only its
// reference and the account it is allocated to can change.
class PaymentTranEdit : public QDialog {
    Q_OBJECT
public:
    PaymentTranEdit(Session &session, qint32 clientId, qint32 paymentId, QWidget *parent = nullptr);
    bool load();
    bool dataChanged() const { return m_changed; }

public Q_SLOTS:
    void cmdSave();

public:
    QLabel *lblDate = nullptr;
    QLabel *lblType = nullptr;
    QLabel *lblAmount = nullptr;
    QLineEdit *txtReference = nullptr;
    QComboBox *cboAccounts = nullptr;
    QPushButton *cmdSaveButton = nullptr;
    QPushButton *cmdCancel = nullptr;

private:
    Session &m_session;
    qint32 m_clientId;
    qint32 m_paymentId;
    bool m_changed = false;
};

} // namespace fenlark
