#pragma once

#include "accounts/accountmoves.h"

#include <QDialog>

#include <functional>
#include <vector>

class QComboBox;
class QLabel;
class QPushButton;

namespace fenlark {

class Session;

// dlgClientAccounts: moves one booking or extra to another open account of its
// client, to a new account, or to an account of another client.
class ClientAccounts : public QDialog {
    Q_OBJECT
public:
    ClientAccounts(Session &session, qint32 accountId, AccountItemRef item, QWidget *parent = nullptr);

    bool newAccountChosen() const { return m_moved; }
    qint32 newAccountID() const { return m_target; }

    // Chooses another client: its key, or -1 when none was chosen. The client
    // search unless replaced, as tests do.
    std::function<qint32(QWidget *parent)> chooseClient;

public Q_SLOTS:
    void cmdAccountChange();
    void cmdNewAccount();
    void cmdInvoiceToChange();

public:
    QLabel *lblItem = nullptr;
    QLabel *lblInvoiceTo = nullptr;
    QComboBox *cboAccounts = nullptr;
    QLabel *lblAccountItems = nullptr;
    QPushButton *cmdAccountChangeButton = nullptr;
    QPushButton *cmdNewAccountButton = nullptr;
    QPushButton *cmdInvoiceToChangeButton = nullptr;
    QPushButton *cmdExit = nullptr;

private:
    void listAccounts(std::vector<OpenAccountChoice> choices);
    void showItems();
    void moved(const Changes &changes, qint32 target);

    Session &m_session;
    qint32 m_accountId;
    AccountItemRef m_item;
    std::vector<OpenAccountChoice> m_choices;
    bool m_moved = false;
    qint32 m_target = 0;
};

} // namespace fenlark
