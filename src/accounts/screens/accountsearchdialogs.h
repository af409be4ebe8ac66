#pragma once

#include "accounts/accountsearch.h"
#include "shell/rowsmodel.h"

#include <QDialog>

#include <functional>

class QCheckBox;
class QComboBox;
class QDateEdit;
class QLineEdit;
class QPushButton;
class QTableView;

namespace fenlark {

class Session;

// dlgAccountSearch: what to look for among the accounts.
class AccountSearch : public QDialog {
    Q_OBJECT
public:
    explicit AccountSearch(QWidget *parent = nullptr);
    AccountSearchCriteria criteria() const;

    QLineEdit *txtAccountID = nullptr;
    QLineEdit *txtSurname = nullptr;
    QLineEdit *txtCompany = nullptr;
    QLineEdit *txtReference = nullptr;
    QCheckBox *ckUpTo = nullptr;
    QDateEdit *dpUpTo = nullptr;
    QComboBox *cboStatus = nullptr;
    QPushButton *cmdSearch = nullptr;
    QPushButton *cmdCancel = nullptr;
};

// dlgAccountsList: the accounts found; a double-click opens one.
class AccountsList : public QDialog {
    Q_OBJECT
public:
    AccountsList(Session &session, AccountSearchCriteria criteria, QWidget *parent = nullptr);
    // The desk's Accounts / Search command: the search, then the list.
    static void initialise(Session &session, QWidget *parent);

    // Runs the search; false (after saying why) when it found nothing or could not run.
    bool load();

    // Opens the account screen. Modal unless replaced, as tests do.
    std::function<void(QWidget *parent, qint32 accountId)> openAccount;

public Q_SLOTS:
    void openRow(int row);

public:
    QTableView *gdAccounts = nullptr;
    QPushButton *cmdExit = nullptr;

private:
    Session &m_session;
    AccountSearchCriteria m_criteria;
    RowsModel<AccountListRow> m_model;
};

} // namespace fenlark
