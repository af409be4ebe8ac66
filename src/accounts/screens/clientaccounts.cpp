#include "accounts/screens/clientaccounts.h"

#include "accounts/accountrecords.h"
#include "clients/clientrecords.h"
#include "clients/screens/clientsearchdialogs.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/session.h"
#include "shell/strings.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace fenlark {

ClientAccounts::ClientAccounts(Session &session, qint32 accountId, AccountItemRef item, QWidget *parent)
    : QDialog(parent), m_session(session), m_accountId(accountId), m_item(item)
{
    setObjectName(QStringLiteral("dlgClientAccounts"));
    setWindowTitle(getString(6763, QStringLiteral("Change Account for item")));
    chooseClient = [this](QWidget *parent) {
        ClientDSearch search(m_session.db(), parent);
        search.exec();
        return search.BBClientID() > 0 ? search.BBClientID() : -1;
    };
    Database &db = session.db();
    lblItem = new QLabel(describeItem(db, item), this);
    lblItem->setObjectName(QStringLiteral("lblItem"));
    Account account;
    account.fetch(db, accountId);
    Client client;
    client.fetch(db, account.InvoiceTo);
    lblInvoiceTo = new QLabel(getString(6764, QStringLiteral("On account %1 will be invoiced to: %2"))
                                  .arg(QString::number(accountId), client.FullName()),
                              this);
    lblInvoiceTo->setObjectName(QStringLiteral("lblInvoiceTo"));
    cboAccounts = new QComboBox(this);
    cboAccounts->setObjectName(QStringLiteral("cboAccounts"));
    lblAccountItems = new QLabel(this);
    lblAccountItems->setObjectName(QStringLiteral("lblAccountItems"));
    cmdAccountChangeButton = makeDialogButton(this, QStringLiteral("cmdAccountChange"),
                                              getString(6765, QStringLiteral("Move to different account with the same client")));
    cmdNewAccountButton = makeDialogButton(this, QStringLiteral("cmdNewAccount"), getString(6766, QStringLiteral("Move it to a new account")));
    cmdInvoiceToChangeButton =
        makeDialogButton(this, QStringLiteral("cmdInvoiceToChange"), getString(6767, QStringLiteral("Move it to another client")));
    cmdExit = makeDialogButton(this, QStringLiteral("cmdExit"), getString(5643, QStringLiteral("E&xit")));

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(lblItem);
    layout->addWidget(lblInvoiceTo);
    layout->addWidget(cboAccounts);
    layout->addWidget(lblAccountItems);
    layout->addWidget(cmdAccountChangeButton);
    layout->addWidget(cmdNewAccountButton);
    layout->addWidget(cmdInvoiceToChangeButton);
    auto *exit = new QHBoxLayout;
    exit->addStretch(1);
    exit->addWidget(cmdExit);
    layout->addLayout(exit);

    connect(cboAccounts, &QComboBox::currentIndexChanged, this, guarded(this, &ClientAccounts::showItems));
    connect(cmdAccountChangeButton, &QPushButton::clicked, this, guarded(this, &ClientAccounts::cmdAccountChange));
    connect(cmdNewAccountButton, &QPushButton::clicked, this, guarded(this, &ClientAccounts::cmdNewAccount));
    connect(cmdInvoiceToChangeButton, &QPushButton::clicked, this, guarded(this, &ClientAccounts::cmdInvoiceToChange));
    connect(cmdExit, &QPushButton::clicked, this, guarded(this, &QDialog::reject));
    listAccounts(otherOpenAccounts(db, account.InvoiceTo, accountId));
}

void ClientAccounts::listAccounts(std::vector<OpenAccountChoice> choices)
{
    m_choices = std::move(choices);
    cboAccounts->clear();
    for (const OpenAccountChoice &choice : m_choices)
        cboAccounts->addItem(choice.text, choice.accountId);
    cmdAccountChangeButton->setEnabled(!m_choices.empty());
    showItems();
}

void ClientAccounts::showItems()
{
    const int at = cboAccounts->currentIndex();
    lblAccountItems->setText(at < 0 ? QString() : m_choices.at(static_cast<std::size_t>(at)).items.join(QLatin1Char('\n')));
}

void ClientAccounts::moved(const Changes &changes, qint32 target)
{
    m_session.publish(changes);
    m_moved = true;
    m_target = target;
    accept();
}

void ClientAccounts::cmdAccountChange()
{
    if (cboAccounts->currentIndex() < 0)
        return;
    const qint32 target = cboAccounts->currentData().toInt();
    const auto result = moveItem(m_session.db(), m_item, target);
    if (!result) {
        messages::show(result.refusal());
        return;
    }
    moved(*result, target);
}

void ClientAccounts::cmdNewAccount()
{
    if (!messages::ask(6768, QStringLiteral("Are you sure you want to move this item to a new account for this client?"), 6769,
                       QStringLiteral("Move this item to new account?")))
        return;
    const auto result = moveItemToNewAccount(m_session.db(), m_item);
    if (!result) {
        messages::show(result.refusal());
        return;
    }
    moved(result->changes, result->accountId);
}

void ClientAccounts::cmdInvoiceToChange()
{
    const qint32 client = chooseClient(this);
    if (client < 1)
        return;
    const auto result = moveItemToClient(m_session.db(), m_item, client);
    if (!result) {
        messages::show(result.refusal());
        return;
    }
    if (!result->choices.empty()) {
        // Several open accounts: the person picks one from the list.
        listAccounts(result->choices);
        messages::inform(6770, QStringLiteral("This client has several open accounts. Choose one and move the item to it."), 6763,
                         QStringLiteral("Change Account for item"));
        return;
    }
    moved(result->moved.changes, result->moved.accountId);
}

} // namespace fenlark
