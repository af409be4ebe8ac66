#pragma once

#include "accounts/accountview.h"
#include "accounts/screens/accountwidgets.h"
#include "clients/screens/clientsearchdialogs.h"
#include "shell/rowsmodel.h"

#include <QDialog>

#include <functional>
#include <optional>

class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

namespace fenlark {

class Session;

// What the account screen needs from the rest of the desk: the client editor
// and the documents. The desk installs them once; a hook left empty leaves its
// command off the screen.
struct AccountDeskHooks {
    // The client editor on a client (0: a new one).
    std::function<ClientEditorOpener::Outcome(Session &session, QWidget *parent, qint32 clientId)> editClient;
    // Makes the account's document ("P" pro forma, "I" invoice) afresh and shows it.
    std::function<void(Session &session, QWidget *parent, const QString &type, qint32 accountId)> printDocument;
    // Shows the account's document, making it first when it does not exist.
    std::function<void(Session &session, QWidget *parent, const QString &type, qint32 accountId)> openDocument;

    static void install(AccountDeskHooks hooks);
    static const AccountDeskHooks &installed();
};

// dlgAccount: one account with its items, totals and documents, and the
// switch that closes or re-opens it.
class AccountForm : public QDialog {
    Q_OBJECT
public:
    AccountForm(Session &session, qint32 accountId, QWidget *parent = nullptr);
    // Shows the account modally; says so when it does not exist.
    static void initialise(Session &session, qint32 accountId, QWidget *parent);

    // Reads the account again; false (after saying why) when it is gone.
    bool reload();
    const AccountSummary &summary() const { return m_summary; }

    AccountDeskHooks hooks = AccountDeskHooks::installed();
    // The screens this one opens, modal unless replaced, as tests do.
    // Another client: its key, 0 for a new one, -1 when none was chosen.
    std::function<qint32(QWidget *parent)> chooseClient;
    std::function<void(QWidget *parent, qint32 accountId)> payments;
    // Moves an item elsewhere; the account it went to, nothing when it stayed.
    std::function<std::optional<qint32>(QWidget *parent, const AccountItem &item)> moveItem;
    // Asks for the first number of a series: an input box unless replaced.
    FirstNumberPrompter *prompter = &m_dialogPrompter;

public Q_SLOTS:
    void cmdProforma();
    void cmdInvoice();
    void cmdOpenClose();
    void cmdPayments();
    void cmdCreditCard();
    void cmdSaveReference();
    void cmdInvoiceTo();
    void cmdInvoiceToChange();
    void openItem(int row);

public:
    QLabel *lblInvoiceToName = nullptr;
    QPushButton *cmdInvoiceToButton = nullptr;
    QPushButton *cmdInvoiceToChangeButton = nullptr;
    QLineEdit *txtProforma = nullptr;
    QPushButton *cmdProformaButton = nullptr;
    QPushButton *cmdProformaOpen = nullptr;
    QLineEdit *txtInvoice = nullptr;
    QPushButton *cmdInvoiceButton = nullptr;
    QPushButton *cmdInvoiceOpen = nullptr;
    QLineEdit *txtReference = nullptr;
    QPushButton *cmdSaveReferenceButton = nullptr;
    QPushButton *cmdOpenCloseButton = nullptr;
    QLabel *lblStatus = nullptr;
    QTableView *gdItems = nullptr;
    QLabel *lblAccommodationTotal = nullptr;
    QLabel *lblExtrasTotal = nullptr;
    QLabel *lblPaymentsTotal = nullptr;
    QLabel *lblBalance = nullptr;
    QPushButton *cmdPaymentsButton = nullptr;
    QPushButton *cmdCreditCardButton = nullptr;
    QPushButton *cmdExit = nullptr;

private:
    void refreshStatus();
    void generateInvoice(bool ask);
    void print(const QString &type);
    void applyChanges(const Changes &changes);

    Session &m_session;
    qint32 m_accountId;
    AccountSummary m_summary;
    RowsModel<AccountItem> m_model;
    DialogFirstNumberPrompter m_dialogPrompter{this};
};

} // namespace fenlark
