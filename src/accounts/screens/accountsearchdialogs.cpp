#include "accounts/screens/accountsearchdialogs.h"

#include "accounts/accounts.h"
#include "accounts/screens/accountform.h"
#include "accounts/screens/accountwidgets.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/session.h"
#include "shell/strings.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

namespace fenlark {

AccountSearch::AccountSearch(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("dlgAccountSearch"));
    setWindowTitle(getString(6773, QStringLiteral("Account Search")));
    auto box = [this](const char *name) {
        auto *edit = new QLineEdit(this);
        edit->setObjectName(QLatin1String(name));
        return edit;
    };
    txtAccountID = box("txtAccountID");
    txtSurname = box("txtSurname");
    txtCompany = box("txtCompany");
    txtReference = box("txtReference");
    ckUpTo = new QCheckBox(getString(6775, QStringLiteral("Bookings up to")), this);
    ckUpTo->setObjectName(QStringLiteral("ckUpTo"));
    dpUpTo = new QDateEdit(QDate::currentDate(), this);
    dpUpTo->setObjectName(QStringLiteral("dpUpTo"));
    dpUpTo->setCalendarPopup(true);
    cboStatus = new QComboBox(this);
    cboStatus->setObjectName(QStringLiteral("cboStatus"));
    cboStatus->addItem(getAccountStatusName(accountstatus::Open), accountstatus::Open);
    cboStatus->addItem(getAccountStatusName(accountstatus::Closed), accountstatus::Closed);
    cboStatus->addItem(getString(6756, QStringLiteral("All")), QString());
    cmdSearch = makeDialogButton(this, QStringLiteral("cmdSearch"), getString(1318, QStringLiteral("&Search")));
    cmdSearch->setDefault(true);
    cmdCancel = makeDialogButton(this, QStringLiteral("cmdCancel"), getString(5120, QStringLiteral("Cancel")));

    auto *form = new QFormLayout;
    form->addRow(getString(6774, QStringLiteral("A/C ID")), txtAccountID);
    form->addRow(getString(5634, QStringLiteral("Surname:")), txtSurname);
    form->addRow(getString(5635, QStringLiteral("Company:")), txtCompany);
    form->addRow(getString(5892, QStringLiteral("Reference")), txtReference);
    form->addRow(ckUpTo, dpUpTo);
    form->addRow(getString(5862, QStringLiteral("Status")), cboStatus);
    layOutAsking(this, form, cmdSearch, cmdCancel);
    connect(cmdSearch, &QPushButton::clicked, this, guarded(this, &QDialog::accept));
}

AccountSearchCriteria AccountSearch::criteria() const
{
    AccountSearchCriteria c;
    c.accountId = txtAccountID->text();
    c.surname = txtSurname->text();
    c.company = txtCompany->text();
    c.reference = txtReference->text();
    if (ckUpTo->isChecked())
        c.upTo = dpUpTo->date();
    c.status = cboStatus->currentData().toString();
    return c;
}

AccountsList::AccountsList(Session &session, AccountSearchCriteria criteria, QWidget *parent)
    : QDialog(parent),
      m_session(session),
      m_criteria(std::move(criteria)),
      m_model({{getString(6774, QStringLiteral("A/C ID")), [](const AccountListRow &r) { return QVariant(r.accountId); }, true},
               {getString(5967, QStringLiteral("Client")), [](const AccountListRow &r) { return QVariant(r.client); }},
               {getString(5892, QStringLiteral("Reference")), [](const AccountListRow &r) { return QVariant(r.reference); }},
               {getString(5862, QStringLiteral("Status")), [](const AccountListRow &r) { return QVariant(r.statusName()); }}})
{
    setObjectName(QStringLiteral("dlgAccountsList"));
    setWindowTitle(getString(5179, QStringLiteral("Accounts")));
    openAccount = [this](QWidget *parent, qint32 accountId) { AccountForm::initialise(m_session, accountId, parent); };
    gdAccounts = makeRowsView(this, QStringLiteral("gdAccounts"), &m_model, 1);
    cmdExit = makeDialogButton(this, QStringLiteral("cmdExit"), getString(5643, QStringLiteral("E&xit")));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(gdAccounts, 1);
    layout->addLayout(buttonRow({}, {cmdExit}));
    resize(620, 420);
    connect(cmdExit, &QPushButton::clicked, this, guarded(this, &QDialog::accept));
    connect(gdAccounts, &QTableView::doubleClicked, this, guarded([this](const QModelIndex &index) { openRow(index.row()); }));
}

bool AccountsList::load()
{
    auto rows = searchAccounts(m_session.db(), m_criteria);
    if (!rows) {
        messages::show(rows.refusal());
        return false;
    }
    if (rows->empty()) {
        messages::show(noAccountsFound());
        return false;
    }
    m_model.setRows(std::move(*rows));
    return true;
}

void AccountsList::openRow(int row)
{
    if (row < 0 || row >= m_model.rowCount())
        return;
    openAccount(this, m_model.row(row).accountId);
    load();
}

void AccountsList::initialise(Session &session, QWidget *parent)
{
    AccountSearch search(parent);
    if (search.exec() != QDialog::Accepted)
        return;
    AccountsList list(session, search.criteria(), parent);
    if (list.load())
        list.exec();
}

} // namespace fenlark
