#pragma once

#include "clients/screens/ucclientsearch.h"

#include <QDialog>

class QLabel;
class QPushButton;

namespace fenlark {

// The client editor as the maintenance browser opens it. The editor lives
// elsewhere; the browser only needs to open it on a key (0 for a new client) and
// hear back what happened.
class ClientEditorOpener {
public:
    struct Outcome {
        qint32 NewClientID = 0;   // the key of a client made, below 1 when none
        bool ChangesMade = false;
    };
    virtual ~ClientEditorOpener() = default;
    virtual Outcome openClientEditor(QWidget *parent, qint32 clientId) = 0;
};

// The form the three client dialogs share: an instruction, the search, and the
// "Add New Client" and exit buttons.
class dlgClientSearch : public QDialog {
    Q_OBJECT
public:
    explicit dlgClientSearch(QWidget *parent = nullptr);

    QLabel *lblInstructions = nullptr;
    ucClientSearch *search = nullptr;
    QPushButton *cmdNew = nullptr;
    QPushButton *cmdExit = nullptr;

protected:
    void showEvent(QShowEvent *event) override;
};

// Choose a client, or ask for a new one. BBClientID: -1 when left without a
// choice (the exit button or the close box), 0 when "Add New Client" was
// pressed, otherwise the chosen client.
class ClientSearch : public dlgClientSearch, public IClientSearch {
    Q_OBJECT
public:
    ClientSearch(Database &db, QWidget *parent = nullptr);
    qint32 BBClientID() const { return m_result; }

    void doubleClick() override;
    void singleClick() override {}

private:
    qint32 m_result = -1;
};

// Browse clients and open the editor on them. BBClientID is the key of a client
// made here, 0 otherwise.
class ClientMaintenance : public dlgClientSearch, public IClientSearch {
    Q_OBJECT
public:
    ClientMaintenance(Database &db, ClientEditorOpener &editor, QWidget *parent = nullptr);
    qint32 BBClientID() const { return m_result; }

    void doubleClick() override;
    void singleClick() override {}

private:
    void addNew();

    ClientEditorOpener &m_editor;
    qint32 m_result = 0;
};

// Choose an existing client; there is no "new" here. BBClientID: 0 when none
// was chosen.
class ClientDSearch : public dlgClientSearch, public IClientSearch {
    Q_OBJECT
public:
    ClientDSearch(Database &db, QWidget *parent = nullptr);
    qint32 BBClientID() const { return m_result; }

    void doubleClick() override;
    void singleClick() override {}

private:
    qint32 m_result = 0;
};

} // namespace fenlark
