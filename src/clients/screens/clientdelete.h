#pragma once

#include <QDialog>

#include <functional>

class QLabel;
class QPushButton;

namespace fenlark {

class Session;

// dlgClientDelete: retires one client in favour of another. Each of the two is
// chosen through the client search and shown beside its button.
class ClientDelete : public QDialog {
    Q_OBJECT
public:
    explicit ClientDelete(Session &session, QWidget *parent = nullptr);

    // How a client is chosen: ClientDSearch unless replaced (as tests do). 0 when none was.
    std::function<qint32(QWidget *parent)> chooseClient;

    // Shows the chosen client, or says it cannot be read and leaves the choice empty.
    void setRetired(qint32 clientId);
    void setReplacement(qint32 clientId);
    qint32 retiredId() const { return m_retired; }
    qint32 replacementId() const { return m_replacement; }

public Q_SLOTS:
    void cmdRetire();

public:
    QLabel *outRetired = nullptr;
    QLabel *outReplacement = nullptr;
    QPushButton *cmdChooseRetired = nullptr;
    QPushButton *cmdChooseReplacement = nullptr;
    QPushButton *cmdRetireButton = nullptr;
    QPushButton *cmdExit = nullptr;

private:
    bool display(qint32 clientId, QLabel *label);

    Session &m_session;
    qint32 m_retired = 0;
    qint32 m_replacement = 0;
};

} // namespace fenlark
