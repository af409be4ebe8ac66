#pragma once

#include "clients/clienteditor.h"
#include "clients/clienteditormodels.h"
#include "clients/companylookup.h"
#include "clients/screens/clientsearchdialogs.h"

#include <QDialog>

#include <functional>
#include <optional>

class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QTabWidget;
class QTableView;

namespace fenlark {

class Session;

// The screens the client editor opens. Each one left empty has its button
// hidden; the company lookup opens CompanyLk unless replaced (as tests do).
struct ClientScreens {
    // The company lookup, starting from the typed company; the details chosen, if any.
    std::function<std::optional<CompanyDetails>(QWidget *parent, const QString &company)> company;
    // The client's statement.
    std::function<void(QWidget *parent, qint32 clientId)> statement;
    // A new manual ledger entry for the client; true when one was saved.
    std::function<bool(QWidget *parent, qint32 clientId)> addLedgerEntry;
    // The account screen on an account.
    std::function<void(QWidget *parent, qint32 accountId)> account;
    // The document behind an invoice, credit note or payment row of the ledger;
    // true when it changed data.
    std::function<bool(QWidget *parent, const ClientTran &row)> ledgerDocument;
};

// dlgClient: the one screen on which a client is added or changed, with its
// accounts and ledger in view. initialise() shows it modally; afterwards
// ChangesMade() tells whether OK saved, and the other getters what was saved.
class ViewClient : public QDialog {
    Q_OBJECT
public:
    ViewClient(Session &session, ClientScreens screens = {}, QWidget *parent = nullptr);

    // Opens the client (0 for a new one) and shows the form modally.
    void initialise(qint32 clientId);
    // Loads the client into the form without showing it. A stored client's empty
    // open accounts are closed first; a client that cannot be read is said, and
    // the form stays empty.
    void load(qint32 clientId);

    bool ChangesMade() const { return m_changesMade; }
    qint32 NewClientID() const { return m_saved.NewClientID; }
    QString FullName() const { return m_saved.FullName; }
    QString ShortName() const { return m_saved.ShortName; }
    QString Notes() const { return m_saved.Notes; }
    qint16 BBRateSheetID() const { return m_saved.BBRateSheetID; }

    // Takes over a company found by the lookup, telling when its rate sheet replaces the client's.
    void updateClientView(const CompanyDetails &company);

public Q_SLOTS:
    void cmdOK();
    void cmdFieldAdd();
    void cmdFieldDelete();
    void cmdEmail();
    void cmdCompanyLk();

public:
    // The parts, for tests.
    QTabWidget *tbClient = nullptr;
    QComboBox *cboClientType = nullptr;
    QLineEdit *txtTitle = nullptr;
    QLineEdit *txtFirstName = nullptr;
    QLineEdit *txtSurname = nullptr;
    QLineEdit *txtCompany = nullptr;
    QLineEdit *txtPhone = nullptr;
    QLineEdit *txtEmail = nullptr;
    QLabel *lblEmailWarning = nullptr;
    QLabel *outCreated = nullptr;
    QLabel *outCreatedOn = nullptr;
    QLineEdit *txtVATNo = nullptr;
    QLabel *lblVatWarning = nullptr;
    QLineEdit *txtAdd1 = nullptr;
    QLineEdit *txtAdd2 = nullptr;
    QTableView *gdExtra = nullptr;
    QComboBox *cboRateSheet = nullptr;
    QPlainTextEdit *txtNotes = nullptr;
    QTableView *gdAccounts = nullptr;
    QTableView *gdClientTran = nullptr;
    QPushButton *cmdAddClientTran = nullptr;
    QPushButton *cmdStatement = nullptr;
    QPushButton *cmdOKButton = nullptr;
    QPushButton *cmdCancel = nullptr;
    QPushButton *cmdCompanyLkButton = nullptr;
    QPushButton *cmdEmailButton = nullptr;
    QPushButton *cmdFieldAddButton = nullptr;
    QPushButton *cmdFieldDeleteButton = nullptr;
    ClientExtrasModel *extrasModel() const { return m_extras; }
    ClientAccountsModel *accountsModel() const { return m_accounts; }
    ClientLedgerModel *ledgerModel() const { return m_ledger; }

private:
    QWidget *buildPersonal();
    QWidget *buildAddress();
    QWidget *buildExtras();
    QWidget *buildAdditional();
    QWidget *buildAccounts();
    void fillRateSheets(qint16 wanted);
    void showClient();
    void readScreen();
    void refillAccounts();
    void refillLedger();
    void showWarnings();
    void tabChanged(int tab);
    void openAccount(const QModelIndex &index);
    void openLedgerRow(const QModelIndex &index);

    Session &m_session;
    ClientScreens m_screens;
    ClientEditor m_editor;
    ClientExtrasModel *m_extras = nullptr;
    ClientAccountsModel *m_accounts = nullptr;
    ClientLedgerModel *m_ledger = nullptr;
    bool m_changesMade = false;
    ClientSaveOutcome m_saved;
};

// Opens the client editor for the client browser.
class ViewClientOpener : public ClientEditorOpener {
public:
    ViewClientOpener(Session &session, ClientScreens screens = {}) : m_session(session), m_screens(std::move(screens)) {}
    Outcome openClientEditor(QWidget *parent, qint32 clientId) override;

private:
    Session &m_session;
    ClientScreens m_screens;
};

} // namespace fenlark
