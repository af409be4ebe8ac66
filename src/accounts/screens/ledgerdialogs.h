#pragma once

#include "accounts/ledger.h"
#include "shell/rowsmodel.h"

#include <QDialog>

#include <functional>

class QCheckBox;
class QComboBox;
class QDateEdit;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

namespace fenlark {

class Session;

// dlgClientTran: a ledger entry made by hand for one client: a credit note, a
// payment (on no account) or a journal.
class ClientTranForm : public QDialog {
    Q_OBJECT
public:
    ClientTranForm(Session &session, qint32 clientId, QWidget *parent = nullptr);
    bool NewData() const { return m_saved; }

public Q_SLOTS:
    void cmdSave();

public:
    QComboBox *cboTranType = nullptr;
    QComboBox *cboPaymentType = nullptr;
    QDateEdit *dpDate = nullptr;
    QLineEdit *txtReference = nullptr;
    QLineEdit *txtAmount = nullptr;
    QLineEdit *txtVAT = nullptr;
    QPushButton *cmdSaveButton = nullptr;
    QPushButton *cmdCancel = nullptr;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void typeChanged();

    Session &m_session;
    qint32 m_clientId;
    bool m_saved = false;
    QLabel *m_paymentTypeLabel = nullptr;
    QLabel *m_vatLabel = nullptr;
};

// dlgClientTranList: ledger rows found by the search, newest first. A
// double-click opens the client editor on the row's client.
class ClientTranList : public QDialog {
    Q_OBJECT
public:
    explicit ClientTranList(QWidget *parent = nullptr);
    void setRows(std::vector<LedgerListRow> rows);

    // Opens the client editor; left empty where the desk has none.
    std::function<void(QWidget *parent, qint32 clientId)> editClient;

    QTableView *gdTransactions = nullptr;
    QPushButton *cmdExit = nullptr;

private:
    RowsModel<LedgerListRow> m_model;
};

// dlgClientTranSearch: what to look for in the ledger of all clients.
class ClientTranSearch : public QDialog {
    Q_OBJECT
public:
    explicit ClientTranSearch(QWidget *parent = nullptr);
    // The desk's Transactions command: the search, then the list of what it found.
    static void initialise(Session &session, QWidget *parent, std::function<void(QWidget *, qint32)> editClient = {});
    LedgerSearch search() const;

    QComboBox *cboTranType = nullptr;
    QLineEdit *txtTranNo = nullptr;
    QCheckBox *ckStart = nullptr;
    QDateEdit *dpStart = nullptr;
    QCheckBox *ckEnd = nullptr;
    QDateEdit *dpEnd = nullptr;
    QLineEdit *txtReference = nullptr;
    QLineEdit *txtAmount = nullptr;
    QPushButton *cmdSearch = nullptr;
    QPushButton *cmdCancel = nullptr;
};

} // namespace fenlark
